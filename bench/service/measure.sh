#!/usr/bin/env bash
# Instructions per property of the ReadPropertyMultiple-ACK decoding (20 objects x 5
# properties) into containers and in the raw codec, then rows per second of the prepared value
# update on SQLite and, beside a throwaway server, on PostgreSQL.
#   bench/service/measure.sh <build-dir>
set -euo pipefail
cd "$(dirname "$0")/../.."
exe="${1:-build}/bench/service/tq_service_bench"
properties=100
count() {
  local name=$1 n=$2 out
  out=$(mktemp)
  TQ_BENCH_ITERATIONS=$n valgrind --tool=callgrind --callgrind-out-file="$out" --toggle-collect="*${name}*" \
    "$exe" --benchmark_filter="^${name}(/.*)?\$" > /dev/null 2>&1
  callgrind_annotate "$out" | awk '/PROGRAM TOTALS/ {gsub(",", "", $1); print $1}'
  rm -f "$out"
}
for name in BM_RpmAckIntoContainers BM_RpmAckRawCodec; do
  small=$(count "$name" 20)
  large=$(count "$name" 220)
  echo "$name $(( (large - small) / 200 / properties )) instructions/property"
done
[ "${2:-}" = "--instructions" ] && exit 0
"$exe" --benchmark_filter=Sqlite
scripts/with-postgres.sh "$exe" --benchmark_filter=PostgreSQL
