#!/usr/bin/env python3
"""Makes a partner's copy of SETUP.EXE: a copy of the program with the partner's
trailer at its end. The program file given is only read, never changed.

  stamp.py SETUP.EXE -o SETUP_partner.EXE --partner-a 1201 --partner-b 7 \\
           --label "Partner Name" --link http://www.partner.example/ --logo logo.bmp

The trailer, all words 32-bit little-endian:

  A, B, n, label (n bytes), m, link (m bytes), extra, b, logo (b bytes), L, "tvd"

L counts from A up to and including the marker "tvd". The program reads it back
(Install/description/Branding.cpp): it shows the logo in the wizard's corner,
opens the link on a click on it, and sends the two numbers to the service in a
cookie. It cuts a label longer than 255 bytes and a link longer than 1023; this
tool refuses them, and a logo that the program could not load or that would not
fit the frame's corner (200 x 32 pixels).

A signed program (its certificate table, data directory entry 4, is not empty)
keeps its signature: the certificate table is the last thing in the file and is
left out of the signed hash, so the trailer goes into it. The table grows by
zero bytes up to an 8-byte boundary and the trailer behind them (the marker
still ends the file); the directory entry's size and the length of the table's
last WIN_CERTIFICATE header grow with it, and a nonzero CheckSum in the optional
header is computed again. A signed program whose certificate table does not end
the file, or whose certificates' lengths do not add up to the table, is refused.
An unsigned program gets the trailer appended.
"""
import argparse
import os
import shutil
import struct
import sys

MARKER = b"tvd"
SEARCH_SPAN = 4096          # the marker must end this close to the end of the file
LABEL_LIMIT = 255           # bytes, in the Windows ANSI code page
LINK_LIMIT = 1023
LOGO_LIMIT = 1024 * 1024
# The logo's static grows to the bitmap: beyond this it would run into the
# buttons or off the bottom of the frame.
LOGO_WIDTH, LOGO_HEIGHT = 200, 32
NUMBER_MAX = 0x7FFFFFFF     # the program keeps the numbers as signed 32-bit values
ENCODING = "cp1252"


class StampError(Exception):
    """Input the tool refuses; the message says why."""


def number(name, text):
    try:
        value = int(text, 10)
    except ValueError:
        raise StampError(f"{name} '{text}' is not a whole number")
    if not 0 <= value <= NUMBER_MAX:
        raise StampError(f"{name} {value} is out of range (0 to {NUMBER_MAX})")
    return value


def text_field(name, text, limit):
    try:
        data = text.encode(ENCODING)
    except UnicodeEncodeError:
        raise StampError(f"the {name} holds characters that Windows code page 1252 cannot write")
    if b"\0" in data:
        raise StampError(f"the {name} holds a zero byte")
    if len(data) > limit:
        raise StampError(f"the {name} is {len(data)} bytes long; its field holds at most {limit}")
    return data


def link_field(text):
    data = text_field("link", text, LINK_LIMIT)
    if data and not data.lower().startswith((b"http://", b"https://")):
        raise StampError(f"the link '{text}' is no web address (http:// or https://)")
    if any(c <= 32 or c == 127 for c in data):
        raise StampError("the link holds blanks or control characters")
    return data


