#!/usr/bin/env bash
# The real zarvent on the display in $DISPLAY, driven as a person would with xdotool.
#   e2e.sh <case> <path to zarvent> <folder for screenshots>
set -uo pipefail
case_name=$1 program=$2 shots=$3
[ -n "${DISPLAY:-}" ] && xdpyinfo >/dev/null 2>&1 || { echo "SKIP: no X display (scripts/test starts one)"; exit 77; }

pids=() servers=()
scratch=$(mktemp -d /tmp/zarvent-e2e.XXXXXX)
cleanup() { kill -9 "${pids[@]}" 2>/dev/null; kill "${servers[@]}" 2>/dev/null; rm -rf "$scratch"; }
trap cleanup EXIT
fail() { echo "FAIL: $*"; cat "$scratch/out.log" 2>/dev/null; exit 1; }
now_ms() { date +%s%3N; }
# Runs "$@" every 50 ms until it succeeds, for up to $1 ms.
within() {
  local end=$(( $(now_ms) + $1 )); shift
  until "$@"; do [ "$(now_ms)" -lt "$end" ] || return 1; sleep 0.05; done
}
window() { xdotool search --onlyvisible --name "$1" 2>/dev/null | head -n 1; }
visible() { [ -n "$(window "$1")" ]; }
wait_window() { within "$1" visible "$2" && window "$2"; } # prints its id
size_is() { [ "$(xdotool getwindowgeometry "$1" | awk '/Geometry/ {print $2}')" = "$2" ]; }
click_in() { xdotool mousemove --window "$1" "$2" "$3" click 1; }
key_to() { xdotool windowactivate --sync "$1" key --clearmodifiers "$2" 2>/dev/null; }
running() { kill -0 "${pids[0]}" 2>/dev/null; }
ends() { within 2000 eval '! running'; }
shot() { mkdir -p "$shots" && import -window "$1" "$shots/$2.png" 2>/dev/null; } # for the README
quiet_and_running() { running || fail "the program ended"; [ ! -s "$scratch/out.log" ] || fail "it wrote on its streams"; }
server() { timeout 85 setpriv --pdeathsig TERM "$@" >/dev/null 2>&1 & servers+=($!); }

start_offline() { # with no network: a namespace of its own whose only loopback is down
  $(unshare -n true 2>/dev/null && echo unshare -n) "$program" >"$scratch/out.log" 2>&1 &
  pids+=($!) started=$(now_ms)
}
# In a namespace of its own where example.com is a local web server, so the start-up
# probe is answered; "route" adds a default route for the map's connection test.
start_online() {
  [ "$(id -u)" -eq 0 ] && unshare -n -m true 2>/dev/null || { echo "SKIP: needs root for a private network namespace"; exit 77; }
  mkdir -p "$scratch/www" && echo ok >"$scratch/www/index.html" && echo '127.0.0.1 localhost example.com' >"$scratch/hosts"
  cat >"$scratch/inside.sh" <<INSIDE
set -e
ip link set lo up
$([ "$1" = route ] && echo "ip link add zv0 type veth peer name zv1; ip addr add 10.77.0.1/24 dev zv0
ip link set zv0 up; ip link set zv1 up; ip route add default via 10.77.0.2")
mount -t sysfs sysfs /sys # this namespace's interfaces, not the host's
mount --bind "$scratch/hosts" /etc/hosts
(cd "$scratch/www" && exec timeout 60 python3 -m http.server 80 --bind 127.0.0.1) >"$scratch/http.log" 2>&1 &
for i in \$(seq 1 50); do (exec 3<>/dev/tcp/127.0.0.1/80) 2>/dev/null && break; sleep 0.1; done
exec "$program"
INSIDE
  unshare -n -m bash "$scratch/inside.sh" >"$scratch/out.log" 2>&1 &
  pids+=($!)
}

# The map's Tamil region opens its panel, answering a box about a missing mixer on the way.
answer_boxes() { for box in $(xdotool search --onlyvisible --name '^Zarvent$' 2>/dev/null); do key_to "$box" Return; done; }
open_tamil_panel() {
  map=$(wait_window 9000 '^Form2$') || fail "no map window"
  sleep 0.3 && click_in "$map" 270 250
  within 6000 eval 'answer_boxes; visible "^FM$"' || fail "the Tamil region opened no panel"
  panel=$(window '^FM$')
}

case "$case_name" in
startup_offline) # the splash, then with no network the Mp3 panel within 7 s
  start_offline
  splash=$(wait_window 5000 '^Zarvent$') || fail "no splash window"
  size_is "$splash" 509x381 || fail "the splash is not 509x381"
  sleep 1.5 && shot "$splash" splash
  mp3=$(wait_window $(( 7000 - ($(now_ms) - started) )) '^Mp3 Player$') || fail "no Mp3 panel within 7 s"
  ! visible '^Zarvent$' && ! visible '^Form2$' || fail "the splash, or the map with no network, shows"
  size_is "$mp3" 856x319 || fail "the Mp3 panel is not folded and narrow (856x319)"
  running || fail "the program ended"
  ;;
