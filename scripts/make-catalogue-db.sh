#!/bin/sh
# Create a ready catalogue database file from catalogue/generated (schema and content).
# Usage: scripts/make-catalogue-db.sh [--force] <database-file>
set -eu

usage() {
    echo "usage: $0 [--force] <database-file>" >&2
    exit 2
}

force=0
file=""
for arg in "$@"; do
    case "$arg" in
        --force) force=1 ;;
        -h|--help) usage ;;
        -*) echo "unknown option: $arg" >&2; usage ;;
        *) [ -z "$file" ] || usage; file="$arg" ;;
    esac
done
[ -n "$file" ] || usage

root=$(cd "$(dirname "$0")/.." && pwd)
schema="$root/catalogue/generated/schema.sql"
content="$root/catalogue/generated/content.sql"
for sql in "$schema" "$content"; do
    [ -r "$sql" ] || { echo "missing $sql (run python3 catalogue/generate.py)" >&2; exit 1; }
done
command -v sqlite3 >/dev/null 2>&1 || { echo "the sqlite3 command-line tool is not installed" >&2; exit 1; }

if [ -e "$file" ] && [ "$force" -ne 1 ]; then
    echo "$file already exists; use --force to replace it" >&2
    exit 1
fi

# Build beside the target and move into place, so a failure never leaves a half-filled file.
tmp="$file.tmp.$$"
trap 'rm -f "$tmp"' EXIT INT TERM
rm -f "$tmp"
{
    echo "PRAGMA foreign_keys=OFF;"
    echo "BEGIN TRANSACTION;"
    cat "$schema" "$content"
    echo "COMMIT;"
} | sqlite3 -bail "$tmp"
mv -f "$tmp" "$file"
trap - EXIT INT TERM
echo "created $file"
