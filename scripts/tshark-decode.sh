#!/bin/sh
# Shows how the protocol analyser reads one APDU given as hex ("00 05 01 0C 0C 00 00 00 05 19 55").
# The APDU is wrapped in BVLC original-unicast and an NPDU expecting a reply, sent to UDP 47808.
# Usage: scripts/tshark-decode.sh <hex>...
set -eu
hex=$(printf '%s' "$*" | tr -d ' \n' | tr 'A-F' 'a-f')
case "$hex" in *[!0-9a-f]*|'') echo "usage: $0 <apdu hex>" >&2; exit 2 ;; esac
[ $(( ${#hex} % 2 )) -eq 0 ] || { echo "odd number of hex digits" >&2; exit 2; }
len=$(( ${#hex} / 2 + 6 ))
frame=$(printf '810a%04x0104%s' "$len" "$hex" | sed 's/../& /g')
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
echo "000000 $frame" > "$tmp/frame.txt"
text2pcap -q -u 47808,47808 "$tmp/frame.txt" "$tmp/frame.pcap"
tshark -n -r "$tmp/frame.pcap" -V -O bacapp 2>/dev/null | sed -n '/^Building Automation and Control Network APDU/,$p'
