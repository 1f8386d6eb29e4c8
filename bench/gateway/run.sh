#!/usr/bin/env bash
# Load test of tq-gateway on loopback with wrk: cached reads per second and latency percentiles
# (2 wrk threads), live reads per second against two simulated devices, and the gateway's
# resident memory after about 10,000 and after more than 100,000 requests.
#
#   bench/gateway/run.sh [BUILD_DIR]      (default: build)
set -euo pipefail
cd "$(dirname "$0")/../.."
dir="${1:-build}"
command -v wrk > /dev/null || { echo "wrk is missing (scripts/deps.sh installs it)"; exit 1; }
cmake --build "$dir" --target tq-gateway tq-sim-device > /dev/null
http=18380
udp=47990
work="$(mktemp -d)"
pids=()
cleanup() {
  for p in "${pids[@]}"; do kill "$p" 2> /dev/null || true; done
  wait 2> /dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT

for d in 101:127.0.0.2 102:127.0.0.3; do
  "$dir/apps/tq-sim-device/tq-sim-device" --instance "${d%%:*}" --interface "${d#*:}" --port "$udp" > /dev/null 2>&1 &
  pids+=($!)
done
hash="$("$dir/apps/tq-gateway/tq-gateway" --hash-token bench)"
cat > "$work/gw.json" << JSON
{ "listen": { "port": $http, "threads": 8, "maxQueued": 256 },
  "bacnet": { "interface": "127.0.0.1", "port": $udp, "discoverMs": 500 },
  "database": { "sqlite": "$work/gw.db", "maxAgeMs": 600000 },
  "polling": [ { "device": 101, "object": "analog-input,1", "property": "present-value", "intervalMs": 60000 } ],
  "tokens": [ { "sha256": "$hash", "rights": "read" } ] }
JSON
"$dir/apps/tq-gateway/tq-gateway" --config "$work/gw.json" > "$work/gw.log" 2>&1 &
gw=$!
pids+=($gw)
for _ in $(seq 100); do grep -q serving "$work/gw.log" && break; sleep 0.1; done
sleep 1  # the polling list's first read makes the value fresh

base="http://127.0.0.1:$http/bacnetws/.bacnet/.local"
cached="$base/101/analog-input,1/present-value?alt=json"
live="$base/102/analog-value,1/description?alt=json"
auth="Authorization: Bearer bench"
curl -sf -H "$auth" "$cached" > /dev/null || { cat "$work/gw.log"; echo "gateway not answering"; exit 1; }

rss() { awk '/VmRSS/ {print $2 " kB"}' "/proc/$gw/status"; }
requests() { awk '/requests in/ {print $1}' "$1"; }

wrk -t2 -c16 -d1s -H "$auth" "$cached" > "$work/warm.txt"
total=$(requests "$work/warm.txt")
echo "after $total requests: resident memory $(rss)"
wrk -t2 -c32 -d10s --latency -H "$auth" "$cached" > "$work/cached.txt"
total=$((total + $(requests "$work/cached.txt")))
echo "== cached reads (stored value younger than the configured age)"
grep -E 'Requests/sec|50%|75%|90%|99%|requests in|Non-2xx' "$work/cached.txt"
echo "after $total requests: resident memory $(rss)"
wrk -t2 -c32 -d5s -H "$auth" "$cached" > "$work/more.txt"
total=$((total + $(requests "$work/more.txt")))
echo "after $total requests: resident memory $(rss)"
echo "== live reads (ReadProperty to a simulated device per request)"
wrk -t2 -c8 -d5s --latency -H "$auth" "$live" > "$work/live.txt"
grep -E 'Requests/sec|50%|99%|requests in|Non-2xx' "$work/live.txt"
