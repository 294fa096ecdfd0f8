#!/usr/bin/env bash
# A one-client HTTP stream with no burst: ffmpeg sends the MP3 at its own
# pace to the first client and ends with it.
#   listen.sh start DIR MP3 [LIFETIME=60]   prints PORT=n
#   listen.sh stop DIR
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
cmd=${1:-}
dir=${2:-}
[ -n "$cmd" ] && [ -n "$dir" ] || usage_die "usage: listen.sh start DIR MP3 [LIFETIME] | stop DIR"
case $cmd in
start)
  mp3=${3:?mp3 file}
  lifetime=${4:-60}
  mkdir -p "$dir"
  port=$(free_port)
  start_bounded "$dir/listen.log" ffmpeg -nostdin -hide_banner -loglevel warning -re -stream_loop -1 -i "$mp3" \
    -c copy -content_type audio/mpeg -f mp3 -listen 1 "http://127.0.0.1:$port/"
  # No probe here: a probe would be the one client it serves. ffmpeg binds
  # within a few hundred ms; the log tells when it failed.
  for _ in $(seq 1 50); do
    ss -ltn "sport = :$port" 2>/dev/null | grep -q LISTEN && break
    sleep 0.1
  done
  ss -ltn "sport = :$port" | grep -q LISTEN || { cat "$dir/listen.log" >&2; stop_service "$dir"; exit 1; }
  echo "PORT=$port"
  ;;
stop) stop_service "$dir" ;;
*) usage_die "unknown command $cmd" ;;
esac
