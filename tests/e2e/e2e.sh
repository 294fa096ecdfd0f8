#!/usr/bin/env bash
# End-to-end checks of the real zarvent on the display in $DISPLAY.
#   e2e.sh <case> <path to zarvent> <folder for screenshots>
# Cases:
#   startup_offline  the splash appears, and with no network the Mp3 panel follows within 7 s
#   splash_keypress  a key on the splash ends the program and nothing else appears
#   map_route        with the probe answered (a local server named example.com in a
#                    private network namespace), the map appears in its outline
#   map_region       the same namespace with a default route: the Tamil region opens
#                    its panel, which settles folded and narrow; its Kill Me spot ends
#   splash_close     the window manager's close (openbox: Alt+F4) on the splash ends
#                    the program as a key does
#   mp3_list         Mp3 widened and unfolded by its spots; a click on a song of the
#                    folder it started in plays it under its own title at once, and
#                    the program writes nothing on stdout or stderr
#   tray_restore     on a display of its own with a tray host (trayer): Tafm minimised
#                    by the window manager hides behind a tray icon, whose menu's
#                    Restore brings it back and takes the icon away
#   tray_absent      on a display of its own with no tray host: Tafm's own minimise
#                    spot leaves an ordinary minimised window that comes back
set -uo pipefail
case_name=$1 program=$2 shots=$3
mkdir -p "$shots"

if [ -z "${DISPLAY:-}" ] || ! xdpyinfo >/dev/null 2>&1; then
  echo "SKIP: no X display (scripts/test starts one)"; exit 77
fi

pids=()
scratch=$(mktemp -d /tmp/zarvent-e2e.XXXXXX)
cleanup() {
  for p in "${pids[@]}"; do kill -9 "$p" 2>/dev/null; done
  rm -rf "$scratch"
}
trap cleanup EXIT
fail() { echo "FAIL: $*"; exit 1; }

now_ms() { date +%s%3N; }

# Waits up to $1 ms for a visible window whose name matches $2; prints its id.
wait_window() {
  local limit=$1 pattern=$2 start id
  start=$(now_ms)
  while [ $(( $(now_ms) - start )) -lt "$limit" ]; do
    id=$(xdotool search --onlyvisible --name "$pattern" 2>/dev/null | head -n 1)
    [ -n "$id" ] && { echo "$id"; return 0; }
    sleep 0.05
  done
  return 1
}

visible() { [ -n "$(xdotool search --onlyvisible --name "$1" 2>/dev/null)" ]; }

# Clicks at x, y inside the window $1, as a person would.
click_in() { xdotool mousemove --window "$1" "$2" "$3" click 1; }

# Waits up to $2 ms for window $1 to reach the size $3 (WxH).
wait_size() {
  local start
  start=$(now_ms)
  while [ $(( $(now_ms) - start )) -lt "$2" ]; do
    [ "$(xdotool getwindowgeometry "$1" | awk '/Geometry/ {print $2}')" = "$3" ] && return 0
    sleep 0.05
  done
  return 1
}

# Runs the program with no network at all: a network namespace of its own
# holding only a loopback that is down.
start_offline() {
  if unshare -n true 2>/dev/null; then
    unshare -n "$program" >"$scratch/out.log" 2>&1 &
  else
    echo "note: no network namespace here; relying on the machine having no route out"
    "$program" >"$scratch/out.log" 2>&1 &
  fi
  pids+=($!)
  started=$(now_ms)
}

# Runs the program in a private network namespace where example.com names a
# local web server, so the start-up probe is answered. With "route", the
# namespace also gets a default route, so the map's connection test passes.
start_online() {
  if [ "$(id -u)" -ne 0 ] || ! unshare -n -m true 2>/dev/null; then
    echo "SKIP: needs root for a private network namespace"; exit 77
  fi
  local route_setup=""
  if [ "$1" = route ]; then
    route_setup="ip link add zv0 type veth peer name zv1; ip addr add 10.77.0.1/24 dev zv0; ip link set zv0 up; ip link set zv1 up; ip route add default via 10.77.0.2"
  fi
  cat >"$scratch/inside.sh" <<INSIDE
set -e
ip link set lo up
$route_setup
mount -t sysfs sysfs /sys # this namespace's interfaces, not the host's
printf '127.0.0.1 localhost example.com\n' > "$scratch/hosts"
mount --bind "$scratch/hosts" /etc/hosts
mkdir -p "$scratch/www"; echo ok > "$scratch/www/index.html"
(cd "$scratch/www" && exec timeout 60 python3 -m http.server 80 --bind 127.0.0.1) >"$scratch/http.log" 2>&1 &
for i in \$(seq 1 50); do (exec 3<>/dev/tcp/127.0.0.1/80) 2>/dev/null && break; sleep 0.1; done
exec "$program"
INSIDE
  unshare -n -m bash "$scratch/inside.sh" >"$scratch/out.log" 2>&1 &
  pids+=($!)
  started=$(now_ms)
}

