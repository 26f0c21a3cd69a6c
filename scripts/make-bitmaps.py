#!/usr/bin/env python3
"""Draws the setup program's pictures and writes them as Windows bitmaps.

  payload/SidePanel.bmp          185 x 300, 256 colours: the wizard's side panel,
                                 a blue gradient with the product's name and a
                                 bookmark ribbon
  Install/resources/extract.bmp   80 x 32, 16 colours: the extraction dialog's
                                 picture, a box giving out files, on the grey
                                 RGB(192,192,192) that LR_LOADMAP3DCOLORS turns
                                 into the dialog's face colour
  Install/resources/accountbar.bmp 86 x 20, 16 colours: the tile of the
                                 account page's running bar, slanted stripes
                                 that meet their own start when tiles are
                                 laid side by side

All three files are in the repository; run this (standard library only) to remake
them: scripts/make-bitmaps.py [--root DIR]  (DIR: the repository, by default
the one holding this script).
"""
import argparse
import os
import struct

# 5 x 7 glyphs of the letters the side panel needs.
FONT = {
    "T": ["#####", "..#..", "..#..", "..#..", "..#..", "..#..", "..#.."],
    "R": ["####.", "#...#", "#...#", "####.", "#.#..", "#..#.", "#...#"],
    "P": ["####.", "#...#", "#...#", "####.", "#....", "#....", "#...."],
    "a": [".....", ".....", ".###.", "....#", ".####", "#...#", ".####"],
    "e": [".....", ".....", ".###.", "#...#", "#####", "#....", ".###."],
    "i": ["..#..", ".....", ".##..", "..#..", "..#..", "..#..", ".###."],
    "l": [".##..", "..#..", "..#..", "..#..", "..#..", "..#..", ".###."],
    "n": [".....", ".....", "#.##.", "##..#", "#...#", "#...#", "#...#"],
    "o": [".....", ".....", ".###.", "#...#", "#...#", "#...#", ".###."],
    "r": [".....", ".....", "#.##.", "##..#", "#....", "#....", "#...."],
    "s": [".....", ".....", ".####", "#....", ".###.", "....#", "####."],
    "v": [".....", ".....", "#...#", "#...#", "#...#", ".#.#.", "..#.."],
    " ": [".....", ".....", ".....", ".....", ".....", ".....", "....."],
}


class Canvas:
    def __init__(self, width, height, fill):
        self.width = width
        self.height = height
        self.pixels = [[fill] * width for _ in range(height)]

    def put(self, x, y, colour):
        if 0 <= x < self.width and 0 <= y < self.height:
            self.pixels[y][x] = colour

    def rect(self, x0, y0, x1, y1, colour):
        """Fills x0..x1, y0..y1, both ends included."""
        for y in range(y0, y1 + 1):
            for x in range(x0, x1 + 1):
                self.put(x, y, colour)

    def frame(self, x0, y0, x1, y1, colour):
        for x in range(x0, x1 + 1):
            self.put(x, y0, colour)
            self.put(x, y1, colour)
        for y in range(y0, y1 + 1):
            self.put(x0, y, colour)
            self.put(x1, y, colour)

    def line(self, x0, y0, x1, y1, colour):
        steps = max(abs(x1 - x0), abs(y1 - y0), 1)
        for i in range(steps + 1):
            self.put(round(x0 + (x1 - x0) * i / steps), round(y0 + (y1 - y0) * i / steps), colour)

    def polygon(self, points, colour):
        """Fills a polygon by pixel centres (even-odd rule)."""
        for y in range(self.height):
            cy = y + 0.5
            crossings = []
            for (xa, ya), (xb, yb) in zip(points, points[1:] + points[:1]):
                if (ya <= cy < yb) or (yb <= cy < ya):
                    crossings.append(xa + (cy - ya) * (xb - xa) / (yb - ya))
            crossings.sort()
            for left, right in zip(crossings[::2], crossings[1::2]):
                for x in range(self.width):
                    if left <= x + 0.5 <= right:
                        self.put(x, y, colour)

    def outline(self, points, colour):
        for (xa, ya), (xb, yb) in zip(points, points[1:] + points[:1]):
            self.line(xa, ya, xb, yb, colour)

    def text(self, x, y, words, scale, colour):
        for i, letter in enumerate(words):
            for row, bits in enumerate(FONT[letter]):
                for column, bit in enumerate(bits):
                    if bit == "#":
                        self.rect(x + (i * 6 + column) * scale, y + row * scale,
                                  x + (i * 6 + column) * scale + scale - 1,
                                  y + row * scale + scale - 1, colour)


