"""The contents of devices: images, memories and their differences."""

import functools
import itertools
import random

ERASED = 0xFF

# Special on the line: terminator, escape and sync. Images contain more of them than random data.
SPECIAL = (0x04, 0x05, 0x55)


class Image:
    """Bytes by address, in ascending stretches that do not overlap."""

    def __init__(self, stretches):
        self.stretches = list(stretches)  # pairs of a start address and bytes

    def __contains__(self, address):
        return any(start <= address < start + len(data) for start, data in self.stretches)

    def addresses(self):
        return [address for start, data in self.stretches
                for address in range(start, start + len(data))]

    def pages(self, device):
        """Returns the addresses of the flash pages that it touches."""
        return sorted({page for start, data in self.stretches if start in device.flash
                       for page in range(start // device.page * device.page, start + len(data),
                                         device.page)})


class Memory:
    """All bytes of EEPROM, and of flash after the bootloader; erased unless set."""

    def __init__(self, device, image=None):
        self.device = device
        self.areas = {area: bytearray([ERASED]) * len(area)
                      for area in (device.flash, device.eeprom)}
        self._put(image or Image([]))

    def __eq__(self, other):
        return self.areas == other.areas

    def __getitem__(self, address):
        """Returns the byte at an address; None where the device has no memory."""
        return next((bytes_[address - area.start] for area, bytes_ in self.areas.items()
                     if address in area), None)

    def image(self):
        return Image((area.start, bytes(bytes_)) for area, bytes_ in self.areas.items())

    def differences(self, image, whole=False):
        """Returns the addresses where the image has a different byte or, with `whole`, no byte."""
        wrong = set()
        for start, data in image.stretches:
            held = self._slice(start, len(data))
            if held != data:
                pairs = enumerate(itertools.zip_longest(held, data), start)
                wrong |= {address for address, (byte, other) in pairs if byte != other}
        if whole and sum(len(data) for _, data in image.stretches) < sum(map(len, self.areas)):
            wrong |= {address for area in self.areas for address in area} - set(image.addresses())
        return wrong

    def written(self, image):
        """Returns the memory after "-e -w" of the image."""
        return self._copy(erased=[self.device.flash], image=image)

    def written_and_verified(self, image):
        """Returns the memory after "-wv" of the image, which replaces all pages that it touches."""
        pages = [range(page, page + self.device.page) for page in image.pages(self.device)]
        return self._copy(erased=pages, image=image)

    def with_bits_turned(self, addresses):
        """Returns the memory with a different byte at each of these addresses."""
        return self._copy(image=Image((address, bytes([self[address] ^ 0x10]))
                                      for address in addresses))

    def _copy(self, erased=(), image=None):
        copy = Memory(self.device, self.image())
        for piece in erased:
            copy._put(Image([(piece.start, bytes([ERASED]) * len(piece))]))
        copy._put(image or Image([]))
        return copy

    def _put(self, image):
        for start, data in image.stretches:
            area = next((area for area in self.areas
                         if start in area and start + len(data) <= area.stop), None)
            if area is None:
                raise ValueError(f"{len(data)} bytes at {start:#x} are not all in one memory")
            self.areas[area][start - area.start:start - area.start + len(data)] = data

    def _slice(self, start, size):
        return next((bytes_[start - area.start:start - area.start + size]
                     for area, bytes_ in self.areas.items() if start in area), b"")


@functools.lru_cache(maxsize=16)
def sample(device, seed, eeprom):
    """Returns an image, and the memory of a device with other contents. Both depend only on the seed."""
    draws = random.Random(seed)
    return _random_image(device, draws, eeprom), _random_memory(device, draws)


def _random_image(device, draws, eeprom):
    """Returns two stretches of flash, the first of which ends inside a row, and, with `eeprom`, two
    rows of EEPROM."""
    first_rows, second_rows = device.stretch_rows
    first = device.flash.start + device.row * draws.randrange(4)
    second = first + device.row * (first_rows + 1 + draws.randrange(8))
    stretches = [(first, first_rows * device.row - draws.randrange(device.row // 2)),
                 (second, second_rows * device.row)]
    if eeprom:
        stretches.append((device.eeprom.start + device.eeprom_row * draws.randrange(3),
                          2 * device.eeprom_row))
    return Image((start, random_bytes(draws, size)) for start, size in stretches)


def _random_memory(device, draws):
    """Returns a memory in which some rows are erased."""
    rows = [(start, size) for area, size in ((device.flash, device.row),
                                             (device.eeprom, device.eeprom_row))
            for start in area[::size] if draws.random() < 0.8]
    return Memory(device, Image((start, random_bytes(draws, size)) for start, size in rows))


def random_bytes(draws, count):
    data = bytearray(draws.randbytes(count))
    for place, chance in enumerate(draws.randbytes(count)):
        if chance < 26:  # a tenth of all bytes
            data[place] = SPECIAL[chance % len(SPECIAL)]
    return bytes(data)


def generator(seed, key):
    """Returns random numbers that depend only on the campaign's seed and the name of a run."""
    return random.Random(f"{seed}/{key}")