splash_keypress | splash_close) # a key, or the window manager's close (Alt+F4): the program ends, silently
  start_offline
  splash=$(wait_window 5000 '^Zarvent$') || fail "no splash window"
  key_to "$splash" "$([ "$case_name" = splash_keypress ] && echo x || echo alt+F4)"
  ends || fail "the program is still running"
  wait "${pids[0]}" || fail "exit code $?"
  sleep 0.5
  visible '^Mp3 Player$' && fail "the Mp3 panel appeared"
  ;;
map_route) # the probe answered: the map in its outline, and a click off the regions answered
  start_online no_route
  map=$(wait_window 9000 '^Form2$') || fail "no map window"
  visible '^Mp3 Player$' && fail "the Mp3 panel showed with a network"
  size_is "$map" 529x429 || fail "the map is not 529x429"
  sleep 0.5 && eval "$(xdotool getwindowgeometry --shell "$map")"
  import -window root -crop "${WIDTH}x${HEIGHT}+${X}+${Y}" +repage "$shots/map.png" 2>/dev/null
  xdotool mousemove $((X + 3)) $((Y + HEIGHT - 3)) && sleep 0.2
  [ "$(xdotool getmouselocation --shell | sed -n 's/^WINDOW=//p')" != "$map" ] ||
    fail "the corner outside the outline still belongs to the map"
  click_in "$map" 180 50 # land that no region covers
  wait_window 3000 '^Zarvent$' >/dev/null || fail "no message after a click outside the regions"
  ;;
map_region) # the Tamil region opens its panel folded and narrow; its Kill Me spot ends all
  start_online route
  open_tamil_panel
  visible '^Form2$' && fail "the map is still showing"
  sleep 0.5
  size_is "$panel" 856x319 || fail "the panel is not folded and narrow (856x319)"
  shot "$panel" panel
  click_in "$panel" 790 100
  ends || fail "Kill Me did not end the program"
  ;;
mp3_list) # widened and unfolded; a song of the starting folder plays under its own title
  mkdir -p "$scratch/songs" && cd "$scratch/songs" || fail "no folder for the songs"
  ffmpeg -nostdin -loglevel error -f lavfi -i sine=frequency=440:duration=90 -ac 2 -ar 44100 -c:a libmp3lame \
    -b:a 128k a.mp3 && cp a.mp3 b.mp3 || fail "ffmpeg could not make the songs"
  start_offline
  mp3=$(wait_window 9000 '^Mp3 Player$') || fail "no Mp3 panel"
  sleep 0.5 && click_in "$mp3" 770 200 # Label1: the list
  within 5000 size_is "$mp3" 1135x319 || fail "the panel did not widen"
  click_in "$mp3" 660 150 # Label2: the lower part
  within 5000 size_is "$mp3" 1135x541 || fail "the panel did not unfold"
  click_in "$mp3" 920 8 # the first song
  wait_window 1000 '^ a\.mp3$' >/dev/null || fail "the song's title is not the caption: '$(xdotool getwindowname "$mp3")'"
  sleep 1.5 && click_in "$mp3" 1021 526 && sleep 0.3 # Clear List: the song plays on, under its title
  visible '^ a\.mp3$' || fail "Clear List changed the title"
  quiet_and_running
  ;;
