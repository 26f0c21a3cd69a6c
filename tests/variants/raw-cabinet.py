#!/usr/bin/env python3
"""Writes the cabinets of the test variants that gcab does not make.

  raw-cabinet.py empty <file>           a valid cabinet of no folder and no file:
                                        the 36-byte header alone
  raw-cabinet.py garbage <size> <file>  <size> bytes that are no cabinet (they do
                                        not begin with MSCF), the same every time
"""
import struct
import sys


def empty_cabinet():
    size = 36
    return struct.pack("<4sIIIIIBBHHHHH",
                       b"MSCF",
                       0,        # reserved
                       size,     # bytes in the cabinet
                       0,        # reserved
                       size,     # offset of the first file entry: there is none
                       0,        # reserved
                       3, 1,     # format version 1.3
                       0,        # folders
                       0,        # files
                       0,        # flags: no previous or next cabinet, no reserve
                       0x7A61,   # set id
                       0)        # number of this cabinet in its set


def garbage(size):
    state = 0x2545F491
    data = bytearray()
    while len(data) < size:
        state = (state * 1103515245 + 12345) & 0xFFFFFFFF
        data.append(state >> 16 & 0xFF)
    if data[:4] == b"MSCF":
        data[0] ^= 0xFF
    return bytes(data)


def main(argv):
    if len(argv) == 3 and argv[1] == "empty":
        data, path = empty_cabinet(), argv[2]
    elif len(argv) == 4 and argv[1] == "garbage" and argv[2].isdigit():
        data, path = garbage(int(argv[2])), argv[3]
    else:
        sys.exit(__doc__)
    with open(path, "wb") as out:
        out.write(data)


if __name__ == "__main__":
    main(sys.argv)
