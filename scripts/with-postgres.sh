#!/usr/bin/env bash
# scripts/with-postgres.sh CMD [ARGS...]
# Runs CMD with a throwaway PostgreSQL server: initdb and pg_ctl in a temporary directory, a
# free port on 127.0.0.1, trust authentication for the user "tq". CMD sees the server in
# TQ_PG_CONNECT (a libpq connection string without dbname: each test process makes its own
# database). The server and its directory are removed afterwards, whatever CMD does.
# Without PostgreSQL's server programs CMD runs alone, and TQ_PG_CONNECT stays unset.
set -euo pipefail

bindir=""
for candidate in $(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V -r); do
  [ -x "$candidate/initdb" ] && bindir=$candidate && break
done
if [ -z "$bindir" ] && command -v initdb >/dev/null; then bindir=$(dirname "$(command -v initdb)"); fi
if [ -z "$bindir" ]; then
  echo "with-postgres: no PostgreSQL server programs; running without a server" >&2
  exec "$@"
fi

# The server refuses to run as root; it then runs as the postgres user of the Debian package.
as=()
if [ "$(id -u)" -eq 0 ]; then
  id postgres >/dev/null 2>&1 || { echo "with-postgres: running as root and there is no postgres user" >&2; exit 1; }
  as=(runuser -u postgres --)
fi

dir=$(mktemp -d /tmp/tq-pg.XXXXXX)
[ ${#as[@]} -gt 0 ] && chown postgres "$dir"
port=$(python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')

teardown() {
  "${as[@]}" "$bindir/pg_ctl" -D "$dir/data" -m immediate -w stop >/dev/null 2>&1 || true
  rm -rf "$dir"
}
trap teardown EXIT

"${as[@]}" "$bindir/initdb" -D "$dir/data" -U tq --auth=trust -E UTF8 --no-sync >"$dir/initdb.log" 2>&1 ||
  { cat "$dir/initdb.log" >&2; exit 1; }
"${as[@]}" "$bindir/pg_ctl" -D "$dir/data" -l "$dir/server.log" -w \
  -o "-c listen_addresses=127.0.0.1 -p $port -k $dir -c fsync=off -c max_connections=50" start >/dev/null ||
  { cat "$dir/server.log" >&2; exit 1; }

export TQ_PG_CONNECT="host=127.0.0.1 port=$port user=tq"
echo "with-postgres: server on 127.0.0.1:$port" >&2
set +e
"$@"
status=$?
exit $status
