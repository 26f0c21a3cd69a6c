#!/usr/bin/env python3
"""Writes the logo of the partner variant: 32 x 24 pixels, 24 bits, a magenta
border two pixels wide round a green field, colours that appear nowhere else
on the wizard's frame, so that a test finds the logo by its pixels.

  partner-logo.py <file>
"""
import struct
import sys

WIDTH, HEIGHT = 32, 24
BORDER = (255, 0, 255)
FIELD = (0, 128, 0)


def logo():
    rows = []
    for y in range(HEIGHT):
        row = b""
        for x in range(WIDTH):
            edge = min(x, y, WIDTH - 1 - x, HEIGHT - 1 - y) < 2
            red, green, blue = BORDER if edge else FIELD
            row += bytes((blue, green, red))
        rows.append(row)  # 96 bytes: whole 32-bit words, no padding
    pixels = b"".join(reversed(rows))  # bottom-up
    info = struct.pack("<IiiHHIIiiII", 40, WIDTH, HEIGHT, 1, 24, 0, len(pixels), 2835, 2835, 0, 0)
    header = struct.pack("<2sIHHI", b"BM", 14 + len(info) + len(pixels), 0, 0, 14 + len(info))
    return header + info + pixels


with open(sys.argv[1], "wb") as f:
    f.write(logo())
