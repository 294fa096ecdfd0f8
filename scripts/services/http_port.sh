#!/usr/bin/env bash
# A plain HTTP file server on a port the caller names, on 127.0.0.1. Meant
# for a network namespace of the test's own, where fixed ports (80, 8000)
# are free.
#   http_port.sh start DIR ROOT PORT [LIFETIME=60]   prints PORT=n
#   http_port.sh stop DIR
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
cmd=${1:-}
dir=${2:-}
[ -n "$cmd" ] && [ -n "$dir" ] || usage_die "usage: http_port.sh start DIR ROOT PORT [LIFETIME] | stop DIR"
case $cmd in
start)
  root=${3:?root folder}
  port=${4:?port}
  lifetime=${5:-60}
  mkdir -p "$dir"
  start_bounded "$dir/http.log" "$PY" -m http.server --bind 127.0.0.1 --directory "$root" "$port"
  wait_port "$port" || { cat "$dir/http.log" >&2; stop_service "$dir"; exit 1; }
  echo "PORT=$port"
  ;;
stop) stop_service "$dir" ;;
*) usage_die "unknown command $cmd" ;;
esac