case "$case_name" in
startup_offline)
  start_offline
  splash=$(wait_window 5000 '^Zarvent$') || fail "no splash window"
  geometry=$(xdotool getwindowgeometry "$splash" | awk '/Geometry/ {print $2}')
  [ "$geometry" = "509x381" ] || fail "splash is $geometry, not 509x381"
  sleep 1.5
  import -window "$splash" "$shots/splash.png" 2>/dev/null || true
  mp3=$(wait_window $(( 7000 - ($(now_ms) - started) )) '^Mp3 Player$') || fail "no Mp3 panel within 7 s"
  echo "Mp3 panel after $(( $(now_ms) - started )) ms"
  visible '^Zarvent$' && fail "the splash is still showing"
  visible '^Form2$' && fail "the map showed without a network"
  geometry=$(xdotool getwindowgeometry "$mp3" | awk '/Geometry/ {print $2}')
  [ "$geometry" = "856x319" ] || fail "Mp3 panel is $geometry, not folded and narrow (856x319)"
  kill -0 "${pids[0]}" 2>/dev/null || fail "the program ended"
  import -window "$mp3" "$shots/mp3.png" 2>/dev/null || true
  ;;

splash_keypress)
  start_offline
  splash=$(wait_window 5000 '^Zarvent$') || fail "no splash window"
  xdotool windowactivate --sync "$splash" 2>/dev/null || xdotool windowfocus --sync "$splash"
  xdotool key --clearmodifiers x
  for _ in $(seq 1 40); do
    kill -0 "${pids[0]}" 2>/dev/null || break
    sleep 0.05
  done
  kill -0 "${pids[0]}" 2>/dev/null && fail "the program is still running after the key"
  wait "${pids[0]}"; code=$?
  [ "$code" -eq 0 ] || fail "exit code $code"
  visible '^Mp3 Player$' && fail "the Mp3 panel appeared"
  ;;

map_route)
  start_online no_route
  map=$(wait_window 9000 '^Form2$') || { cat "$scratch/out.log"; fail "no map window"; }
  echo "map after $(( $(now_ms) - started )) ms"
  visible '^Mp3 Player$' && fail "the Mp3 panel showed with a network"
  geometry=$(xdotool getwindowgeometry "$map" | awk '/Geometry/ {print $2}')
  [ "$geometry" = "529x429" ] || fail "map is $geometry, not 529x429"
  # The window is cut to the outline: its corner is no longer the window's.
  eval "$(xdotool getwindowgeometry --shell "$map")"
  sleep 0.5
  import -window root "$shots/map-screen.png" 2>/dev/null || true
  import -window root -crop "${WIDTH}x${HEIGHT}+${X}+${Y}" +repage "$shots/map.png" 2>/dev/null || true
  xdotool mousemove $((X + 3)) $((Y + HEIGHT - 3))
  sleep 0.2
  under=$(xdotool getmouselocation --shell | awk -F= '/WINDOW/ {print $2}')
  [ "$under" != "$map" ] || fail "the corner outside the outline still belongs to the map"
  # A click on land that no region covers: the program's own message.
  xdotool mousemove $((X + 180)) $((Y + 50)) click 1
  box=$(wait_window 3000 '^Zarvent$') || fail "no message after a click outside the regions"
  import -window root "$shots/map-message.png" 2>/dev/null || true
  ;;
