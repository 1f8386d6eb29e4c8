#!/usr/bin/env bash
# Installs what the project builds and tests with, from Debian's packages.
# Does nothing when everything is already there, so it is cheap to call first.
set -euo pipefail

packages=(
  build-essential cmake pkg-config python3
  libpoco-dev libsqlite3-dev sqlite3
  libgtest-dev libgmock-dev googletest libbenchmark-dev
  clang libclang-rt-14-dev clang-format clang-tidy valgrind
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
