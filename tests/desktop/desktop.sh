#!/usr/bin/env bash
# The program as a desktop meets it: installed, packaged, on a scaled screen.
#   desktop.sh <case> <build folder> <folder for screenshots>
# Cases:
#   install_files  cmake --install into a scratch prefix: the program, its
#                  pictures, the menu entry, the icons, the metadata and the
#                  manual page; desktop-file-validate and appstreamcli validate
#                  pass on what was installed
#   install_run    the installed program under the real X server: the splash
#                  with its picture, then Mp3 (no network); with no session bus
#                  it says nothing; on a private bus it is the MPRIS player
#                  "Zarvent", and its Previous asks for songs as the label does
#   package        (when dpkg-deb is here) the Debian package from CPack: its
#                  files, a Depends that holds every library the program needs
#                  and its run-time plugins, a stripped program; lintian finds
#                  no error
#   hidpi          on a large display of its own: at QT_SCALE_FACTOR=2 the
#                  splash, Mp3 and (with root, for a private network) the map
#                  are exactly twice as large, look the same halved, and their
#                  pictures are drawn sharp rather than stretched
set -uo pipefail
case_name=$1 build=$2 shots=$3
mkdir -p "$shots"
program="$build/zarvent"
cmake=${ZARVENT_CMAKE:-cmake} cpack=${ZARVENT_CPACK:-cpack}

pids=()
scratch=$(mktemp -d /tmp/zarvent-desktop.XXXXXX)
# Each program runs in a process group of its own, so that what it brought
# along (a bus daemon, a web server) goes with it.
cleanup() {
  for p in "${pids[@]}"; do kill -9 -- "-$p" "$p" 2>/dev/null; done
  rm -rf "$scratch"
}
trap cleanup EXIT
fail() { echo "FAIL: $*"; exit 1; }
skip() { echo "SKIP: $*"; exit 77; }
need() { command -v "$1" >/dev/null || skip "$1 is not installed (package $2)"; }

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
size_of() { xdotool getwindowgeometry "$1" | awk '/Geometry/ {print $2}'; }
need_display() {
  if [ -z "${DISPLAY:-}" ] || ! xdpyinfo >/dev/null 2>&1; then
    skip "no X display (scripts/test starts one)"
  fi
}

# Installs the build into $1 as `cmake --install` does for a user.
install_into() {
  "$cmake" --install "$build" --prefix "$1" >"$scratch/install.log" 2>&1 || { cat "$scratch/install.log"; fail "cmake --install failed"; }
}

# Runs "$@" with no network: a network namespace of its own.
start_offline() {
  if unshare -n true 2>/dev/null; then
    setsid unshare -n "$@" >"$scratch/out.log" 2>&1 &
  else
    echo "note: no network namespace here; relying on the machine having no route out"
    setsid "$@" >"$scratch/out.log" 2>&1 &
  fi
  pids+=($!)
  started=$(now_ms)
}

# Runs the program in a private network namespace where example.com names a
# local web server, so the start-up probe is answered and the map shows.
start_online() {
  local run=$1
  cat >"$scratch/inside.sh" <<INSIDE
set -e
ip link set lo up
printf '127.0.0.1 localhost example.com\n' > "$scratch/hosts"
mount --bind "$scratch/hosts" /etc/hosts
mkdir -p "$scratch/www"; echo ok > "$scratch/www/index.html"
(cd "$scratch/www" && exec timeout 60 python3 -m http.server 80 --bind 127.0.0.1) >"$scratch/http.log" 2>&1 &
for i in \$(seq 1 50); do (exec 3<>/dev/tcp/127.0.0.1/80) 2>/dev/null && break; sleep 0.1; done
exec $run
INSIDE
  setsid unshare -n -m bash "$scratch/inside.sh" >"$scratch/out.log" 2>&1 &
  pids+=($!)
}

stop_program() {
  local p
  for p in "${pids[@]}"; do kill -9 -- "-$p" "$p" 2>/dev/null; done
  for p in "${pids[@]}"; do wait "$p" 2>/dev/null; done
  pids=()
}

