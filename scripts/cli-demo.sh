#!/usr/bin/env bash
# The command-line tool end to end: installs what is missing, builds, starts a simulated BACnet/IP
# device on loopback, finds it, reads a REAL, a priority array and a trend log, writes a value and
# reads it back, then stops the device. Everything stays on 127.0.0.0/8.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
scripts/build.sh -DTQ_BUILD_BENCH=OFF > /dev/null

build=${TQ_BUILD_DIR:-build}
tool="$build/apps/tq-bacnet/tq-bacnet"
export TQ_BACNET_DB=${TQ_BACNET_DB:-data/tq_bacnet.db}
port=${TQ_DEMO_PORT:-47808}
net=(--interface 127.0.0.1 --port "$port")

"$build/apps/tq-sim-device/tq-sim-device" --instance 1234 --interface 127.0.0.2 --port "$port" > /dev/null &
device=$!
trap 'kill $device 2> /dev/null || true' EXIT

show() {
  printf '\n$ tq-bacnet %s\n' "$*"
  "$tool" "$@"
}

show whois --wait 1 --alt json "${net[@]}"
show read 1234 analog-input,1 present-value --alt json "${net[@]}"
show read 1234 analog-output,1 priority-array --alt json "${net[@]}"
show readrange 1234 trend-log,1 --count 3 --alt json "${net[@]}"
show write 1234 analog-output,1 present-value 42.5 --priority 8 "${net[@]}"
show read 1234 analog-output,1 present-value --alt json "${net[@]}"
show read 1234 analog-output,1 priority-array 8 --alt xml "${net[@]}"
show render --object analog-value --property status-flags --names --alt json 82 04 40
