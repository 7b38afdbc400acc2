"""Many devices programmed at once on this machine."""

import os
import random
import statistics
import subprocess
import time

from . import hexfile
from .memory import ERASED

# LARK-32 of the examples: 30 KiB of flash after the bootloader. With so many runs at once, answers can be
# late. This only costs time if all acknowledgements are equal: hence only flash, and no erase.
VERSION = "0110"
FLASH = range(0x800, 0x8000)


class Station:
    """A simulated device and the zserial process that programs it."""

    def __init__(self, programs, folder, table, draws, options):
        folder.mkdir(parents=True)
        self.folder = folder
        self.image = draws.randbytes(len(FLASH))
        (folder / "device.txt").write_text(table, encoding="utf-8")
        hexfile.write(folder / "image.hex", [(FLASH.start, self.image)])
        self.programs = programs
        self.simulator = subprocess.Popen(
            [programs.simulator, "--device", VERSION, "--entry", "version", "--save", "after.hex",
             *options], cwd=folder, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE)
        self.port = self.simulator.stdout.readline().decode().strip()
        self.tool = None

    def program(self):
        with open(self.folder / "out.txt", "wb") as out, open(self.folder / "err.txt", "wb") as err:
            self.tool = subprocess.Popen(
                [self.programs.zserial, "-s", self.port, "-B", VERSION, "-w", "image.hex",
                 "-v", "image.hex"],
                cwd=self.folder, stdin=subprocess.DEVNULL, stdout=out, stderr=err)

    def end(self):
        """Returns whether the upload was right, and the processor times of zserial and simulator in
        seconds."""
        status, tool_s = _reap(self.tool)
        self.simulator.terminate()
        self.simulator.stdout.read()
        _, simulator_s = _reap(self.simulator)
        return status == 0 and self._held() == self.image, tool_s, simulator_s

    def _held(self):
        """Returns the flash that the simulator has saved."""
        flash = bytearray([ERASED]) * len(FLASH)
        for start, data in hexfile.read(self.folder / "after.hex"):
            flash[start - FLASH.start:start - FLASH.start + len(data)] = data
        return flash


def _reap(process):
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    return process.returncode, usage.ru_utime + usage.ru_stime


def measure(programs, folder, table, seed, count, options):
    """Returns a line of the table, and whether all uploads were right."""
    draws = random.Random(f"{seed}/load")
    stations = [Station(programs, folder / str(i), table, draws, options) for i in range(count)]
    start = time.monotonic()
    for station in stations:
        station.program()
    ends = [station.end() for station in stations]
    seconds = time.monotonic() - start
    right = sum(end[0] for end in ends)
    tool = [end[1] for end in ends]
    simulator = [end[2] for end in ends]
    line = (f"{count} | {right} | {seconds:.1f} s | {statistics.median(tool):.2f} s, "
            f"{max(tool):.2f} s | {statistics.median(simulator):.2f} s, {max(simulator):.2f} s")
    return line, right == count