# The number of colours in a screenshot: the splash's background alone has
# a handful, its picture thousands.
colours() { identify -format '%k' "$1"; }

# ImageMagick's normalised RMSE between two pictures of one size.
rmse() { compare -metric RMSE "$1" "$2" null: 2>&1 | sed -n 's/.*(\([0-9.e-]*\)).*/\1/p'; }

# The splash, then Mp3, of the program started by "$@" with no network.
splash_then_mp3() {
  start_offline "$@"
  local splash mp3
  splash=$(wait_window 5000 '^Zarvent$') || fail "no splash window"
  [ "$(size_of "$splash")" = 509x381 ] || fail "the splash is $(size_of "$splash"), not 509x381"
  sleep 0.8
  import -window "$splash" "$scratch/splash.png" 2>/dev/null || fail "no screenshot of the splash"
  [ "$(colours "$scratch/splash.png")" -gt 500 ] || fail "the splash shows no picture: its pictures were not found"
  mp3=$(wait_window $(( 9000 - ($(now_ms) - started) )) '^Mp3 Player$') || { cat "$scratch/out.log"; fail "no Mp3 panel"; }
  [ "$(size_of "$mp3")" = 856x319 ] || fail "Mp3 is $(size_of "$mp3"), not 856x319"
  sleep 0.5
  import -window "$mp3" "$scratch/mp3.png" 2>/dev/null
  [ "$(colours "$scratch/mp3.png")" -gt 500 ] || fail "Mp3 shows no skin"
  mp3_window=$mp3
}

