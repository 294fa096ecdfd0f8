#!/usr/bin/env python3
"""What mutagen sees in an MP3 file, printed as one line of JSON.

  mutagen_probe.py frame FILE        the first MPEG frame mutagen accepts, with
                                     the bit rate its header gives (mutagen
                                     would otherwise average a Xing file) and
                                     the Xing/Info count at its true place
  mutagen_probe.py v1 FILE           the ID3v1 block as mutagen reads it
  mutagen_probe.py bigtag FILE BYTES an ID3v2 tag of at least BYTES bytes put
                                     in front of the audio
"""
import json
import sys

import mutagen.id3
import mutagen.mp3
from mutagen.mp3 import MP3, MPEGFrame, XingHeader, XingHeaderError


def frame(path):
    real_vbr = MPEGFrame._parse_vbr_header
    MPEGFrame._parse_vbr_header = lambda *args, **kwargs: None
    try:
        info = MP3(path).info
    finally:
        MPEGFrame._parse_vbr_header = real_vbr
    out = {k: getattr(info, k) for k in
           ("frame_offset", "version", "layer", "mode", "protected", "bitrate", "sample_rate", "channels")}
    out["xing_frames"] = None
    out["xing_is_info"] = None
    if info.layer == 3:
        with open(path, "rb") as f:
            f.seek(info.frame_offset + XingHeader.get_offset(info))
            try:
                xing = XingHeader(f)
                out["xing_frames"] = xing.frames
                out["xing_is_info"] = xing.is_info
            except XingHeaderError:
                pass
    return out


def v1(path):
    with open(path, "rb") as f:
        f.seek(-128, 2)
        frames = mutagen.id3.ParseID3v1(f.read(128))
    if frames is None:
        return {"tag": False}
    text = lambda key: str(frames[key]) if key in frames else None
    genre = frames["TCON"].genres[0] if "TCON" in frames else None
    return {"tag": True, "title": text("TIT2"), "artist": text("TPE1"), "album": text("TALB"),
            "year": text("TDRC"), "comment": text("COMM"), "genre": genre}


def bigtag(path, size):
    tags = mutagen.id3.ID3()
    tags.add(mutagen.id3.COMM(encoding=0, lang="eng", desc="", text="x" * int(size)))
    tags.save(path, v1=0)
    return {"size": mutagen.id3.ID3(path).size}


if __name__ == "__main__":
    command, path = sys.argv[1], sys.argv[2]
    if command == "frame":
        result = frame(path)
    elif command == "v1":
        result = v1(path)
    else:
        result = bigtag(path, sys.argv[3])
    print(json.dumps(result))
