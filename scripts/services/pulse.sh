#!/usr/bin/env bash
# A PulseAudio sound server with one null sink, "zsink", on a runtime folder
# of its own; clients reach it through PULSE_SERVER (no cookie needed) and
# the client configuration it writes forbids starting another server.
#   pulse.sh start DIR [LIFETIME=60]   prints SERVER=unix:PATH, RUNTIME=DIR/run,
#                                      CLIENTCONF=DIR/client.conf, SINK=zsink
#   pulse.sh stop DIR
# Its monitor source, zsink.monitor, records what really reached the sink.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
cmd=${1:-}
dir=${2:-}
[ -n "$cmd" ] && [ -n "$dir" ] || usage_die "usage: pulse.sh start DIR [LIFETIME] | stop DIR"
case $cmd in
start)
  lifetime=${3:-60}
  run="$dir/run"
  mkdir -p "$run/pulse"
  chmod 700 "$run" "$run/pulse"
  socket="$run/pulse/native"
  printf 'autospawn = no\n' >"$dir/client.conf"
  start_bounded "$dir/pulse.log" env HOME="$dir" XDG_RUNTIME_DIR="$run" XDG_CONFIG_HOME="$dir/config" \
    pulseaudio --daemonize=no --exit-idle-time=-1 --use-pid-file=no --disable-shm=yes -n \
    --load="module-null-sink sink_name=zsink" \
    --load="module-native-protocol-unix auth-anonymous=1 socket=$socket"
  for _ in $(seq 1 50); do
    if PULSE_SERVER="unix:$socket" PULSE_CLIENTCONFIG="$dir/client.conf" pactl info >/dev/null 2>&1; then
      echo "SERVER=unix:$socket"
      echo "RUNTIME=$run"
      echo "CLIENTCONF=$dir/client.conf"
      echo "SINK=zsink"
      exit 0
    fi
    sleep 0.1
  done
  cat "$dir/pulse.log" >&2
  stop_service "$dir"
  exit 1
  ;;
stop) stop_service "$dir" ;;
*) usage_die "unknown command $cmd" ;;
esac
