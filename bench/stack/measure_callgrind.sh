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
printf '%-26s %10s %8s\n' operation instr/op target
"$driver" list | while read -r op target; do
    low=$(instructions "$op" 1000)
    high=$(instructions "$op" 11000)
    per=$(( (high - low) / 10000 ))
    verdict=""
    if [ "$target" -gt 0 ]; then
        if [ "$per" -le "$target" ]; then verdict="ok"; else verdict="OVER"; fi
    fi
    printf '%-26s %10d %8s %s\n' "$op" "$per" "$target" "$verdict"
done
