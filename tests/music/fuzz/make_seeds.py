#!/usr/bin/env python3
"""Writes the small seed files of the cIDV3 fuzzer into the given folder.

Each seed is a hand-laid MP3 shape (under 10 KB): frames with and without
CRC, a "Xing" count, an ID3v2 start with no frame, ID3v1 blocks in capitals,
small letters and zero-filled, files shorter than a block, and a frame pair
at the last offset the search reaches. With sox and lame installed, a short
real encoding joins them.
"""
import os
import shutil
import subprocess
import sys
import tempfile

out = sys.argv[1]
os.makedirs(out, exist_ok=True)


def put(name, data):
    assert len(data) < 10 * 1024, name
    with open(os.path.join(out, name), "wb") as f:
        f.write(data)


def lay(size, parts):
    data = bytearray(size)
    for offset, chunk in parts:
        data[offset:offset + len(chunk)] = chunk
    return bytes(data)


def block(marker=b"TAG", title=b"Title", genre=17, fill=b" "):
    field = lambda text, width: text[:width] + fill * (width - len(text[:width]))
    return (marker + field(title, 30) + field(b"Artist", 30) + field(b"Album", 30)
            + field(b"1999", 4) + field(b"Comment", 30) + bytes([genre]))


frame = bytes.fromhex("fffb9000") + bytes(413)
put("cbr_frames.mp3", frame * 3)
put("crc_frame.mp3", bytes.fromhex("fffa9000") + bytes(600))
put("mono_flags.mp3", bytes.fromhex("fffb91ed") + bytes(600))
put("xing.mp3", lay(700, [(0, bytes.fromhex("fffb9000")), (36, b"Xing"), (44, bytes.fromhex("00001000"))]))
put("xing_top_bit.mp3", lay(700, [(0, bytes.fromhex("fffb9000")), (36, b"Xing"), (44, bytes.fromhex("80000001"))]))
put("id3_no_frame.mp3", lay(400, [(0, b"ID3\x04\x00\x00\x00\x00\x02\x00"), (35, b"Xing"), (43, bytes(3) + b"\x10")]))
put("layer_bits_00.mp3", lay(300, [(0, bytes.fromhex("ff1800"))]))
put("layer_one_row.mp3", lay(300, [(0, bytes.fromhex("ff1e40"))]))
put("ff_ff_fb.mp3", lay(300, [(10, bytes.fromhex("fffffb9000"))]))
put("pair_at_4999.mp3", lay(5100, [(4999, bytes.fromhex("fffb9000"))]))
put("tagged.mp3", frame * 2 + block())
put("small_letters.mp3", frame + block(b"tag", b"low"))
put("zero_filled.mp3", frame + block(fill=b"\x00", genre=255))
put("only_block.mp3", block())
put("short.mp3", bytes.fromhex("fffb9000") + bytes(96))
put("empty.mp3", b"")
put("one_byte.mp3", b"\xff")

if shutil.which("sox") and shutil.which("lame"):
    with tempfile.TemporaryDirectory() as tmp:
        wav = os.path.join(tmp, "t.wav")
        mp3 = os.path.join(tmp, "t.mp3")
        subprocess.run(["sox", "-n", "-r", "32000", "-c", "1", wav, "synth", "0.3", "sine", "440"], check=True)
        subprocess.run(["lame", "--quiet", "-b", "32", "-m", "m", wav, mp3], check=True)
        with open(mp3, "rb") as f:
            put("lame_32k_mono.mp3", f.read()[:8 * 1024])