def text_width(words, scale):
    return (len(words) * 6 - 1) * scale


def bmp_bytes(canvas, palette, bits):
    """A BITMAPFILEHEADER + BITMAPINFOHEADER bitmap, rows bottom-up, BI_RGB."""
    per_byte = 8 // bits
    stride = ((canvas.width * bits + 31) // 32) * 4
    rows = []
    for line in reversed(canvas.pixels):
        row = bytearray(stride)
        for x, index in enumerate(line):
            if not 0 <= index < len(palette):
                raise ValueError("colour %d is not in the palette" % index)
            shift = bits * (per_byte - 1 - x % per_byte)
            row[x // per_byte] |= index << shift
        rows.append(bytes(row))
    colours = 1 << bits
    table = b"".join(struct.pack("<BBBB", b, g, r, 0) for r, g, b in palette)
    table += b"\0\0\0\0" * (colours - len(palette))
    image = b"".join(rows)
    offset = 14 + 40 + len(table)
    info = struct.pack("<IiiHHIIiiII", 40, canvas.width, canvas.height, 1, bits, 0,
                       len(image), 3780, 3780, colours, 0)
    header = struct.pack("<2sIHHI", b"BM", offset + len(image), 0, 0, offset)
    return header + info + table + image


def side_panel():
    width, height = 185, 300
    shades = 232
    top, bottom = (12, 34, 96), (96, 154, 222)
    palette = [tuple(round(a + (b - a) * i / (shades - 1)) for a, b in zip(top, bottom))
               for i in range(shades)]
    white, shadow, ribbon, ribbon_edge, ribbon_fold = range(shades, shades + 5)
    palette += [(255, 255, 255), (4, 14, 46), (214, 228, 248), (160, 192, 236), (120, 156, 212)]

    canvas = Canvas(width, height, 0)
    for y in range(height):
        shade = round(y * (shades - 1) / (height - 1))
        canvas.rect(0, y, width - 1, y, shade)

    # The product's name, white on a dark shadow.
    for words, scale, y in (("TavRin", 4, 34), ("Personal", 2, 72)):
        x = (width - text_width(words, scale)) // 2
        canvas.text(x + 2, y + 2, words, scale, shadow)
        canvas.text(x, y, words, scale, white)
    canvas.rect(30, 96, width - 31, 96, white)

    # A bookmark ribbon hanging from a bar: what the side bar keeps.
    left, right, top_y, bottom_y, notch = 70, 114, 140, 250, 18
    shape = [(left, top_y), (right + 1, top_y), (right + 1, bottom_y + 1),
             ((left + right + 1) / 2, bottom_y + 1 - notch), (left, bottom_y + 1)]
    canvas.polygon([(x + 3, y + 3) for x, y in shape], shadow)
    canvas.polygon(shape, ribbon)
    canvas.outline([(left, top_y), (right, top_y), (right, bottom_y),
                    ((left + right) // 2, bottom_y - notch), (left, bottom_y)], ribbon_edge)
    canvas.rect(left + 8, top_y, left + 12, bottom_y - 10, ribbon_fold)
    canvas.rect(56, top_y - 6, 128, top_y - 1, white)
    canvas.frame(56, top_y - 6, 128, top_y - 1, ribbon_edge)
    return bmp_bytes(canvas, palette, 8)


def extract_picture():
    # The 16 colours of the standard VGA palette.
    palette = [(0, 0, 0), (128, 0, 0), (0, 128, 0), (128, 128, 0), (0, 0, 128), (128, 0, 128),
               (0, 128, 128), (192, 192, 192), (128, 128, 128), (255, 0, 0), (0, 255, 0),
               (255, 255, 0), (0, 0, 255), (255, 0, 255), (0, 255, 255), (255, 255, 255)]
    black, olive, navy, silver, grey, yellow, blue, white = 0, 3, 4, 7, 8, 11, 12, 15
    canvas = Canvas(80, 32, silver)

    # The box: front, side and open top, outlined.
    front = [(3, 14), (23, 14), (23, 29), (3, 29)]
    side = [(23, 14), (29, 9), (29, 24), (23, 29)]
    top = [(3, 14), (9, 9), (29, 9), (23, 14)]
    canvas.polygon(front, olive)
    canvas.polygon(side, grey)
    canvas.polygon(top, black)
    for shape in (front, side, top):
        canvas.outline(shape, black)
    flap = [(9, 9), (13, 3), (31, 3), (29, 9)]  # the lid, open at the back
    canvas.polygon(flap, yellow)
    canvas.outline(flap, black)
    canvas.rect(9, 19, 17, 21, yellow)    # a label on the front
    canvas.frame(9, 19, 17, 21, black)

    # The arrow out of the box.
    arrow = [(33, 13), (45, 13), (45, 8), (53, 16), (45, 24), (45, 19), (33, 19)]
    canvas.polygon(arrow, blue)
    canvas.outline(arrow, navy)

    # Two sheets, the front one with a folded corner and lines of text.
    for dx, dy in ((5, -4), (0, 0)):
        corner = [(67 + dx, 6 + dy), (67 + dx, 11 + dy), (72 + dx, 11 + dy)]
        sheet = [(55 + dx, 6 + dy), (67 + dx, 6 + dy), (72 + dx, 11 + dy), (72 + dx, 29 + dy),
                 (55 + dx, 29 + dy)]
        canvas.polygon(sheet, white)
        canvas.outline(sheet, black)
        canvas.polygon(corner, silver)
        canvas.outline(corner, black)
    for y in range(14, 28, 3):
        canvas.rect(58, y, 69 if y % 2 else 66, y, navy if y == 14 else grey)
    return bmp_bytes(canvas, palette, 4)


def account_bar():
    # The 16 colours of the standard VGA palette, as for the extraction picture.
    palette = [(0, 0, 0), (128, 0, 0), (0, 128, 0), (128, 128, 0), (0, 0, 128), (128, 0, 128),
               (0, 128, 128), (192, 192, 192), (128, 128, 128), (255, 0, 0), (0, 255, 0),
               (255, 255, 0), (0, 0, 255), (255, 0, 255), (0, 255, 255), (255, 255, 255)]
    black, navy, grey, blue, white = 0, 4, 8, 12, 15
    width, height = 86, 20
    canvas = Canvas(width, height, navy)
    # Stripes leaning right, two to a tile: 43 divides 86, so the right edge
    # of a tile runs on into the left edge of the next one.
    period = width // 2
    for y in range(2, height - 2):
        for x in range(width):
            if (x + y) % period < 17:
                canvas.put(x, y, blue)
    for x in range(width):
        canvas.put(x, 0, grey)           # a sunken edge: dark above,
        canvas.put(x, 1, black)
        canvas.put(x, height - 1, white)  # light below
        canvas.put(x, height - 2, grey)
    return bmp_bytes(canvas, palette, 4)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--root", default=os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
    root = parser.parse_args().root
    for relative, data in (("payload/SidePanel.bmp", side_panel()),
                           ("Install/resources/extract.bmp", extract_picture()),
                           ("Install/resources/accountbar.bmp", account_bar())):
        path = os.path.join(root, relative)
        with open(path, "wb") as out:
            out.write(data)
        print("%s: %d bytes" % (relative, len(data)))


if __name__ == "__main__":
    main()
