#!/usr/bin/env python3
"""One HTML page of the screens of SETUP.EXE's roads, from the scenario runner's shots.

    gallery.py <shots folder> <scenarios folder> <output.html> <scenario>...

Each scenario's shots (<shots folder>/<scenario>/NN-<name>.bmp, as `driver run
--shots` leaves them) become PNG files beside the page, cut to the part of the
screen that differs from the desktop, in the scenario's order; the comment at
the head of tests/scenarios/<scenario>.txt says what the road is. Python's
standard library only.
"""
import html
import os
import re
import struct
import sys
import zlib


def read_bmp(path):
    """(width, height, rows of RGB bytes, top row first) of a 24-bit BMP."""
    with open(path, "rb") as f:
        data = f.read()
    if data[:2] != b"BM" or len(data) < 54:
        raise ValueError("%s is no BMP file" % path)
    offset = struct.unpack_from("<I", data, 10)[0]
    width, height, _, bits, compression = struct.unpack_from("<iiHHI", data, 18)
    if bits != 24 or compression != 0 or width <= 0 or height == 0:
        raise ValueError("%s: only uncompressed 24-bit BMP files are read" % path)
    stride = (width * 3 + 3) & ~3
    if offset + stride * abs(height) > len(data):
        raise ValueError("%s is cut short" % path)
    rows = []
    for y in range(abs(height)):
        start = offset + y * stride
        bgr = data[start:start + width * 3]
        rgb = bytearray(len(bgr))
        rgb[0::3], rgb[1::3], rgb[2::3] = bgr[2::3], bgr[1::3], bgr[0::3]
        rows.append(bytes(rgb))
    if height > 0:  # bottom-up
        rows.reverse()
    return width, abs(height), rows


def crop(width, rows, margin=6):
    """The rows cut to the box of pixels unlike the top left one, with a margin."""
    background = rows[0][:3] * width
    used = [y for y, row in enumerate(rows) if row != background]
    if not used:
        return width, rows
    left, right = width, 0
    for y in used:
        row = rows[y]
        first = next(i for i in range(0, len(row), 3) if row[i:i + 3] != background[i:i + 3])
        last = next(i for i in range(len(row) - 3, -1, -3) if row[i:i + 3] != background[i:i + 3])
        left, right = min(left, first // 3), max(right, last // 3)
    top, bottom = max(used[0] - margin, 0), min(used[-1] + margin + 1, len(rows))
    left, right = max(left - margin, 0), min(right + margin + 1, width)
    return right - left, [row[left * 3:right * 3] for row in rows[top:bottom]]


def write_png(path, width, rows):
    def chunk(kind, body):
        return (struct.pack(">I", len(body)) + kind + body +
                struct.pack(">I", zlib.crc32(kind + body) & 0xFFFFFFFF))
    raw = b"".join(b"\0" + row for row in rows)
    with open(path, "wb") as f:
        f.write(b"\x89PNG\r\n\x1a\n")
        f.write(chunk(b"IHDR", struct.pack(">IIBBBBB", width, len(rows), 8, 2, 0, 0, 0)))
        f.write(chunk(b"IDAT", zlib.compress(raw, 6)))
        f.write(chunk(b"IEND", b""))


def description(scenario_file):
    """The comment lines at the head of a scenario, as one text."""
    lines = []
    try:
        with open(scenario_file, encoding="latin-1") as f:
            for line in f:
                if not line.startswith("#"):
                    break
                lines.append(line[1:].strip())
    except OSError:
        pass
    return " ".join(lines)


def caption(name):
    """"03-box-Create-Folder" -> "Box: Create Folder"; "05-account-work" -> "Account work"."""
    name = re.sub(r"^\d+-", "", name)
    if name.startswith("box-"):
        return "Box: " + name[4:].replace("-", " ").strip()
    text = name.replace("-", " ")
    return text[:1].upper() + text[1:]


def main(argv):
    if len(argv) < 5:
        sys.stderr.write(__doc__)
        return 2
    shots, scenarios, output, names = argv[1], argv[2], argv[3], argv[4:]
    out_dir = os.path.dirname(os.path.abspath(output))
    sections, count = [], 0
    for name in names:
        folder = os.path.join(shots, name)
        files = sorted(f for f in os.listdir(folder) if f.lower().endswith(".bmp")) \
            if os.path.isdir(folder) else []
        os.makedirs(os.path.join(out_dir, "gallery", name), exist_ok=True)
        figures = []
        for file in files:
            width, _, rows = read_bmp(os.path.join(folder, file))
            width, rows = crop(width, rows)
            png = os.path.join("gallery", name, file[:-4] + ".png")
            write_png(os.path.join(out_dir, png), width, rows)
            figures.append('<figure><img src="%s" alt="%s"><figcaption>%s</figcaption></figure>'
                           % (html.escape(png), html.escape(file), html.escape(caption(file[:-4]))))
            count += 1
        if not figures:
            figures.append("<p><em>No screens: the scenario did not run or pictured nothing.</em></p>")
        sections.append('<section id="%s">\n<h2>%s</h2>\n<p>%s</p>\n<div class="road">\n%s\n</div>\n</section>'
                        % (html.escape(name), html.escape(name),
                           html.escape(description(os.path.join(scenarios, name + ".txt"))),
                           "\n".join(figures)))
    index = "".join('<li><a href="#%s">%s</a></li>' % (html.escape(n), html.escape(n)) for n in names)
    page = """<!DOCTYPE html>
<html><head><meta charset="utf-8"><title>SETUP.EXE: the roads of the wizard</title>
<style>
body {{ font-family: sans-serif; margin: 1.5em; background: #f4f4f4; }}
.road {{ display: flex; flex-wrap: wrap; gap: 1em; align-items: flex-start; }}
figure {{ margin: 0; background: white; padding: 0.5em; border: 1px solid #ccc; }}
figcaption {{ font-size: 0.9em; color: #333; padding-top: 0.3em; }}
section {{ margin-bottom: 2.5em; }}
</style></head>
<body>
<h1>SETUP.EXE: the roads of the wizard</h1>
<p>Each road as the scenario runner played it under Wine, screen by screen in
order, boxes included. The roads without a page (a quiet run, and a run whose
payload, setup description or requirements are refused before the wizard opens)
have nothing to picture here.</p>
<ul>{index}</ul>
{sections}
</body></html>
""".format(index=index, sections="\n".join(sections))
    with open(output, "w", encoding="utf-8") as f:
        f.write(page)
    print("%s: %d screens of %d roads" % (output, count, len(names)))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
