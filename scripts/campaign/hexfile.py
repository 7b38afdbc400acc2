"""Reads and writes Intel HEX files. The runs of a campaign read and write almost the same megabytes
again and again, so the text of each piece and the bytes of a whole text are cached."""

import functools

RECORD = 32
PIECE = 0x1000  # divides 64 KiB, beyond which an address needs another upper half


def write(path, stretches):
    """Writes a file from pairs of a start address and bytes, in this order."""
    parts = []
    upper = None
    for start, data in _pieces(stretches):
        if start >> 16 != upper:
            upper = start >> 16
            parts.append(_record(4, 0, upper.to_bytes(2, "big")))
        parts.append(_records(start & 0xFFFF, data))
    parts.append(_record(1, 0, b""))
    path.write_text("".join(parts), encoding="ascii")


def _pieces(stretches):
    for start, data in stretches:
        done = 0
        while done < len(data):
            size = PIECE - (start + done) % PIECE
            yield start + done, bytes(data[done:done + size])
            done += size


@functools.lru_cache(maxsize=4096)
def _records(offset, data):
    return "".join(_record(0, offset + i, data[i:i + RECORD]) for i in range(0, len(data), RECORD))


def _record(kind, offset, data):
    body = bytes([len(data), offset >> 8, offset & 0xFF, kind]) + data
    return f":{body.hex().upper()}{-sum(body) & 0xFF:02X}\n"


def read(path):
    """Returns pairs of a start address and bytes; adjacent bytes are in one piece."""
    return list(_stretches(path.read_text(encoding="ascii")))


@functools.lru_cache(maxsize=16)
def _stretches(text):
    base = 0
    stretches = []
    for line in text.split():
        body = bytes.fromhex(line[1:])
        if sum(body) & 0xFF:
            raise ValueError(f"bad checksum in {line}")
        if body[3] == 4:
            base = int.from_bytes(body[4:6], "big") << 16
        elif body[3] == 0:
            stretches.append((base + int.from_bytes(body[1:3], "big"), body[4:-1]))
    return tuple(_joined(stretches))


def _joined(stretches):
    joined = []
    for start, data in stretches:
        if joined and joined[-1][0] + len(joined[-1][1]) == start:
            joined[-1][1].extend(data)
        else:
            joined.append((start, bytearray(data)))
    return [(start, bytes(data)) for start, data in joined]
