#!/usr/bin/env bash
# Installs, builds and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
scripts/build.sh
# A throwaway PostgreSQL server for the tests that also run on PostgreSQL.
scripts/with-postgres.sh ctest --test-dir "${TQ_BUILD_DIR:-build}" --output-on-failure -j "$(nproc)"
