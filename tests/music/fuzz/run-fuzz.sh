#!/usr/bin/env bash
# Builds the cIDV3 fuzzer with clang++ (libFuzzer, ASan, UBSan), seeds a
# small corpus and runs it for the given seconds (default 60). Exits
# non-zero when the fuzzer finds a crash or a build step fails.
#
#   tests/music/fuzz/run-fuzz.sh [seconds]
#
# FUZZ_WORK  folder for the binary, corpus and crash files (default: a new
#            temporary folder); CXX_FUZZ  the clang++ to use.
set -euo pipefail

seconds=${1:-60}
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../../.." && pwd)
work=${FUZZ_WORK:-$(mktemp -d)}
cxx=${CXX_FUZZ:-$(command -v clang++ || command -v clang++-14 || true)}

if [ -z "$cxx" ]; then
    echo "clang++ not found: install the Debian packages clang and libclang-rt-14-dev" >&2
    exit 2
fi
if ! pkg-config --exists Qt6Core; then
    echo "Qt6Core not found by pkg-config: install the Debian package qt6-base-dev" >&2
    exit 2
fi

started=$(date +%s)
mkdir -p "$work/corpus" "$work/artifacts"

# The project's own sources, compiled straight in: the runtime and the
# logic of cIDV3 (no widget code).
# shellcheck disable=SC2046
"$cxx" -std=c++20 -g -O1 -fPIC -Wall -Wextra \
    -fsanitize=fuzzer,address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer \
    -I"$root/src" $(pkg-config --cflags Qt6Core) \
    "$here/fuzz_cidv3.cpp" \
    "$root"/src/basic/*.cpp \
    "$root/src/music/cIDV3.cpp" "$root/src/music/CodePage.cpp" \
    "$root/src/music/FileSlots.cpp" "$root/src/music/GenreTable.cpp" \
    $(pkg-config --libs Qt6Core) \
    -o "$work/fuzz_cidv3"
built=$(date +%s)
echo "fuzz_cidv3 built in $((built - started)) s"

rm -rf "$work/seeds"
python3 "$here/make_seeds.py" "$work/seeds"

set +e
"$work/fuzz_cidv3" -max_total_time="$seconds" -max_len=10240 -timeout=10 -print_final_stats=1 \
    -artifact_prefix="$work/artifacts/" "$work/corpus" "$work/seeds"
rc=$?
set -e

echo "fuzz_cidv3: build $((built - started)) s, run $(( $(date +%s) - built )) s, exit $rc; findings in $work/artifacts/"
exit $rc
