"""Decodes pictures with Pillow: pillow_rgba.py IN OUT [IN OUT ...]

Each OUT gets the width and height as 32-bit little-endian numbers, then the rows from the top as
red, green, blue, alpha. It isn't written for an IN that Pillow refuses. Exit codes: 0 done, 1 some
IN was refused, 2 Pillow is missing.
"""

import struct
import sys

try:
    from PIL import Image
except ImportError:
    sys.exit(2)


def decode(path):
    with Image.open(path) as picture:
        # Pillow clips deep grey levels when it converts; scale them to 8 bits first.
        if picture.mode.startswith("I;16"):
            picture = picture.convert("I").point(lambda v: v / 257 + 0.5).convert("L")
        elif picture.mode == "F":
            picture = picture.point(lambda v: v * 255 + 0.5).convert("L")
        return picture.convert("RGBA")


def main() -> int:
    refused = 0
    for source, target in zip(sys.argv[1::2], sys.argv[2::2]):
        try:
            pixels = decode(source)
        except Exception:  # whatever its plug-ins raise
            refused += 1
            continue
        with open(target, "wb") as out:
            out.write(struct.pack("<II", *pixels.size))
            out.write(pixels.tobytes())
    return 1 if refused else 0


sys.exit(main())
