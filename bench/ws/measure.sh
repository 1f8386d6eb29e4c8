#!/usr/bin/env bash
# Instructions per operation of every web-service benchmark (rendering and request input): two
# callgrind runs with fixed iteration counts, so set-up and the first (cold) iterations cancel out.
#   bench/ws/measure.sh <build-dir>
set -euo pipefail
count() {
  local exe=$1 name=$2 n=$3 out
  out=$(mktemp)
  TQ_BENCH_ITERATIONS=$n valgrind --tool=callgrind --callgrind-out-file="$out" --toggle-collect="*${name}*" \
    "$exe" --benchmark_filter="^${name}(/.*)?\$" > /dev/null 2>&1
  callgrind_annotate "$out" | awk '/PROGRAM TOTALS/ {gsub(",", "", $1); print $1}'
  rm -f "$out"
}
for exe in "${1:-build}/bench/ws/tq_ws_bench" "${1:-build}/bench/ws/tq_ws_request_bench"; do
  for name in $("$exe" --benchmark_list_tests); do
    name=${name%%/*}
    small=$(count "$exe" "$name" 1000)
    large=$(count "$exe" "$name" 11000)
    echo "$name $(( (large - small) / 10000 )) instructions/op"
  done
done