map_region)
  start_online route
  map=$(wait_window 9000 '^Form2$') || { cat "$scratch/out.log"; fail "no map window"; }
  eval "$(xdotool getwindowgeometry --shell "$map")"
  sleep 0.3
  xdotool mousemove $((X + 270)) $((Y + 250)) click 1
  panel=$(wait_window 3000 '^FM$') || { cat "$scratch/out.log"; fail "the Tamil region opened no panel"; }
  visible '^Form2$' && fail "the map is still showing"
  sleep 0.5
  geometry=$(xdotool getwindowgeometry "$panel" | awk '/Geometry/ {print $2}')
  [ "$geometry" = "856x319" ] || fail "the panel is $geometry, not folded and narrow (856x319)"
  eval "$(xdotool getwindowgeometry --shell "$panel")"
  import -window "$panel" "$shots/panel.png" 2>/dev/null || true
  # Kill Me: the program ends at once.
  xdotool mousemove $((X + 790)) $((Y + 100)) click 1
  for _ in $(seq 1 40); do
    kill -0 "${pids[0]}" 2>/dev/null || break
    sleep 0.05
  done
  kill -0 "${pids[0]}" 2>/dev/null && fail "Kill Me did not end the program"
  ;;
splash_close)
  start_offline
  splash=$(wait_window 5000 '^Zarvent$') || fail "no splash window"
  xdotool windowactivate --sync "$splash" 2>/dev/null || xdotool windowfocus --sync "$splash"
  xdotool key --clearmodifiers alt+F4
  for _ in $(seq 1 40); do
    kill -0 "${pids[0]}" 2>/dev/null || break
    sleep 0.05
  done
  kill -0 "${pids[0]}" 2>/dev/null && fail "the program is still running after the close"
  wait "${pids[0]}"; code=$?
  [ "$code" -eq 0 ] || fail "exit code $code"
  sleep 0.5
  visible '^Mp3 Player$' && fail "the Mp3 panel appeared"
  ;;

mp3_list)
  mkdir -p "$scratch/songs"
  for song in a b; do
    ffmpeg -nostdin -loglevel error -f lavfi -i sine=frequency=440:duration=90 -ac 2 -ar 44100 \
      -c:a libmp3lame -b:a 128k "$scratch/songs/$song.mp3" || fail "ffmpeg could not make a song"
  done
  cd "$scratch/songs" # the list starts on the program's current folder
  start_offline
  mp3=$(wait_window 9000 '^Mp3 Player$') || fail "no Mp3 panel"
  sleep 0.5
  click_in "$mp3" 770 200 # Label1: the list
  wait_size "$mp3" 5000 1135x319 || fail "the panel did not widen"
  click_in "$mp3" 660 150 # Label2: the lower part
  wait_size "$mp3" 5000 1135x541 || fail "the panel did not unfold"
  click_in "$mp3" 920 8 # the first song
  wait_window 1000 '^ a\.mp3$' >/dev/null || fail "the chosen song's title is not the caption: '$(xdotool getwindowname "$mp3")'"
  sleep 1.5
  import -window "$mp3" "$shots/mp3-playing.png" 2>/dev/null || true
  click_in "$mp3" 1021 526 # Clear List: the song plays on, under its title
  sleep 0.3
  visible '^ a\.mp3$' || fail "Clear List changed the title"
  kill -0 "${pids[0]}" 2>/dev/null || fail "the program ended"
  [ -s "$scratch/out.log" ] && { cat "$scratch/out.log"; fail "the program wrote on its streams"; }
  ;;

