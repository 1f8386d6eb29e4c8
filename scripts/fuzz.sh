#!/usr/bin/env bash
# Builds the libFuzzer harnesses with clang into build-fuzz (or $TQ_FUZZ_BUILD_DIR).
#   scripts/fuzz.sh            build only
#   scripts/fuzz.sh --ci       build, then run every harness for $TQ_FUZZ_SECONDS (default 5)
#                              seconds over its seed corpus; any crash fails the run
# Harness fuzz/<area>/... target fuzz_x takes its seeds from fuzz/<area>/corpus/fuzz_x/. New
# inputs found during a run go to a scratch directory, so the checked-in corpus stays as is;
# inputs that crash are kept in <build dir>/fuzz-artifacts/.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)
dir="${TQ_FUZZ_BUILD_DIR:-build-fuzz}"
seconds="${TQ_FUZZ_SECONDS:-5}"
ci=0
[ "${1:-}" = "--ci" ] && ci=1

CC=clang CXX=clang++ cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DTQ_FUZZ=ON -DTQ_BUILD_TESTS=OFF -DTQ_BUILD_BENCH=OFF \
  -DCMAKE_CXX_FLAGS="-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined" > /dev/null

# Only the harnesses and what they link, so an unrelated area cannot hold the fuzz run up.
mapfile -t targets < <(cmake --build "$dir" --target help | sed -n 's/^\.\.\. \(fuzz_[A-Za-z0-9_]*\).*/\1/p' | sort -u)
if [ "${#targets[@]}" -eq 0 ]; then
  echo "no fuzz targets found" >&2
  exit 1
fi
cmake --build "$dir" -j 2 --target "${targets[@]}"
[ "$ci" -eq 1 ] || exit 0
build=$(cd "$dir" && pwd)
artifacts="$build/fuzz-artifacts"
mkdir -p "$artifacts"

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
status=0
for target in "${targets[@]}"; do
  exe=$(find "$build/fuzz" -type f -name "$target" -perm -u+x | head -n 1)
  seeds=$(find "$root/fuzz" -type d -path "*/corpus/$target" | head -n 1)
  mkdir -p "$scratch/$target"
  echo "== $target (${seconds}s)"
  if ! (cd "$scratch" && "$exe" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
          -print_final_stats=0 \
          -artifact_prefix="$artifacts/$target-" "$scratch/$target" ${seeds:+"$seeds"} > "$scratch/$target.log" 2>&1); then
    tail -n 40 "$scratch/$target.log"
    echo "FUZZ FAILURE: $target (inputs in $artifacts)" >&2
    status=1
  fi
done
exit $status
