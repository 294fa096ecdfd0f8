#!/bin/sh
# Runs a test on a session bus of its own, so that it never meets the
# desktop's bus or another test's.
command -v dbus-run-session >/dev/null 2>&1 || {
  echo "SKIP: dbus-run-session is not installed (package dbus-daemon)"
  exit 77
}
exec dbus-run-session -- "$@"
