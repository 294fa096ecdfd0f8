#!/usr/bin/env bash
# Turns the hand-drawn frames beside this script into img/play.gif:
# 239 x 75 px, 120 ms a frame, looping for ever.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cd "$here"
convert -delay 12 -loop 0 -background '#404040' frame1.svg frame2.svg frame3.svg frame4.svg frame5.svg frame6.svg \
  -alpha remove -layers Optimize ../play.gif
identify ../play.gif
