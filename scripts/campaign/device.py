"""The devices that the campaign works on."""

import dataclasses
import typing

VERSION = "0110"
EEPROM = range(0x400000, 0x400040)
EEPROM_ROW = 0x10


@dataclasses.dataclass(frozen=True)
class Device:
    name: str
    flash: range  # after the bootloader
    page: int
    row: int
    stretch_rows: tuple  # of flash, for the two stretches of an image
    # Number of images that the runs share. None: every run has its own.
    images: typing.Optional[int] = None

    eeprom = EEPROM
    eeprom_row = EEPROM_ROW

    @property
    def smaller_flash_end(self):
        """The flash end of the other device in the table, which is selected by a damaged version."""
        return (self.flash.start + self.flash.stop) // 2

    @property
    def table(self):
        """The second device differs in one bit of its version and in its flash end."""
        return (self._row(VERSION, "DEVICE", self.flash.stop) +
                self._row("0111", "SMALLER", self.smaller_flash_end))

    def _row(self, version, name, flash_end):
        flash = [hex(flash_end), hex(flash_end), "0x0", hex(self.flash.start), hex(self.page),
                 hex(self.row), "2", "2", hex(self.row), "0xFFFF0000", "2"]
        eeprom = [hex(self.eeprom.start), hex(self.eeprom.stop), "1", "1", hex(self.eeprom_row),
                  hex(self.eeprom_row), "0xFF000000", "1", hex(len(self.eeprom))]
        plain = [hex(self.flash.start), hex(flash_end)]
        return "\t".join([f"v{version}:", "115200", name, *flash, *eeprom, *plain]) + "\n"


# The rarer the faults, the more bytes a run has to transfer to meet one.
SMALL = Device("small", range(0x400, 0xC00), page=0x100, row=0x40, stretch_rows=(7, 5))
MEDIUM = Device("medium", range(0x800, 0x20800), page=0x800, row=0x100, stretch_rows=(248, 240),
                images=8)
LARGE = Device("large", range(0x2000, 0x102000), page=0x2000, row=0x100,
               stretch_rows=(2040, 2000), images=4)
