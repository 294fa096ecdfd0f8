#!/usr/bin/env bash
# Makes a test MP3: a stereo sine tone at half amplitude, 128 kbit/s CBR.
#   tone.sh OUT.mp3 [SECONDS=5] [HERTZ=440]
set -euo pipefail
out=${1:?usage: tone.sh OUT.mp3 [SECONDS] [HERTZ]}
seconds=${2:-5}
hertz=${3:-440}
wav=$(mktemp --suffix=.wav)
trap 'rm -f "$wav"' EXIT
sox -q -n -r 44100 -c 2 -b 16 "$wav" synth "$seconds" sine "$hertz" vol 0.5
lame --quiet -b 128 --cbr "$wav" "$out"
