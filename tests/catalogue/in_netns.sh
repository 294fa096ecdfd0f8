#!/bin/sh
# Runs a test in a network namespace of its own with only a loopback: the
# catalogue's fixed ports on 127.0.0.1 are free and nothing leaves the machine.
unshare -n true 2>/dev/null || { echo "SKIP: needs a private network namespace (run as root)"; exit 77; }
exec unshare -n sh -c 'ip link set lo up && exec "$0" "$@"' "$@"
