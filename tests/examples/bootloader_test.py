#!/usr/bin/env python3
"""Tests of examples/bootloader.py, whose zserial has to be on the PATH."""

import os
import pathlib
import pty
import select
import subprocess
import sys
import tempfile
import threading
import time
import tty
import unittest

sys.dont_write_bytecode = True
EXAMPLES = pathlib.Path(__file__).resolve().parents[2] / "examples"
sys.path.append(str(EXAMPLES))
import bootloader


class Reads(unittest.TestCase):
    """At the ends of the memories."""

    def data(self, *command):
        answer = bootloader.Device().carry_out(bytes(command))
        return answer and answer[len(command):]

    def test_beyond_the_end_are_answered_in_full_length(self):
        self.assertEqual(self.data(1, 64, 0xC0, 0x7F, 0), b"\xff" * 64 + b" " * 64)
        self.assertEqual(self.data(4, 16, 0xF8, 0x01, 0), b"\xff" * 8 + b" " * 8)

    def test_that_begin_beyond_the_end_are_not_answered(self):
        self.assertIsNone(self.data(1, 64, 0x00, 0x80, 0))
        self.assertIsNone(self.data(4, 16, 0x00, 0x02, 0))


class SlowDevice(bootloader.Device):
    """Takes longer for an erase than the host waits. It leaves such an erase unanswered and
    discards what was received meanwhile, as the page on the protocol advises."""

    page_s = 0.1
    in_time_s = 0.2

    def __init__(self, master):
        super().__init__()
        self.master = master
        user_flash = bootloader.FLASH_END - bootloader.FLASH_START
        self.flash[bootloader.FLASH_START:] = b"\x5a" * user_flash

    def erase_time(self):
        pages = (self.flash[start:start + bootloader.PAGE]
                 for start in range(bootloader.FLASH_START, bootloader.FLASH_END, bootloader.PAGE))
        return self.page_s * sum(page.count(0xFF) < len(page) for page in pages)

    def carry_out(self, payload):
        if payload[0] != 3:
            return super().carry_out(payload)
        needed = self.erase_time()
        answer = super().carry_out(payload)
        time.sleep(needed)
        if needed <= self.in_time_s:
            return answer
        while select.select([self.master], [], [], 0)[0]:
            os.read(self.master, 4096)
        return None


class SlowErase(unittest.TestCase):
    def test_that_is_left_unanswered_succeeds_when_it_is_repeated(self):
        master, slave = pty.openpty()
        tty.setraw(slave)
        device = SlowDevice(master)
        threading.Thread(target=bootloader.serve, args=(device, master, slave),
                         daemon=True).start()
        with tempfile.TemporaryDirectory() as folder:
            for name in ("device.txt", "blink.hex"):
                (pathlib.Path(folder) / name).write_bytes((EXAMPLES / name).read_bytes())
            run = subprocess.run(["zserial", "-s", os.ttyname(slave), "-e", "-w", "blink.hex",
                                  "-v", "blink.hex"], cwd=folder, check=False, timeout=60,
                                 text=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.assertEqual(run.returncode, 0, run.stdout)
        self.assertIn("Erased all flash!", run.stdout)
        self.assertNotIn(0x5A, device.flash[0x6000:])


if __name__ == "__main__":
    unittest.main()
