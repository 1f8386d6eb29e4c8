#!/usr/bin/env bash
# Formats the C++ files changed against HEAD (or all of them with --all).
set -euo pipefail
cd "$(dirname "$0")/.."
if [ "${1:-}" = "--all" ]; then
  files=$(git ls-files '*.cpp' '*.h')
else
  files=$( (git diff --name-only HEAD; git ls-files --others --exclude-standard) | grep -E '\.(cpp|h)$' | sort -u || true)
fi
for f in $files; do [ -f "$f" ] && clang-format -i "$f"; done
