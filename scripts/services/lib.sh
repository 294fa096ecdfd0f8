# Shared by the service scripts: ports on 127.0.0.1, waiting, stopping by PID.
# Each service keeps its state in a directory the caller gives: pids (one
# per line) and whatever the service writes there.

# Debian's python3 when it is there: a version manager's shim in PATH costs
# half a second a call.
PY=/usr/bin/python3
[ -x "$PY" ] || PY=python3

# A port nobody listens on right now (the kernel's choice).
free_port() {
  "$PY" -c 'import socket; s = socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])'
}

# Waits up to $2 tenths of a second for something to accept on 127.0.0.1:$1.
wait_port() {
  local port=$1 tries=${2:-50} i
  for ((i = 0; i < tries; i++)); do
    if (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null; then
      return 0
    fi
    sleep 0.1
  done
  return 1
}

# Starts a command bounded by $lifetime seconds and records its PID in $dir/pids.
# timeout passes our TERM on to the command, so stopping the PID stops both.
start_bounded() {
  local log=$1
  shift
  timeout --kill-after=2 "$lifetime" "$@" >"$log" 2>&1 </dev/null &
  echo $! >>"$dir/pids"
}

# Alive and not a zombie: a peer whose starter has exited is reaped by
# whoever adopted it, sometimes late.
alive() {
  local stat
  stat=$(cat "/proc/$1/stat" 2>/dev/null) || return 1
  stat=${stat##*) }
  [ "${stat:0:1}" != Z ]
}

stop_service() {
  local dir=$1 pid any
  [ -f "$dir/pids" ] || return 0
  while read -r pid; do
    kill "$pid" 2>/dev/null || true
  done <"$dir/pids"
  for _ in $(seq 1 60); do
    any=0
    while read -r pid; do
      alive "$pid" && any=1
    done <"$dir/pids"
    [ "$any" = 0 ] && break
    sleep 0.05
  done
  while read -r pid; do
    alive "$pid" && kill -KILL "$pid" 2>/dev/null
  done <"$dir/pids"
  rm -f "$dir/pids"
}

usage_die() {
  echo "$1" >&2
  exit 2
}
