#!/usr/bin/env bash
# The gateway in one command: installs what is needed, builds, starts two simulated BACnet/IP
# devices and tq-gateway on loopback with the embedded database, prints the URL, a token and
# three example requests, runs them and shows their answers, then serves until interrupted.
#
#   scripts/gateway-demo.sh [--once]     --once: stop after the examples (for scripts)
#
# TQ_BUILD_DIR (build), TQ_DEMO_HTTP_PORT (8080) and TQ_DEMO_UDP_PORT (47808) change the defaults.
set -euo pipefail
cd "$(dirname "$0")/.."
once=false
[ "${1:-}" = "--once" ] && once=true

scripts/deps.sh
dir="${TQ_BUILD_DIR:-build}"
http="${TQ_DEMO_HTTP_PORT:-8080}"
udp="${TQ_DEMO_UDP_PORT:-47808}"
if [ ! -f "$dir/CMakeCache.txt" ]; then
  cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE="${TQ_BUILD_TYPE:-RelWithDebInfo}" > /dev/null
fi
cmake --build "$dir" -j "$(nproc)" --target tq-gateway tq-sim-device > /dev/null

work="$(mktemp -d)"
pids=()
cleanup() {
  for p in "${pids[@]}"; do kill "$p" 2> /dev/null || true; done
  wait 2> /dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT
trap 'exit 0' INT TERM

"$dir/apps/tq-sim-device/tq-sim-device" --instance 101 --name "air handler" --interface 127.0.0.2 \
  --port "$udp" > "$work/device-101.log" 2>&1 &
pids+=($!)
"$dir/apps/tq-sim-device/tq-sim-device" --instance 102 --name "boiler room" --interface 127.0.0.3 \
  --port "$udp" > "$work/device-102.log" 2>&1 &
pids+=($!)

token="$(head -c 18 /dev/urandom | base64 | tr -d '/+=')"
hash="$("$dir/apps/tq-gateway/tq-gateway" --hash-token "$token")"
cat > "$work/gateway.json" << JSON
{
  "listen":   { "address": "127.0.0.1", "port": $http },
  "bacnet":   { "interface": "127.0.0.1", "port": $udp, "apduTimeoutMs": 1000, "discoverMs": 1000 },
  "database": { "sqlite": "$work/gateway.db", "maxAgeMs": 5000 },
  "polling":  [ { "device": 101, "object": "analog-input,1", "property": "present-value", "intervalMs": 2000 } ],
  "tokens":   [ { "sha256": "$hash", "rights": "read-write" } ]
}
JSON
"$dir/apps/tq-gateway/tq-gateway" --config "$work/gateway.json" > "$work/gateway.log" 2>&1 &
pids+=($!)

url="http://127.0.0.1:$http"
for _ in $(seq 100); do
  grep -q "serving" "$work/gateway.log" 2> /dev/null && break
  kill -0 "${pids[2]}" 2> /dev/null || { cat "$work/gateway.log"; exit 1; }
  sleep 0.1
done
cat "$work/gateway.log"

base="$url/bacnetws/.bacnet/.local/101"
examples=(
  "curl -s -H 'Authorization: Bearer $token' '$base/analog-value,1/present-value?alt=json'"
  "curl -s -H 'Authorization: Bearer $token' '$base/analog-value,1/present-value'"
  "curl -s -X PUT -H 'Authorization: Bearer $token' -d '{\"\$value\": 23.5}' '$base/analog-value,1/present-value?alt=json'"
)
echo
echo "Gateway:  $url/   (the page asks for the token)"
echo "Token:    $token"
echo
for e in "${examples[@]}"; do
  echo "\$ $e"
  eval "$e"
  echo
  echo
done

$once && exit 0
echo "Serving until interrupted (Ctrl-C)."
wait "${pids[2]}"