tray_restore | tray_absent)
  # A display of its own, so that whether a tray host runs is this case's
  # choice alone. Its servers are bounded and stopped by PID.
  soft=()
  trap 'for p in "${soft[@]}"; do kill "$p" 2>/dev/null; done; cleanup' EXIT
  for n in $(seq 140 180); do
    [ -e "/tmp/.X11-unix/X$n" ] || [ -e "/tmp/.X$n-lock" ] || break
  done
  timeout 85 setpriv --pdeathsig TERM Xvfb ":$n" -screen 0 1280x1024x24 -nolisten tcp >"$scratch/xvfb.log" 2>&1 &
  soft+=($!)
  export DISPLAY=":$n"
  for _ in $(seq 1 100); do xdpyinfo >/dev/null 2>&1 && break; sleep 0.1; done
  xdpyinfo >/dev/null 2>&1 || fail "no display of its own"
  timeout 85 setpriv --pdeathsig TERM openbox --sm-disable >"$scratch/openbox.log" 2>&1 &
  soft+=($!)
  sleep 0.5
  if [ "$case_name" = tray_restore ]; then
    command -v trayer >/dev/null || { echo "SKIP: trayer is not installed"; exit 77; }
    timeout 85 setpriv --pdeathsig TERM trayer --edge top --align right --widthtype pixel --width 64 --heighttype pixel --height 32 \
      --expand false --transparent false >"$scratch/trayer.log" 2>&1 &
    soft+=($!)
    for _ in $(seq 1 50); do xwininfo -root -tree | grep -q '("panel" "trayer")' && break; sleep 0.1; done
  fi
  start_online route
  map=$(wait_window 9000 '^Form2$') || { cat "$scratch/out.log"; fail "no map window"; }
  eval "$(xdotool getwindowgeometry --shell "$map")"
  sleep 0.3
  xdotool mousemove $((X + 270)) $((Y + 250)) click 1
  # With no sound server here the panel's load says it found no mixer: OK.
  panel=""
  for _ in $(seq 1 60); do
    for box in $(xdotool search --onlyvisible --name '^Zarvent$' 2>/dev/null); do
      xdotool windowactivate --sync "$box" key Return 2>/dev/null
    done
    panel=$(xdotool search --onlyvisible --name '^FM$' 2>/dev/null | head -n 1)
    [ -n "$panel" ] && break
    sleep 0.1
  done
  [ -n "$panel" ] || { cat "$scratch/out.log"; fail "the Tamil region opened no panel"; }
  sleep 0.5
  wm_state() { xprop -id "$panel" WM_STATE 2>/dev/null | awk '/window state/ {print $3}'; }
  tray_icon() { # the program's window embedded in the tray host, if any
    local host
    host=$(xwininfo -root -tree | awk '/\("panel" "trayer"\)/ {print $1; exit}')
    [ -n "$host" ] && xwininfo -tree -id "$host" | awk '/\("zarvent" "Zarvent"\)/ {print $1; exit}'
  }

  if [ "$case_name" = tray_restore ]; then
    xdotool windowminimize "$panel"
    icon=""
    for _ in $(seq 1 30); do
      icon=$(tray_icon)
      [ -n "$icon" ] && ! visible '^FM$' && break
      sleep 0.1
    done
    [ -n "$icon" ] || fail "no tray icon after the minimise"
    visible '^FM$' && fail "the panel is still on screen"
    [ "$(wm_state)" = Iconic ] && fail "the panel is an ordinary minimised window, not in the tray"
    eval "$(xdotool getwindowgeometry --shell "$icon")"
    xdotool mousemove $((X + WIDTH / 2)) $((Y + HEIGHT / 2)) click 1
    sleep 0.6
    import -window root "$shots/tray-menu.png" 2>/dev/null || true
    xdotool key Down Return # the menu's first entry: Restore
    wait_window 3000 '^FM$' >/dev/null || fail "Restore did not bring the panel back"
    for _ in $(seq 1 20); do [ -z "$(tray_icon)" ] && break; sleep 0.1; done
    [ -z "$(tray_icon)" ] || fail "the tray icon stayed after Restore"
    [ "$(wm_state)" = Normal ] || fail "the panel came back as '$(wm_state)'"
  else
    click_in "$panel" 668 240 # Label10, the panel's own minimise
    for _ in $(seq 1 30); do [ "$(wm_state)" = Iconic ] && break; sleep 0.1; done
    [ "$(wm_state)" = Iconic ] || fail "the panel is '$(wm_state)', not minimised"
    [ -z "$(tray_icon)" ] || fail "a tray icon with no tray host"
    xdotool windowactivate --sync "$panel" 2>/dev/null
    wait_window 3000 '^FM$' >/dev/null || fail "the minimised panel did not come back"
  fi
  # A station panel has no close command: the window manager is offered no
  # close function (openbox draws its close button all the same), and its
  # close request (Alt+F4) changes nothing.
  xprop -id "$panel" _MOTIF_WM_HINTS | awk -F'= ' '/_MOTIF_WM_HINTS/ {split($2, h, ", "); exit !(h[1] % 2 == 1 && int(h[2] / 32) % 2 == 0)}' \
    || fail "the window manager is offered a close: $(xprop -id "$panel" _MOTIF_WM_HINTS)"
  xdotool windowactivate --sync "$panel" key --clearmodifiers alt+F4 2>/dev/null
  sleep 0.5
  visible '^FM$' || fail "the window manager's close took the panel away"
  kill -0 "${pids[0]}" 2>/dev/null || fail "the program ended"
  [ -s "$scratch/out.log" ] && { cat "$scratch/out.log"; fail "the program wrote on its streams"; }
  sleep 0.5
  import -window root "$shots/$case_name.png" 2>/dev/null || true
  ;;

*)
  fail "unknown case $case_name"
  ;;
esac
echo "PASS: $case_name"
