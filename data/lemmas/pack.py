#!/usr/bin/env python3
"""Pack a lemma file into the repository's archive, or print an archive's file.

Usage:
    python3 data/lemmas/pack.py LEMMAFILE ARCHIVE   write ARCHIVE (.tar.xz)
    python3 data/lemmas/pack.py --cat ARCHIVE       the packed file to stdout

The archive holds one member, "lemma", with fixed owner, mode and time, so
that the same file always packs to the same bytes with one liblzma version.
The build unpacks it with CMake's own tar (no Python needed there).
"""

import io
import lzma
import sys
import tarfile

import lemmacommon


def pack(source, archive):
    lemmacommon.require_file(source, "lemma file")
    with open(source, "rb") as f:
        data = f.read()
    info = tarfile.TarInfo("lemma")
    info.size = len(data)
    info.mode = 0o644
    info.mtime = 0
    info.uid = info.gid = 0
    info.uname = info.gname = ""
    raw = io.BytesIO()
    with tarfile.open(fileobj=raw, mode="w", format=tarfile.USTAR_FORMAT) as tar:
        tar.addfile(info, io.BytesIO(data))
    with open(archive, "wb") as f:
        f.write(lzma.compress(raw.getvalue(), preset=9 | lzma.PRESET_EXTREME))


def cat(archive):
    lemmacommon.require_file(archive, "archive")
    with tarfile.open(archive, mode="r:xz") as tar:
        member = tar.extractfile("lemma")
        sys.stdout.buffer.write(member.read())


def main(argv):
    if len(argv) == 3 and argv[1] == "--cat":
        cat(argv[2])
    elif len(argv) == 3 and not argv[1].startswith("-"):
        pack(argv[1], argv[2])
    else:
        lemmacommon.fail("usage: pack.py LEMMAFILE ARCHIVE | pack.py --cat ARCHIVE")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
