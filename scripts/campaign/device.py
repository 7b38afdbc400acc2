"""The small device that the campaign works on, its memory and its images."""

import random

VERSION = "0110"
FLASH = range(0x400, 0xC00)  # behind the bootloader
PAGE = 0x100
ROW = 0x40
EEPROM = range(0x10000, 0x10040)
EEPROM_ROW = 0x10
ERASED = 0xFF
SMALLER_FLASH_END = 0x800  # of the device that a damaged version may select

# Special on the line: terminator, escape and sync. Images hold more of them than chance would give.
SPECIAL = (0x04, 0x05, 0x55)


def _row(version, name, flash_end):
    flash = [hex(flash_end), hex(flash_end), "0x0", "0x400", hex(PAGE), hex(ROW), "2", "2", hex(ROW)]
    eeprom = [hex(EEPROM.start), hex(EEPROM.stop), "1", "1", hex(EEPROM_ROW), hex(EEPROM_ROW)]
    fillers = ["0xFFFF0000", "2"], ["0xFF000000", "1", hex(len(EEPROM))]
    plain = [hex(FLASH.start), hex(flash_end)]
    columns = [f"v{version}:", "115200", name, *flash, *fillers[0], *eeprom, *fillers[1], *plain]
    return "\t".join(columns) + "\n"


# The second device differs from the first in one bit of its version and in the end of its flash.
TABLE = _row(VERSION, "SMALL", FLASH.stop) + _row("0111", "SMALLER", SMALLER_FLASH_END)


class Memory:
    """Every byte of flash behind the bootloader and of EEPROM, by address; erased where not set."""

    def __init__(self, cells=None):
        self.cells = dict.fromkeys([*FLASH, *EEPROM], ERASED)
        self.cells.update(cells or {})

    def __eq__(self, other):
        return self.cells == other.cells

    def differences(self, image, whole=False):
        """The addresses where the image has another byte, and with `whole` those that it lacks."""
        wrong = {address for address, byte in image.items() if self.cells.get(address) != byte}
        return wrong | (self.cells.keys() - image.keys() if whole else set())

    def written(self, image):
        """The memory after "-e -w" of the image."""
        cells = dict(self.cells)
        cells.update(dict.fromkeys(FLASH, ERASED))
        cells.update(image)
        return Memory(cells)

    def written_and_verified(self, image):
        """The memory after "-wv" of the image: the pages that it touches are all its own."""
        cells = dict(self.cells)
        pages = {address // PAGE * PAGE for address in image if address in FLASH}
        for page in pages:
            cells.update(dict.fromkeys(range(page, page + PAGE), ERASED))
        cells.update(image)
        return Memory(cells)


def random_bytes(draws, count):
    return [draws.choice(SPECIAL) if draws.random() < 0.1 else draws.randrange(256)
            for _ in range(count)]


def random_image(draws, eeprom=True):
    """Twelve rows of flash in two stretches, the first of which ends inside a row, and two rows of
    EEPROM if wanted."""
    first = FLASH.start + ROW * draws.randrange(4)
    second = first + ROW * (8 + draws.randrange(8))
    stretches = [(first, 7 * ROW - draws.randrange(ROW // 2)), (second, 5 * ROW)]
    if eeprom:
        stretches.append((EEPROM.start + EEPROM_ROW * draws.randrange(3), 2 * EEPROM_ROW))
    image = {}
    for start, size in stretches:
        image.update(zip(range(start, start + size), random_bytes(draws, size)))
    return image


def random_memory(draws):
    """A device that holds something; some of its rows are erased."""
    cells = {}
    for start in [*FLASH[::ROW], *EEPROM[::EEPROM_ROW]]:
        if draws.random() < 0.8:
            size = ROW if start in FLASH else EEPROM_ROW
            cells.update(zip(range(start, start + size), random_bytes(draws, size)))
    return Memory(cells)


def write_hex(path, cells):
    """Intel HEX, one record for up to 16 bytes that follow each other."""
    lines = [_record(4, 0, [0, 0])]
    upper = 0
    addresses = sorted(cells)
    while addresses:
        start = addresses[0]
        count = 1
        while count < min(16, len(addresses)) and addresses[count] == start + count \
                and (start + count) >> 16 == start >> 16:
            count += 1
        if start >> 16 != upper:
            upper = start >> 16
            lines.append(_record(4, 0, [upper >> 8, upper & 0xFF]))
        lines.append(_record(0, start & 0xFFFF, [cells[a] for a in addresses[:count]]))
        del addresses[:count]
    lines.append(_record(1, 0, []))
    path.write_text("".join(lines), encoding="ascii")


def _record(kind, address, data):
    body = bytes([len(data), address >> 8, address & 0xFF, kind, *data])
    return f":{body.hex().upper()}{-sum(body) & 0xFF:02X}\n"


def read_hex(path):
    """The bytes of an Intel HEX file by address."""
    cells = {}
    base = 0
    for line in path.read_text(encoding="ascii").split():
        body = bytes.fromhex(line[1:])
        if sum(body) & 0xFF:
            raise ValueError(f"{path}: bad checksum in {line}")
        if body[3] == 4:
            base = int.from_bytes(body[4:6], "big") << 16
        elif body[3] == 0:
            start = base + int.from_bytes(body[1:3], "big")
            cells.update(zip(range(start, start + body[0]), body[4:-1]))
    return cells


def generator(seed, key):
    """Random numbers that depend on the campaign's seed and a run's name, and on nothing else."""
    return random.Random(f"{seed}/{key}")
