# Services the tests need, started on this machine only, bounded and stopped
# by PID. Sourced by scripts/test.

services_pids=()
services_dir=$(mktemp -d /tmp/zarvent-services.XXXXXX)
services_scripts=$(cd "$(dirname "${BASH_SOURCE[0]}")/services" && pwd)

# The program opens the machine's mixer as each panel loads: the first sound
# card, else ALSA's "default", which is the sound server when one runs. With
# neither, every panel stops at the no-mixer box, so the desktop the real
# program meets gets a PulseAudio null sink of its own, reached through
# PULSE_SERVER.
services_start_sound() {
  if grep -qs '^ *[0-9]' /proc/asound/cards || pactl info >/dev/null 2>&1; then
    return 0
  fi
  command -v pulseaudio >/dev/null || return 0
  local out
  out=$(bash "$services_scripts/pulse.sh" start "$services_dir/pulse" 10800) ||
    { echo "services: the sound server did not start"; return 1; }
  PULSE_SERVER=$(sed -n 's/^SERVER=//p' <<<"$out")
  PULSE_CLIENTCONFIG=$(sed -n 's/^CLIENTCONF=//p' <<<"$out")
  export PULSE_SERVER PULSE_CLIENTCONFIG
}

services_start_display() {
  services_start_sound || return 1
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
  [ -d "$services_dir/pulse" ] && bash "$services_scripts/pulse.sh" stop "$services_dir/pulse"
  for pid in "${services_pids[@]}"; do
    kill "$pid" 2>/dev/null || true
  done
  for pid in "${services_pids[@]}"; do
    wait "$pid" 2>/dev/null || true
  done
  rm -rf "$services_dir"
}
