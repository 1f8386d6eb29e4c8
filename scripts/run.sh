#!/usr/bin/env bash
# The main job on the embedded SQLite database: installs, builds, starts two simulated BACnet/IP
# devices and the BACnet/WS gateway on loopback, shows three example requests and their answers,
# then serves until interrupted (--once stops after the examples). scripts/cli-demo.sh shows
# the command-line tool the same way.
set -euo pipefail
cd "$(dirname "$0")/.."
exec scripts/gateway-demo.sh "$@"
