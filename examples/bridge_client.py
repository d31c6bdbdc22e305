#!/usr/bin/env python3
"""A host of the picture helper in plain Python: shows the protocol from outside, without our code.

    bridge_client.py HELPER OUT.png PICTURE...

Sends each picture through the helper with an "OpenFromFile" record, prints what came back, and
saves a contact sheet of all of them with a "SaveToFile" record.
"""
import os
import struct
import subprocess
import sys
import tempfile

RECORD = struct.Struct("<iiiB3xiidd100s100s520s520s520s")
assert RECORD.size == 1800
FIELDS = ("width", "height", "channels", "has_quality", "quality", "unit", "x_dpi", "y_dpi",
          "command", "format", "response", "pixels", "image")
TEXTS = FIELDS[8:]
SHEET_COLUMNS, CELL, GAP, BACKGROUND = 5, 160, 8, (48, 48, 48)


def pack(**values):
    record = dict.fromkeys(FIELDS, 0) | dict.fromkeys(TEXTS, "") | values
    return RECORD.pack(*(record[f].encode("utf-16-le") if f in TEXTS else record[f]
                         for f in FIELDS))


def unpack(data):
    record = dict(zip(FIELDS, RECORD.unpack(data)))
    for field in TEXTS:
        units = record[field]
        end = next(i for i in range(0, len(units) + 2, 2) if units[i:i + 2] in (b"\0\0", b""))
        record[field] = units[:end].decode("utf-16-le", "replace")
    return record


def run(helper, folder, **request):
    """The response as a dictionary, or None: the helper gives no reason."""
    response = os.path.join(folder, "response")
    request_file = os.path.join(folder, "request")
    with open(request_file, "wb") as file:
        file.write(pack(response=response, **request))
    status = subprocess.run([helper, "/file", request_file], check=False).returncode
    try:
        with open(response, "rb") as file:
            return unpack(file.read())
    except FileNotFoundError:
        assert status == 255, status
        return None
    finally:
        for path in (request_file, response):
            if os.path.exists(path):
                os.remove(path)


def thumbnail(answer, pixels):
    """Rows of B, G, R triples from the bottom up, at most CELL in either direction."""
    width, height = answer["width"], answer["height"]
    step = max(1, -(-max(width, height) // CELL))
    premultiplied = answer["format"] == "PNG"
    rows = []
    for y in range(step // 2, height, step):
        row = []
        for x in range(step // 2, width, step):
            at = 4 * (y * width + x)
            *color, alpha = pixels[at:at + 4]
            part = 255 if premultiplied else alpha
            row.append(tuple(min(255, (c * part + b * (255 - alpha)) // 255)
                             for c, b in zip(color, BACKGROUND)))
        rows.append(row)
    return rows


def save_sheet(helper, folder, path, thumbnails):
    across = min(SHEET_COLUMNS, len(thumbnails))
    down = -(-len(thumbnails) // across)
    pitch = CELL + GAP
    width, height = across * pitch + GAP, down * pitch + GAP
    sheet = bytearray(bytes((*BACKGROUND, 255)) * (width * height))
    for index, rows in enumerate(thumbnails):
        left = GAP + index % across * pitch + (CELL - len(rows[0])) // 2
        bottom = height - (index // across + 1) * pitch + (CELL - len(rows)) // 2
        for y, row in enumerate(rows):
            for x, color in enumerate(row):
                at = 4 * ((bottom + y) * width + left + x)
                sheet[at:at + 3] = bytes(color)
    pixels = os.path.join(folder, "pixels")
    with open(pixels, "wb") as file:
        file.write(sheet)
    answer = run(helper, folder, command="SaveToFile", width=width, height=height, channels=4,
                 format="PNG", pixels=pixels, image=os.path.abspath(path))
    os.remove(pixels)
    assert answer and (answer["width"], answer["height"]) == (width, height)


def main(helper, sheet, *pictures):
    thumbnails = []
    print(f"{'picture':32} {'format':6} {'size':>12} {'dpi':>13}  bottom left pixel (B G R A)")
    with tempfile.TemporaryDirectory() as folder:
        for picture in pictures:
            answer = run(helper, folder, command="OpenFromFile", image=os.path.abspath(picture))
            name = os.path.basename(picture)
            if answer is None:
                print(f"{name:32} refused")
                continue
            with open(answer["pixels"], "rb") as file:
                pixels = file.read()
            os.remove(answer["pixels"])
            assert len(pixels) == answer["width"] * answer["height"] * answer["channels"]
            print(f"{name:32} {answer['format']:6} {answer['width']:5} x {answer['height']:4} "
                  f"{answer['x_dpi']:6.5g} {answer['y_dpi']:6.5g}  {pixels[:4].hex(' ')}")
            thumbnails.append(thumbnail(answer, pixels))
        save_sheet(helper, folder, sheet, thumbnails)
    print(f"contact sheet: {sheet}")


if __name__ == "__main__":
    main(*sys.argv[1:])
