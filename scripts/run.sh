#!/usr/bin/env bash
# Installs, builds and runs the main job on the embedded SQLite database.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
scripts/build.sh
exec build/apps/tq-catalogue/tq-catalogue data/tq_bacnet.db "$@"
