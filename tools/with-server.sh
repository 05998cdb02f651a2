#!/bin/sh
# Runs a command beside a PostgreSQL server of its own, for the record manager's server store:
# initdb into a temporary folder, pg_ctl listening on the loopback address (as the unprivileged
# user nobody when run as root, since the server refuses root), TARSEL_SERVER holding its
# connection string. The server is stopped and the folder removed when the command ends; the
# command's exit status is the script's.
#
#   tools/with-server.sh COMMAND [ARG...]
set -u
if [ $# -eq 0 ]; then
    echo "usage: $0 COMMAND [ARG...]" >&2
    exit 2
fi
bin=$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -n 1)
if [ -z "$bin" ]; then
    echo "no PostgreSQL server installed (Debian package postgresql)" >&2
    exit 1
fi
dir=$(mktemp -d /tmp/tarsel-server.XXXXXX) || exit 1
as=""
if [ "$(id -u)" = 0 ]; then
    chown nobody "$dir" && as="runuser -u nobody --" || exit 1
fi
started=""
stop() {
    [ -n "$started" ] && $as "$bin/pg_ctl" -D "$dir/data" -m fast -w -s stop >/dev/null 2>&1
    rm -rf "$dir"
}
trap stop EXIT
trap 'exit 130' INT TERM

if ! $as "$bin/initdb" -D "$dir/data" -U tarsel -A trust --no-sync -E UTF8 --locale=C >"$dir/initdb.log" 2>&1; then
    cat "$dir/initdb.log" >&2
    exit 1
fi
# A free port is not known in advance: a few are tried.
for try in 1 2 3 4 5; do
    port=$((20000 + ($$ * 7 + try * 1009) % 30000))
    if $as "$bin/pg_ctl" -D "$dir/data" -l "$dir/server.log" -w -s \
        -o "-k $dir -c listen_addresses=127.0.0.1 -p $port -F -c max_connections=100" start >/dev/null 2>&1; then
        started=yes
        break
    fi
done
if [ -z "$started" ]; then
    cat "$dir/server.log" >&2
    exit 1
fi
TARSEL_SERVER="host=127.0.0.1 port=$port dbname=postgres user=tarsel"
export TARSEL_SERVER
echo "PostgreSQL server on 127.0.0.1:$port for: $*"
"$@"
