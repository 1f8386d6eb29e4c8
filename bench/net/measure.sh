#!/bin/sh
# Instructions per datagram of the runtime's receive path under callgrind (no system calls: the
# driver hands datagrams to Link::accept and sends into the void).
# Usage: bench/net/measure.sh <build-dir>   (build tq_net_callgrind_driver first)
set -eu
driver="${1:?build dir}/bench/net/tq_net_callgrind_driver"
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
base=$(per_op baseline)
printf '%-16s %10s %8s\n' operation instr/op net
"$driver" list | while read -r op; do
    [ "$op" = baseline ] && continue
    per=$(per_op "$op")
    printf '%-16s %10d %8d\n' "$op" "$per" $((per - base))
done
