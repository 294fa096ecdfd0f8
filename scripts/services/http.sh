#!/usr/bin/env bash
# A plain HTTP file server on 127.0.0.1 for the MP3 and playlists.
#   http.sh start DIR ROOT [LIFETIME=60]   prints PORT=n
#   http.sh stop DIR
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
cmd=${1:-}
dir=${2:-}
[ -n "$cmd" ] && [ -n "$dir" ] || usage_die "usage: http.sh start DIR ROOT [LIFETIME] | stop DIR"
case $cmd in
start)
  root=${3:?root folder}
  lifetime=${4:-60}
  mkdir -p "$dir"
  port=$(free_port)
  start_bounded "$dir/http.log" "$PY" -m http.server --bind 127.0.0.1 --directory "$root" "$port"
  wait_port "$port" || { cat "$dir/http.log" >&2; stop_service "$dir"; exit 1; }
  echo "PORT=$port"
  ;;
stop) stop_service "$dir" ;;
*) usage_die "unknown command $cmd" ;;
esac
