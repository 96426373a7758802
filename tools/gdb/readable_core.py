#!/usr/bin/python3
"""readable_core.py CORE COPY

Makes a copy of a core file of qemu-user's that gdb reads as it should. Such a file names the code
of program and libraries among its segments and leaves its bytes out. gdb takes them for zeros, then
the program for another one, and finds neither its variables nor its libraries. Without those
segments it takes the bytes from the files.
"""

import struct
import sys

LOAD, NULL = 1, 0


def without_empty_segments(core):
    """The core file, 32-bit ELF in either byte order, with its empty segments crossed out."""
    order = ">" if core[5] == 2 else "<"
    table, = struct.unpack_from(order + "I", core, 28)
    size, count = struct.unpack_from(order + "HH", core, 42)
    for entry in range(table, table + count * size, size):
        kind, _, _, _, bytes_in_file = struct.unpack_from(order + "5I", core, entry)
        if kind == LOAD and bytes_in_file == 0:
            struct.pack_into(order + "I", core, entry, NULL)
    return core


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    with open(sys.argv[1], "rb") as source:
        core = bytearray(source.read())
    if core[:5] != b"\x7fELF\x01":
        sys.exit(f"{sys.argv[1]}: no 32-bit ELF file")
    with open(sys.argv[2], "wb") as copy:
        copy.write(without_empty_segments(core))


main()
