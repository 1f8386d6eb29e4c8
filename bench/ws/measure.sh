#!/usr/bin/env bash
# Instructions per operation of every web-service benchmark: two callgrind runs with fixed iteration
# counts, so set-up and the first (cold) iterations cancel out.
#   bench/ws/measure.sh <build-dir>
set -euo pipefail
exe="${1:-build}/bench/ws/tq_ws_bench"
names=$("$exe" --benchmark_list_tests)
count() {
  local name=$1 n=$2 out
  out=$(mktemp)
  TQ_BENCH_ITERATIONS=$n valgrind --tool=callgrind --callgrind-out-file="$out" --toggle-collect="*${name}*" \
    "$exe" --benchmark_filter="^${name}(/.*)?\$" > /dev/null 2>&1
  callgrind_annotate "$out" | awk '/PROGRAM TOTALS/ {gsub(",", "", $1); print $1}'
  rm -f "$out"
}
for name in $names; do
  name=${name%%/*}
  small=$(count "$name" 1000)
  large=$(count "$name" 11000)
  echo "$name $(( (large - small) / 10000 )) instructions/op"
done
