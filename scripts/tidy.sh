#!/usr/bin/env bash
# Runs clang-tidy on the C++ sources changed against HEAD, using build/compile_commands.json.
set -euo pipefail
cd "$(dirname "$0")/.."
[ -f build/compile_commands.json ] || scripts/build.sh
files=$( (git diff --name-only HEAD; git ls-files --others --exclude-standard) | grep -E '\.cpp$' | sort -u || true)
[ -z "$files" ] && { echo "no changed sources"; exit 0; }
clang-tidy -p build --quiet $files