def bitmap_problem(data):
    """Why `data` is no Windows bitmap file that the program can load, or None."""
    if len(data) < 26 or data[:2] != b"BM":
        return "it does not begin with a bitmap file header ('BM')"
    offset = struct.unpack_from("<I", data, 10)[0]
    header = struct.unpack_from("<I", data, 14)[0]
    if header == 12:
        width, height, planes, bits = struct.unpack_from("<HHHH", data, 18)
        compression = 0
    elif header in (40, 52, 56, 64, 108, 124):
        if len(data) < 14 + header:
            return "its information header is cut short"
        width, height, planes, bits, compression = struct.unpack_from("<iiHHI", data, 18)
    else:
        return f"its information header has an unknown size ({header})"
    if width <= 0 or height == 0:
        return f"its size {width} x {height} is no picture"
    if width > LOGO_WIDTH or abs(height) > LOGO_HEIGHT:
        return (f"it is {width} x {abs(height)} pixels; the frame's corner holds at most "
                f"{LOGO_WIDTH} x {LOGO_HEIGHT}")
    if planes != 1 or bits not in (1, 4, 8, 16, 24, 32):
        return f"{planes} planes of {bits} bits per pixel is no bitmap format"
    if not 14 + header <= offset <= len(data):
        return "its pixels would start outside the file"
    if compression in (0, 3):  # uncompressed: rows of whole 32-bit words
        needed = ((width * bits + 31) // 32) * 4 * abs(height)
        if len(data) - offset < needed:
            return f"its pixels are cut short ({len(data) - offset} of {needed} bytes)"
    elif compression not in (1, 2):
        return f"its compression ({compression}) is not one the program loads"
    return None


def logo_field(path):
    if path is None:
        return b""
    try:
        with open(path, "rb") as f:
            data = f.read(LOGO_LIMIT + 1)
    except OSError as error:
        raise StampError(f"cannot read the logo {path}: {error.strerror}")
    if len(data) > LOGO_LIMIT:
        raise StampError(f"the logo {path} is larger than {LOGO_LIMIT} bytes")
    problem = bitmap_problem(data)
    if problem:
        raise StampError(f"the logo {path} is not a Windows bitmap (.bmp): {problem}")
    return data


def trailer(partner_a, partner_b, label, link, logo, extra=0):
    fields = (struct.pack("<III", partner_a, partner_b, len(label)) + label +
              struct.pack("<I", len(link)) + link + struct.pack("<II", extra, len(logo)) + logo)
    length = len(fields) + 4 + len(MARKER)
    return fields + struct.pack("<I", length) + MARKER


def read_trailer(data):
    """The fields of the trailer at the end of `data` as the program finds it, or None."""
    if len(data) < SEARCH_SPAN:
        return None
    lowest = max(len(data) - SEARCH_SPAN, len(MARKER))
    end = data.rfind(MARKER, lowest - len(MARKER)) + len(MARKER)
    if end < lowest or end < 7:
        return None
    length = struct.unpack_from("<I", data, end - 7)[0]
    if length < 31 or length > end:
        return None
    block, pos = data[end - length:end - 7], 0

    def take(count):
        nonlocal pos
        if count > len(block) - pos:
            raise ValueError
        pos += count
        return block[pos - count:pos]

    try:
        a, b, n = struct.unpack("<III", take(12))
        label = take(n)
        link = take(struct.unpack("<I", take(4))[0])
        extra, size = struct.unpack("<II", take(8))
        logo = take(size)
    except ValueError:
        return None
    return {"partner_a": a, "partner_b": b, "label": label, "link": link, "extra": extra, "logo": logo}


def pe_checksum(data, field):
    """The optional header's CheckSum of `data`, the field at `field` counted as zero."""
    words = data[:field] + bytes(4) + data[field + 4:] + bytes(len(data) % 2)
    total = sum(struct.unpack(f"<{len(words) // 2}H", words))
    while total > 0xFFFF:  # 16-bit sum with the carries added back in
        total = (total & 0xFFFF) + (total >> 16)
    return total + len(data)


def certificate_table(program, source):
    """For a signed program: the offsets of its certificate table's directory
    entry, of the table's last WIN_CERTIFICATE header and of the optional
    header's CheckSum. None for a program without a certificate table."""
    size = len(program)
    header = struct.unpack_from("<I", program, 0x3C)[0] if size >= 0x40 else size
    if header > size - 24 or program[header:header + 4] != b"PE\0\0":
        return None  # no PE header: nothing in it is signed
    optional = header + 24
    optional_end = optional + struct.unpack_from("<H", program, header + 20)[0]
    if optional_end > size or optional_end < optional + 2:
        raise StampError(f"{source} is cut short in its PE header")
    magic = struct.unpack_from("<H", program, optional)[0]
    if magic not in (0x10B, 0x20B):
        raise StampError(f"{source} has an optional header of unknown kind ({magic:#x})")
    directories = optional + (96 if magic == 0x10B else 112)
    entry = directories + 4 * 8
    if entry + 8 > optional_end or struct.unpack_from("<I", program, directories - 4)[0] < 5:
        return None  # no certificate table entry
    start, length = struct.unpack_from("<II", program, entry)
    if start == 0 and length == 0:
        return None
    if start < optional_end or start + length != size:
        raise StampError(f"{source} is signed, but its certificate table ({length} bytes at {start}) "
                         f"does not end the file ({size} bytes); stamp a program as the signing tool wrote it")
    position = last = start
    while position < size:
        last = position
        certificate = struct.unpack_from("<I", program, position)[0] if size - position >= 8 else 0
        if not 8 <= certificate <= size - position:
            raise StampError(f"{source} is signed, but the certificate at {position} gives a length "
                             f"({certificate}) that does not fit its table")
        position += (certificate + 7) // 8 * 8
    if position != size or length == 0:
        raise StampError(f"{source} is signed, but its certificates' lengths do not add up to its "
                         f"certificate table ({length} bytes)")
    return entry, last, optional + 64


def stamp(source, output, partner_a, partner_b, label="", link="", logo=None, extra=0):
    a = number("partner number A", str(partner_a))
    b = number("partner number B", str(partner_b))
    label_bytes = text_field("label", label, LABEL_LIMIT)
    link_bytes = link_field(link)
    logo_bytes = logo_field(logo)
    if logo_bytes and not link_bytes:
        raise StampError("a logo needs a link: a click on the logo opens it")
    try:
        with open(source, "rb") as f:
            program = f.read()
    except OSError as error:
        raise StampError(f"cannot read {source}: {error.strerror}")
    if program[:2] != b"MZ":
        raise StampError(f"{source} is not a Windows program")
    if read_trailer(program) is not None:
        raise StampError(f"{source} is a partner's copy already; stamp the plain program")
    if os.path.exists(output) and os.path.samefile(source, output):
        raise StampError("the output would overwrite the program itself; name another file")
    block = trailer(a, b, label_bytes, link_bytes, logo_bytes, number("extra word", str(extra)))
    signature = certificate_table(program, source)
    if signature is None:
        stamped = program + block
    else:
        # The signed hash stops at the certificate table: growing it keeps the signature.
        # The table's length is a multiple of 8 (its certificates' rounded lengths add up to it).
        entry, last, checksum = signature
        stamped = bytearray(program + bytes(-len(block) % 8) + block)
        table = struct.unpack_from("<I", program, entry)[0]
        struct.pack_into("<I", stamped, entry + 4, len(stamped) - table)
        struct.pack_into("<I", stamped, last, len(stamped) - last)
        if struct.unpack_from("<I", program, checksum)[0]:
            struct.pack_into("<I", stamped, checksum, pe_checksum(stamped, checksum))
    if len(stamped) < SEARCH_SPAN:
        raise StampError(f"{source} is too small to be SETUP.EXE (the program looks for no trailer "
                         f"in a file under {SEARCH_SPAN} bytes)")
    partial = output + ".part"
    try:
        with open(partial, "wb") as f:
            f.write(stamped)
        shutil.copymode(source, partial)
        os.replace(partial, output)
    except OSError as error:
        raise StampError(f"cannot write {output}: {error.strerror}")


def main(argv=None):
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("program", help="the plain SETUP.EXE (read only)")
    parser.add_argument("-o", "--output", required=True, help="the partner's copy to write")
    parser.add_argument("--partner-a", required=True, help="the partner's first number")
    parser.add_argument("--partner-b", required=True, help="the partner's second number")
    parser.add_argument("--label", default="", help=f"the partner's name, at most {LABEL_LIMIT} bytes")
    parser.add_argument("--link", default="", help="web address opened by a click on the logo")
    parser.add_argument("--logo", help=f"the logo, a .bmp file of at most {LOGO_WIDTH} x {LOGO_HEIGHT} pixels")
    parser.add_argument("--extra", default="0", help="a further number, kept by the program unread")
    args = parser.parse_args(argv)
    try:
        stamp(args.program, args.output, args.partner_a, args.partner_b, args.label, args.link,
              args.logo, args.extra)
    except StampError as error:
        print(f"stamp.py: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