case "$case_name" in
install_files)
  need desktop-file-validate desktop-file-utils
  need appstreamcli appstream
  prefix="$scratch/usr"
  install_into "$prefix"
  for f in bin/zarvent share/zarvent/img/splash.svg share/zarvent/img/map.svg share/zarvent/img/play.gif \
           share/zarvent/img/panel/skin.svg share/applications/zarvent.desktop \
           share/icons/hicolor/scalable/apps/zarvent.svg share/man/man1/zarvent.1.gz share/doc/zarvent/copyright; do
    [ -s "$prefix/$f" ] || fail "$f was not installed"
  done
  [ -x "$prefix/bin/zarvent" ] || fail "bin/zarvent is not executable"
  # The GIF's frames are its sources; the program never shows them.
  [ -e "$prefix/share/zarvent/img/play" ] && fail "the GIF's frames were installed"
  # Every picture the build puts beside the program is installed, and the same.
  (cd "$build/img" && find . -path ./play -prune -o -type f -print) | while read -r f; do
    cmp -s "$build/img/$f" "$prefix/share/zarvent/img/$f" || { echo "FAIL: img/$f is missing or differs"; exit 1; }
  done || exit 1
  for size in 16 22 24 32 48 64 128 256; do
    png="$prefix/share/icons/hicolor/${size}x${size}/apps/zarvent.png"
    [ "$(identify -format '%wx%h' "$png" 2>/dev/null)" = "${size}x${size}" ] || fail "no ${size}x${size} icon"
  done
  # The icon is drawn, not empty: its middle is opaque.
  [ "$(convert "$prefix/share/icons/hicolor/48x48/apps/zarvent.png" -format '%[fx:p{24,24}.a]' info:)" = 1 ] \
    || fail "the 48x48 icon is empty in its middle"
  zcat "$prefix/share/man/man1/zarvent.1.gz" | grep -q '^\.TH ZARVENT 1' || fail "the manual page is not one"
  desktop-file-validate "$prefix/share/applications/zarvent.desktop" || fail "desktop-file-validate"
  grep -qx 'Exec=zarvent' "$prefix/share/applications/zarvent.desktop" || fail "the entry does not start zarvent"
  metainfo=$(ls "$prefix"/share/metainfo/*.metainfo.xml) || fail "no AppStream metadata"
  appstreamcli validate --no-net "$metainfo" || fail "appstreamcli validate"
  grep -q '<launchable type="desktop-id">zarvent.desktop</launchable>' "$metainfo" || fail "the metadata names no desktop entry"
  grep -q '<screenshot type="default">' "$metainfo" || fail "the metadata has no screenshot"
  ;;

install_run)
  need_display
  prefix="$scratch/usr"
  install_into "$prefix"
  # Moved away from the build, with no session bus: the pictures are found
  # from the program's own place, and nothing is said.
  splash_then_mp3 env DBUS_SESSION_BUS_ADDRESS="unix:path=$scratch/no-bus" "$prefix/bin/zarvent"
  cp "$scratch/splash.png" "$shots/installed-splash.png"
  kill -0 "${pids[0]}" 2>/dev/null || fail "the installed program ended"
  [ -s "$scratch/out.log" ] && { cat "$scratch/out.log"; fail "the program wrote on its streams"; }
  stop_program

  need dbus-run-session dbus-daemon
  need dbus-send dbus-bin
  cat >"$scratch/on-bus.sh" <<'ON_BUS'
#!/usr/bin/env bash
# Inside dbus-run-session: tells the outside the bus's address, and keeps
# the program's streams apart from the bus daemon's.
echo "$DBUS_SESSION_BUS_ADDRESS" >"$1"
exec "$3" >"$2" 2>&1
ON_BUS
  splash_then_mp3 dbus-run-session -- bash "$scratch/on-bus.sh" "$scratch/bus" "$scratch/program.log" "$prefix/bin/zarvent"
  export DBUS_SESSION_BUS_ADDRESS=$(cat "$scratch/bus")
  mpris() {
    dbus-send --session --print-reply --reply-timeout=3000 --dest=org.mpris.MediaPlayer2.zarvent \
      /org/mpris/MediaPlayer2 "$@"
  }
  prop() { mpris org.freedesktop.DBus.Properties.Get string:"$1" string:"$2" | awk 'NR == 2 {print $NF}'; }
  [ "$(prop org.mpris.MediaPlayer2 Identity)" = '"Zarvent"' ] || fail "no MPRIS player named Zarvent on the bus"
  [ "$(prop org.mpris.MediaPlayer2 DesktopEntry)" = '"zarvent"' ] || fail "the player names no desktop entry"
  [ "$(prop org.mpris.MediaPlayer2.Player PlaybackStatus)" = '"Stopped"' ] || fail "Mp3 is not stopped"
  [ "$(prop org.mpris.MediaPlayer2.Player CanPause)" = true ] || fail "Mp3 cannot pause"
  mpris org.mpris.MediaPlayer2.Player.Previous >/dev/null || fail "Previous was not answered"
  box=$(wait_window 3000 '^Zarvent$') || fail "Previous showed no message"
  import -window root "$shots/installed-previous.png" 2>/dev/null
  xdotool windowactivate --sync "$box" key Return 2>/dev/null
  kill -0 "${pids[0]}" 2>/dev/null || fail "the program ended"
  [ -s "$scratch/program.log" ] && { cat "$scratch/program.log"; fail "the program wrote on its streams"; }
  ;;

package)
  need dpkg-deb dpkg
  need "$cpack" cmake
  "$cpack" -G DEB --config "$build/CPackConfig.cmake" -B "$scratch/out" >"$scratch/cpack.log" 2>&1 \
    || { cat "$scratch/cpack.log"; fail "cpack failed"; }
  deb=$(ls "$scratch"/out/zarvent_*.deb) || fail "no package"
  echo "package: $(basename "$deb"), $(stat -c %s "$deb") bytes"
  dpkg-deb -c "$deb" | awk '{print $NF}' >"$scratch/files"
  for f in ./usr/bin/zarvent ./usr/share/zarvent/img/splash.svg ./usr/share/zarvent/img/play.gif \
           ./usr/share/zarvent/img/panel/skin.svg ./usr/share/applications/zarvent.desktop \
           ./usr/share/icons/hicolor/scalable/apps/zarvent.svg ./usr/share/icons/hicolor/48x48/apps/zarvent.png \
           ./usr/share/man/man1/zarvent.1.gz ./usr/share/doc/zarvent/copyright ./usr/share/doc/zarvent/changelog.gz; do
    grep -qx "$f" "$scratch/files" || fail "the package lacks $f"
  done
  grep -q '^./usr/share/metainfo/.*\.metainfo\.xml$' "$scratch/files" || fail "the package lacks its metadata"
  depends=$(dpkg-deb -f "$deb" Depends | tr ',' '\n' | sed 's/^ *//; s/ .*//')
  # Every library the program loads comes from a package it depends on.
  dpkg-deb -x "$deb" "$scratch/root"
  file "$scratch/root/usr/bin/zarvent" | grep -q ', stripped' || fail "the packaged program is not stripped"
  ldd "$scratch/root/usr/bin/zarvent" >"$scratch/ldd" || fail "ldd cannot read the packaged program"
  needed=$(readelf -d "$scratch/root/usr/bin/zarvent" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p')
  [ -n "$needed" ] || fail "the packaged program needs no library?"
  for name in $needed; do
    lib=$(awk -v n="$name" '$1 == n && $3 ~ /^\// {print $3; exit} $1 ~ ("/" n "$") {print $1; exit}' "$scratch/ldd")
    [ -n "$lib" ] || fail "$name is not found on this machine"
    owner=$(dpkg -S "$(readlink -f "$lib")" 2>/dev/null | head -n 1 | cut -d: -f1)
    [ -z "$owner" ] && owner=$(dpkg -S "$lib" 2>/dev/null | head -n 1 | cut -d: -f1)
    [ -n "$owner" ] || fail "no package owns $lib"
    grep -qx "$owner" <<<"$depends" || fail "Depends lacks $owner, for $name"
  done
  # What it loads at run time: libvlc's plugins, Qt's plugins, the fonts.
  for p in vlc-plugin-base vlc-plugin-access-extra qt6-qpa-plugins libqt6svg6 qt6-image-formats-plugins fonts-liberation; do
    grep -qx "$p" <<<"$depends" || fail "Depends lacks $p"
  done
  # The packaged program finds its pictures under /usr/share/zarvent.
  [ -d "$scratch/root/usr/share/zarvent/img" ] || fail "no pictures under /usr/share/zarvent"
  if command -v lintian >/dev/null; then
    lintian --fail-on error "$deb" 2>&1 | grep -v 'root privileges' | tee "$scratch/lintian.log"
    [ "${PIPESTATUS[0]}" -eq 0 ] || fail "lintian found an error"
  else
    echo "note: lintian is not installed; the package was not linted"
  fi
  ;;

hidpi)
  command -v Xvfb >/dev/null || skip "Xvfb is not installed (package xvfb)"
  # A display of its own, large enough for Mp3 at twice its size.
  for n in $(seq 181 220); do
    [ -e "/tmp/.X11-unix/X$n" ] || [ -e "/tmp/.X$n-lock" ] || break
  done
  timeout 110 setpriv --pdeathsig TERM Xvfb ":$n" -screen 0 2400x1600x24 -nolisten tcp >"$scratch/xvfb.log" 2>&1 &
  soft=($!)
  trap 'for p in "${soft[@]}"; do kill "$p" 2>/dev/null; done; cleanup' EXIT
  export DISPLAY=":$n"
  for _ in $(seq 1 100); do xdpyinfo >/dev/null 2>&1 && break; sleep 0.1; done
  xdpyinfo >/dev/null 2>&1 || fail "no display of its own"
  timeout 110 setpriv --pdeathsig TERM openbox --sm-disable >"$scratch/openbox.log" 2>&1 &
  soft+=($!)
  sleep 0.5

  # Halved, the large shot must match the small one: the layout holds. A
  # skin drawn anew at the screen's density has detail that stretched
  # pixels lack, and stretching comes in two kinds: smooth (a label's
  # picture), seen as a weaker Laplacian than the small shot stretched the
  # same way; blocky (a picture painted by the form), seen as little left
  # once each 2x2 block takes one colour. Measured here, sharp against
  # stretched: Mp3 1.82 against 1.32 and 0.033 against 0.030; the map 2.0
  # against 2.1 and 0.032 against 0.014.
  laplacian() { convert "$1" -colorspace gray -morphology Convolve Laplacian:0 -format '%[fx:standard_deviation]' info:; }
  compare_scales() {
    local name=$1 one=$2 two=$3 least_edges=$4 least_detail=$5 layout edges detail
    convert "$two" -filter Box -resize 50% "$scratch/$name-halved.png"
    layout=$(rmse "$scratch/$name-halved.png" "$one")
    convert "$one" -filter Triangle -resize 200% "$scratch/$name-smooth.png"
    edges=$(awk -v a="$(laplacian "$two")" -v b="$(laplacian "$scratch/$name-smooth.png")" 'BEGIN {printf "%.2f", a / b}')
    convert "$two" -sample 50% -sample 200% "$scratch/$name-blocks.png"
    detail=$(rmse "$two" "$scratch/$name-blocks.png")
    echo "$name: layout difference $layout; edges $edges times a smooth stretch; detail beyond 2x2 blocks $detail"
    awk -v v="$layout" 'BEGIN {exit !(v < 0.06)}' || fail "$name at scale 2 does not match its layout at scale 1 ($layout)"
    awk -v v="$edges" -v min="$least_edges" 'BEGIN {exit !(v > min)}' || fail "$name at scale 2 is smoothly stretched ($edges)"
    awk -v v="$detail" -v min="$least_detail" 'BEGIN {exit !(v > min)}' || fail "$name at scale 2 is in blocks ($detail)"
  }

  for scale in 1 2; do
    export QT_SCALE_FACTOR=$scale
    start_offline "$program"
    splash=$(wait_window 5000 '^Zarvent$') || fail "no splash at scale $scale"
    sizes[$scale]="$(size_of "$splash")"
    mp3=$(wait_window 9000 '^Mp3 Player$') || { cat "$scratch/out.log"; fail "no Mp3 panel at scale $scale"; }
    sleep 0.8
    mp3_sizes[$scale]="$(size_of "$mp3")"
    import -window "$mp3" "$shots/hidpi-mp3-$scale.png" 2>/dev/null
    [ -s "$scratch/out.log" ] && { cat "$scratch/out.log"; fail "the program wrote on its streams"; }
    stop_program
  done
  [ "${sizes[1]}" = 509x381 ] && [ "${sizes[2]}" = 1018x762 ] || fail "the splash is ${sizes[1]} and ${sizes[2]}"
  [ "${mp3_sizes[1]}" = 856x319 ] && [ "${mp3_sizes[2]}" = 1712x638 ] || fail "Mp3 is ${mp3_sizes[1]} and ${mp3_sizes[2]}"
  compare_scales mp3 "$shots/hidpi-mp3-1.png" "$shots/hidpi-mp3-2.png" 1.55 0.02

  if [ "$(id -u)" -ne 0 ] || ! unshare -n -m true 2>/dev/null; then
    echo "note: the map needs root for a private network; only the splash and Mp3 were compared"
  else
    for scale in 1 2; do
      export QT_SCALE_FACTOR=$scale
      start_online "$program"
      map=$(wait_window 9000 '^Form2$') || { cat "$scratch/out.log"; fail "no map at scale $scale"; }
      sleep 0.8
      map_sizes[$scale]="$(size_of "$map")"
      eval "$(xdotool getwindowgeometry --shell "$map")"
      import -window root -crop "${WIDTH}x${HEIGHT}+${X}+${Y}" +repage "$shots/hidpi-map-$scale.png" 2>/dev/null
      stop_program
    done
    [ "${map_sizes[1]}" = 529x429 ] && [ "${map_sizes[2]}" = 1058x858 ] || fail "the map is ${map_sizes[1]} and ${map_sizes[2]}"
    compare_scales map "$shots/hidpi-map-1.png" "$shots/hidpi-map-2.png" 1.5 0.023
  fi
  ;;

*)
  fail "unknown case $case_name"
  ;;
esac
echo "PASS: $case_name"
