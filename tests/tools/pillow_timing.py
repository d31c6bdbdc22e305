"""Tells how long each picture of an animation shows: pillow_timing.py FILE

Prints a line of milliseconds, then width, height and how often it is played again (- for once).
Exit codes: 0 done, 2 Pillow is missing.
"""

import sys

try:
    from PIL import Image, ImageSequence
except ImportError:
    sys.exit(2)

with Image.open(sys.argv[1]) as picture:
    repeats = picture.info.get("loop", "-")
    times = [frame.info["duration"] for frame in ImageSequence.Iterator(picture)]
    print(*times)
    print(*picture.size, repeats)
