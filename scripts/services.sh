# Services the tests need, started on this machine only, bounded and stopped
# by PID. Sourced by scripts/test.

services_pids=()
services_dir=$(mktemp -d /tmp/zarvent-services.XXXXXX)

services_start_display() {
  if [ -n "${DISPLAY:-}" ] && xdpyinfo >/dev/null 2>&1; then
    return 0
  fi
  local n
  for n in $(seq 90 120); do
    [ -e "/tmp/.X11-unix/X$n" ] || [ -e "/tmp/.X$n-lock" ] || break
  done
  Xvfb ":$n" -screen 0 1280x1024x24 -nolisten tcp >"$services_dir/xvfb.log" 2>&1 &
  services_pids+=($!)
  export DISPLAY=":$n"
  local i
  for i in $(seq 1 100); do
    xdpyinfo >/dev/null 2>&1 && break
    sleep 0.1
  done
  xdpyinfo >/dev/null 2>&1 || { echo "services: Xvfb did not start"; cat "$services_dir/xvfb.log"; return 1; }
  openbox --sm-disable >"$services_dir/openbox.log" 2>&1 &
  services_pids+=($!)
  sleep 0.5
}

services_stop() {
  local pid
  for pid in "${services_pids[@]}"; do
    kill "$pid" 2>/dev/null || true
  done
  for pid in "${services_pids[@]}"; do
    wait "$pid" 2>/dev/null || true
  done
  rm -rf "$services_dir"
}
