#!/usr/bin/env bash
# Installs the library into a scratch prefix and builds a consumer project against it.
set -euo pipefail
cd "$(dirname "$0")/.."
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "${TQ_BUILD_DIR:-build}" --prefix "$prefix/usr" > /dev/null
cmake -S tests/install-consumer -B "$prefix/consumer" -DCMAKE_PREFIX_PATH="$prefix/usr" > /dev/null
cmake --build "$prefix/consumer" > /dev/null
LD_LIBRARY_PATH="$prefix/usr/lib:$prefix/usr/lib/x86_64-linux-gnu:${LD_LIBRARY_PATH:-}" "$prefix/consumer/consumer"
