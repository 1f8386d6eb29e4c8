#!/usr/bin/env bash
# Configures and builds into build/ (or $TQ_BUILD_DIR); extra arguments go to cmake.
set -euo pipefail
cd "$(dirname "$0")/.."
dir="${TQ_BUILD_DIR:-build}"
cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE="${TQ_BUILD_TYPE:-RelWithDebInfo}" "$@" > /dev/null
cmake --build "$dir" -j "$(nproc)"
