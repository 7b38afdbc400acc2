#!/usr/bin/env python3
"""Writes the sample images of this folder, byte for byte as they are stored here.

The images are plausible rather than real: a table of start addresses, bytes that look like machine
code, some text, and settings for the EEPROM. Usage: make_images.py [folder]
"""

import pathlib
import sys

RECORD_BYTES = 16
OPCODES = (0x2401, 0x4718, 0x6A02, 0x9180, 0xB500, 0xBD10, 0xC3FE, 0xE7F5, 0x1C48, 0x0000)


def code(seed, size):
    """Returns bytes that look like 16-bit machine code; the same seed gives the same bytes."""
    state, data = seed, bytearray()
    while len(data) < size:
        state = (state * 1103515245 + 12345) % 2**31
        word = OPCODES[state // 65536 % len(OPCODES)] ^ (state // 4096 % 8 * 3)
        data += word.to_bytes(2, "little")
    return bytes(data[:size])


def start_table(base, entries):
    """Returns the start addresses of interrupt routines that follow the table."""
    first = base + 4 * entries
    return b"".join((first + 24 * i).to_bytes(4, "little") for i in range(entries))


def program(base, seed, size, banner):
    """Returns `size` bytes for address `base`: a start table, code and a text that names the image."""
    text = banner.encode("ascii") + b"\0"
    table = start_table(base, 16)
    return table + code(seed, size - len(table) - len(text)) + text


def settings(serial_number, *values):
    """Returns a serial number and 16-bit values, followed by the low byte of their sum."""
    data = serial_number.encode("ascii") + b"\0"
    data += b"".join(value.to_bytes(2, "little") for value in values)
    return data + bytes([sum(data) % 256])


# The pieces of each image: byte address and contents. Each piece has data in every row of the flash
# pages that it touches, because every "-wv" rewrites a page with a row that has none.
IMAGES = {
    # LARK-32: two pieces of flash with a gap, the second running from plain into encrypted flash
    # at 0x4000, and settings in the EEPROM.
    "blink.hex": [
        (0x00800, program(0x800, 1, 3060, "blink 1.0 for LARK-32")),
        (0x03C00, program(0x3C00, 2, 2040, "blink patterns")),
        (0x10000, settings("L32-000417", 500, 250, 125, 3)),
    ],
    # SISKIN-64: flash only.
    "siskin-64.hex": [
        (0x01000, program(0x1000, 3, 4000, "counter 2.1 for SISKIN-64")),
        (0x0F800, program(0xF800, 4, 0x800, "last page of flash")),
    ],
    # DUNLIN-48: settings in the EEPROM below the flash.
    "dunlin-48.hex": [
        (0x01020, settings("D48-000093", 12, 24)),
        (0x11000, program(0x11000, 5, 2030, "meter 1.3 for DUNLIN-48")),
        (0x17E00, program(0x17E00, 6, 0x3F0, "meter keys")),
    ],
    # WREN-32E: one piece that runs from the end of flash into the EEPROM right after it.
    "wren-32e.hex": [
        (0x00400, program(0x400, 7, 1270, "door 0.9 for WREN-32E")),
        (0x07F00, program(0x7F00, 8, 0x100, "door codes") + settings("W32-001200", 7, 1, 2, 3)),
    ],
    # GODWIT-128: both encrypted areas and the plain window between them.
    "godwit-128.hex": [
        (0x02000, program(0x2000, 9, 2000, "scope 4.0 for GODWIT-128")),
        (0x07800, program(0x7800, 10, 0xFF0, "scope window")),
        (0x0F800, program(0xF800, 11, 0xFF0, "scope tables")),
        (0x30040, settings("G128-00031", 1, 10, 100, 1000, 10000)),
    ],
    # PLOVER-96: rows of 192 bytes.
    "plover-96.hex": [
        (0x01800, program(0x1800, 12, 1536, "tide 1.1 for PLOVER-96")),
        (0x12000, program(0x12000, 13, 1400, "tide tables")),
        (0x21000, settings("P96-000002", 745, 1490)),
    ],
}


def record(kind, address, data):
    body = bytes([len(data)]) + address.to_bytes(2, "big") + bytes([kind]) + data
    return ":" + (body + bytes([-sum(body) % 256])).hex().upper() + "\n"


def hex_file(pieces):
    lines, upper = [], None
    for start, content in pieces:
        for offset in range(0, len(content), RECORD_BYTES):
            address = start + offset
            if address >> 16 != upper:
                upper = address >> 16
                lines.append(record(4, 0, upper.to_bytes(2, "big")))
            data = content[offset:offset + RECORD_BYTES]
            lines.append(record(0, address & 0xFFFF, data))
    return "".join(lines) + record(1, 0, b"")


def main():
    folder = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else __file__)
    folder = folder if folder.is_dir() else folder.parent
    for name, pieces in IMAGES.items():
        (folder / name).write_bytes(hex_file(pieces).encode("ascii"))


if __name__ == "__main__":
    main()
