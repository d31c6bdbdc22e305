#!/usr/bin/env python3
"""Writes a drawn pen session: lines of seconds, x, y and pressure, as a tablet would send them.

    pen_events.py OUT.dat

A spiral, rows of loops as in handwriting, hatching, flicks that taper off, a flower and dots, on a
sheet of 960 x 680 with y downward. Between strokes the pen hovers with pressure 0. The same file
each time.
"""
import math
import random
import sys

SECONDS_PER_EVENT = 1 / 125
HARDEST = 0.55  # what a calm hand reaches


def along(curve, count, pressure):
    """Points of a curve over 0..1, with the pressure at each."""
    for n in range(count):
        part = n / (count - 1)
        x, y = curve(part)
        yield x, y, HARDEST * max(0.0, min(1.0, pressure(part)))


def swell(part):
    """Down softly, full in the middle, off softly."""
    return math.sin(math.pi * part) ** 0.6


def spiral(part):
    turn, radius = 14 * math.pi * part, 12 + 108 * part
    return 165 + radius * math.cos(turn), 175 + radius * math.sin(turn)


def writing(left, baseline, loops, height):
    def curve(part):
        turn = 2 * math.pi * loops * part
        tall = height * (1.0 + 0.6 * math.sin(3.1 * turn / loops * 2))
        return left + 34 * loops * part - 20 * math.sin(turn), baseline - tall * math.cos(turn)

    def pressure(part):  # down-strokes are heavy
        return (0.5 - 0.4 * math.sin(2 * math.pi * loops * part)) * min(1, 12 * (1 - part))

    return along(curve, 26 * loops, pressure)


def flower(part):
    turn = 2 * math.pi * part
    radius = 95 * (0.55 + 0.45 * math.cos(5 * turn))
    return 790 + radius * math.cos(turn), 180 + radius * math.sin(turn)


def line(x0, y0, x1, y1):
    return lambda part: (x0 + (x1 - x0) * part, y0 + (y1 - y0) * part)


def strokes():
    yield along(spiral, 520, lambda part: 0.15 + 0.85 * part)
    yield writing(330, 110, 9, 34)
    yield writing(330, 215, 8, 44)
    yield along(flower, 260, lambda part: 0.35 + 0.6 * abs(math.sin(5 * math.pi * part)))
    for n in range(14):  # hatching, to and fro
        x = 60 + 22 * n
        ends = (x, 620, x + 90, 380) if n % 2 else (x + 90, 380, x, 620)
        yield along(line(*ends), 26, swell)
    for n in range(7):  # flicks
        turn = -0.35 + 0.17 * n
        end = (430 + 300 * math.cos(turn), 470 + 300 * math.sin(turn) * 0.8)
        yield along(line(430, 470, *end), 18, lambda part: (1 - part) ** 1.5)
    yield along(lambda part: (470 + 420 * part, 600 + 45 * math.sin(9 * part)), 90, swell)
    for n in range(6):  # dots
        yield along(lambda _, n=n: (560 + 62 * n, 330), 3, lambda _, n=n: 0.2 + 0.15 * n)


def main():
    hand = random.Random(7)
    seconds = 0.0
    with open(sys.argv[1], "w", encoding="ascii") as out:
        for stroke in strokes():
            for x, y, pressure in stroke:
                x += hand.gauss(0, 0.25)
                y += hand.gauss(0, 0.25)
                out.write(f"{seconds:.4f} {x:.3f} {y:.3f} {pressure:.4f}\n")
                seconds += SECONDS_PER_EVENT
            out.write(f"{seconds:.4f} {x:.3f} {y:.3f} 0\n")
            seconds += 0.2


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(f"usage: {sys.argv[0]} OUT.dat")
    main()