tray_restore | tray_absent) # with a tray host (trayer) or none, on a display of the case's own
  for n in $(seq 140 180); do [ -e "/tmp/.X11-unix/X$n" ] || [ -e "/tmp/.X$n-lock" ] || break; done
  server Xvfb ":$n" -screen 0 1280x1024x24 -nolisten tcp && export DISPLAY=":$n"
  within 10000 eval 'xdpyinfo >/dev/null 2>&1' || fail "no display of its own"
  server openbox --sm-disable && sleep 0.5
  tray_host() { xwininfo -root -tree | awk '/\("panel" "trayer"\)/ {print $1; exit}'; }
  tray_icon() { [ -n "$(tray_host)" ] && xwininfo -tree -id "$(tray_host)" | awk '/\("zarvent" "Zarvent"\)/ {print $1; exit}'; }
  wm_state() { xprop -id "$panel" WM_STATE 2>/dev/null | awk '/window state/ {print $3}'; }
  if [ "$case_name" = tray_restore ]; then
    command -v trayer >/dev/null || { echo "SKIP: trayer is not installed"; exit 77; }
    server trayer --edge top --align right --widthtype pixel --width 64 --heighttype pixel --height 32 --expand false --transparent false
    within 5000 eval '[ -n "$(tray_host)" ]'
  fi
  start_online route
  open_tamil_panel
  sleep 0.5
  if [ "$case_name" = tray_restore ]; then # minimised by the window manager: into the tray, and back by its menu
    xdotool windowminimize "$panel"
    within 3000 eval '[ -n "$(tray_icon)" ] && ! visible "^FM$" && [ "$(wm_state)" != Iconic ]' ||
      fail "no tray icon; the panel is on screen or an ordinary minimised window"
    eval "$(xdotool getwindowgeometry --shell "$(tray_icon)")"
    xdotool mousemove $((X + WIDTH / 2)) $((Y + HEIGHT / 2)) click 1
    sleep 0.6
    xdotool key Down Return # the menu's first entry: Restore
    wait_window 3000 '^FM$' >/dev/null || fail "Restore did not bring the panel back"
    within 2000 eval '[ -z "$(tray_icon)" ]' || fail "the tray icon stayed after Restore"
    [ "$(wm_state)" = Normal ] || fail "the panel came back as '$(wm_state)'"
  else # the panel's own minimise spot, Label10: an ordinary minimised window
    click_in "$panel" 668 240
    within 3000 eval '[ "$(wm_state)" = Iconic ]' || fail "the panel is '$(wm_state)', not minimised"
    [ -z "$(tray_icon)" ] || fail "a tray icon with no tray host"
    xdotool windowactivate --sync "$panel" 2>/dev/null
    wait_window 3000 '^FM$' >/dev/null || fail "the minimised panel did not come back"
  fi
  # A station panel has no close command: the window manager is offered none
  # (openbox draws its button all the same), and its close request does nothing.
  xprop -id "$panel" _MOTIF_WM_HINTS | awk -F'= ' '/_MOTIF_WM_HINTS/ {split($2, h, ", "); exit !(h[1] % 2 == 1 && int(h[2] / 32) % 2 == 0)}' ||
    fail "the window manager is offered a close: $(xprop -id "$panel" _MOTIF_WM_HINTS)"
  key_to "$panel" alt+F4
  sleep 0.5
  visible '^FM$' || fail "the window manager's close took the panel away"
  quiet_and_running
  ;;
*) fail "unknown case $case_name" ;;
esac
echo "PASS: $case_name"
