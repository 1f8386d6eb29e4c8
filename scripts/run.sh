#!/usr/bin/env bash
# The main job on the embedded SQLite database: installs, builds, and shows the library at work
# against a simulated BACnet/IP device on loopback (see scripts/cli-demo.sh).
set -euo pipefail
cd "$(dirname "$0")/.."
exec scripts/cli-demo.sh "$@"
