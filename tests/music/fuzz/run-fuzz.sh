#!/usr/bin/env bash
# Builds the cIDV3 fuzzer with clang++ (libFuzzer, ASan, UBSan) and runs it
# for the given seconds (default 60); non-zero on a finding. FUZZ_WORK: the
# folder for the binary, corpus and findings; CXX_FUZZ: the clang++.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
src=$here/../../../src
work=${FUZZ_WORK:-$(mktemp -d)}
cxx=${CXX_FUZZ:-$(command -v clang++ || command -v clang++-14 || true)}
[ -n "$cxx" ] || { echo "clang++ not found: install the Debian packages clang and libclang-rt-14-dev" >&2; exit 2; }
s=$work/seeds
rm -rf "$s" && mkdir -p "$s" "$work/corpus" "$work/artifacts"
# shellcheck disable=SC2046
"$cxx" -std=c++20 -g -O1 -fPIC -fsanitize=fuzzer,address,undefined -fno-sanitize-recover=undefined -I"$src" \
    $(pkg-config --cflags --libs Qt6Core) "$here/fuzz_cidv3.cpp" "$src"/basic/*.cpp \
    "$src"/music/{cIDV3,CodePage,FileSlots,GenreTable}.cpp -o "$work/fuzz_cidv3"
# Seeds: CRC, "Xing", no frame behind "ID3", the search's last offset, odd blocks, a short file.
z() { head -c "$1" /dev/zero; }
tag() { printf '%s%-30s%-30s%-30s1999%-30s\x11' "$1" Title Artist Album Comment; }
{ printf '\xff\xfb\x90\x00'; z 1000; tag TAG; } >"$s/tagged"
{ printf '\xff\xfa\x91\xed'; z 32; printf 'Xing\0\0\0\0\x80\0\0\x01'; z 600; } >"$s/crc_mono_xing"
{ printf 'ID3\x04'; z 31; printf 'Xing\0\0\0\0\0\0\x10\0'; z 400; tag tag; } >"$s/id3_no_frame"
{ z 4999; printf '\xff\xfb\x90\x00'; z 100; tag TAG | tr ' ' '\0'; } >"$s/pair_at_4999_zero_filled"
{ printf '\xff\xfb\x90\x00'; z 96; } >"$s/short"
exec "$work/fuzz_cidv3" -max_total_time="${1:-60}" -max_len=10240 -timeout=10 -print_final_stats=1 \
    -artifact_prefix="$work/artifacts/" "$work/corpus" "$s"
