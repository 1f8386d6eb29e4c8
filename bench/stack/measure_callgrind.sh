#!/bin/sh
# Instructions per operation of the codec's hot paths under callgrind, against their targets.
# Usage: bench/stack/measure_callgrind.sh <build-dir>   (build tq_stack_callgrind_driver first, -O2)
set -eu
driver="${1:?build dir}/bench/stack/tq_stack_callgrind_driver"
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
instructions() {
    valgrind --tool=callgrind --callgrind-out-file="$tmp/out" "$driver" "$1" "$2" >/dev/null 2>"$tmp/log"
    sed -n 's/^==[0-9]*== Collected : //p' "$tmp/log"
}
per_op() {
    low=$(instructions "$1" 1000)
    high=$(instructions "$1" 11000)
    echo $(( (high - low) / 10000 ))
}
# The driver's loop and indirect call cost the same for every op; "baseline" measures them and the
# targets apply to what the codec adds on top.
base=$(per_op baseline)
printf '%-26s %10s %8s %8s\n' operation instr/op net target
"$driver" list | while read -r op target; do
    [ "$op" = baseline ] && continue
    per=$(per_op "$op")
    net=$((per - base))
    verdict=""
    if [ "$target" -gt 0 ]; then
        if [ "$net" -le "$target" ]; then verdict="ok"; else verdict="OVER"; fi
    fi
    printf '%-26s %10d %8d %8s %s\n' "$op" "$per" "$net" "$target" "$verdict"
done
printf '%-26s %10d\n' "(driver baseline)" "$base"
