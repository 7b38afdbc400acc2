#!/usr/bin/env python3
"""Checks the completions that a shell offers. Arguments: the shell (bash, zsh or fish) and the folder of
the programs."""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
import programs

FOLDER = Path(sys.argv.pop())
SHELL = sys.argv.pop()
OFFERS = Path(__file__).parent / f"completions/offers.{SHELL}"
COMPLETIONS = programs.ROOT / "packaging/completions"

VERSIONS = {"0110", "0111", "0121", "0122", "0132", "0140"}
PORTS = {"dev/ttyUSB0", "dev/ttyUSB1", "dev/ttyACM0", "dev/serial/by-id/usb-adapter"}
FILES = {"blink.hex", "dev", "device.txt", "notes.txt", "sub"}


class Completion(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        shutil.copy(programs.ROOT / "examples/device.txt", cls.folder)
        for name in ["blink.hex", "notes.txt", "sub/small.txt", *PORTS]:
            (cls.folder / name).parent.mkdir(parents=True, exist_ok=True)
            (cls.folder / name).touch()
        row = (cls.folder / "device.txt").read_text().partition("v0121:")[2].splitlines()[0]
        (cls.folder / "sub/small.txt").write_text(f"v0BEE:{row}\nv0BAD:{row}\t26th column\n")

    def offered(self, line):
        environment = {**os.environ, "HOME": str(self.folder), "LC_ALL": "C.UTF-8",
                       "PATH": f"{FOLDER}:{os.environ['PATH']}"}
        ended = subprocess.run([OFFERS, COMPLETIONS, line], cwd=self.folder, env=environment,
                               check=True, capture_output=True, text=True, timeout=60)
        self.assertEqual(ended.stderr, "")
        return [offer.removesuffix("/") for offer in ended.stdout.split()]

    def check(self, line, expected):
        with self.subTest(line):
            self.assertEqual(sorted(self.offered(line)), sorted(expected))

    def check_images(self, line):
        """Expects HEX files; fish offers other files, too, but after them."""
        with self.subTest(line):
            offered = self.offered(line)
            self.assertEqual(offered[0], "blink.hex")
            self.assertEqual(set(offered), FILES if SHELL == "fish" else {"blink.hex", "dev", "sub"})


class OfZserial(Completion):
    def test_offers_all_options(self):
        self.check("zserial -", programs.tool_options())
        self.check("zserial -s dev/ttyUSB0 -h -", programs.tool_options()
                   if SHELL != "zsh" else programs.tool_options().keys() - {"-s", "-h"})

    def test_completes_the_argument_of_each_option(self):
        self.check("zserial -s ", PORTS)
        self.check("zserial -s dev/ttyU", {"dev/ttyUSB0", "dev/ttyUSB1"})
        self.check("zserial -B ", VERSIONS)
        self.check("zserial -B 012", {"0121", "0122"})
        self.check("zserial -x n", {"notes.txt"})
        for option in ["-w", "-wv", "-r", "-v", "-W 0 1", "-l 0 1"]:
            self.check_images(f"zserial {option} ")

    def test_offers_nothing_for_numbers(self):
        for option in ["-W", "-W 0", "-l", "-l 0", "-E", "-E 0", "-M"]:
            self.check(f"zserial {option} ", set())

    def test_knows_where_an_option_ends(self):
        self.check("zserial -E 0 1 -x", {"-x", "-xe", "-xu"})
        self.check("zserial -w blink.hex -R -B 014", {"0140"})


class OfTheCompanions(Completion):
    def test_offers_all_options(self):
        for program in ["zserial-sim", "zserial-gang"]:
            self.check(f"{program} --", programs.options_of(FOLDER / program))
        self.check("zserial-gang report --", programs.options_of(FOLDER / "zserial-gang", "report"))
        inspector = FOLDER / "zserial-inspect"
        self.check("zserial-inspect ", [*programs.subcommands_of(inspector), "--help", "--version"])
        for name in programs.subcommands_of(inspector):
            self.check(f"zserial-inspect {name} --", programs.options_of(inspector, name))

    def test_offers_versions_of_the_given_table(self):
        self.check("zserial-sim --device ", VERSIONS)
        self.check("zserial-sim --table sub/small.txt --device ", {"0BEE"})
        self.check("zserial-gang --expect 01", VERSIONS)
        self.check("zserial-inspect image --device ", VERSIONS)
        self.check("zserial-inspect table --explain 013", {"0132"})

    def test_offers_named_values(self):
        self.check("zserial-sim --entry ", {"probe", "version", "silent"})
        self.check("zserial-sim --echo ", {"apart", "together"})
        self.check("zserial-gang --serial-format ", {"little", "big", "text"})

    def test_offers_the_kinds_of_faults(self):
        kinds = programs.fault_kinds(FOLDER / "zserial-sim")
        offered = self.offered("zserial-sim --fault ")
        self.assertEqual(sorted(offer.rstrip("=:") for offer in offered), sorted(kinds))
        self.assertTrue({"lose-response=", "delay-response:", "stuck-bits:"} <= set(offered))

    def test_offers_files(self):
        for option in ["--memory", "--save", "--check"]:
            self.check_images(f"zserial-sim {option} ")
        self.check_images("zserial-inspect image ")
        self.check("zserial-sim --trace ", FILES)
        self.check("zserial-gang --record ", FILES)
        self.check("zserial-gang report ", FILES)
        self.check("zserial-inspect table ", FILES)

    def test_offers_nothing_for_numbers(self):
        for line in ["zserial-sim --seed ", "zserial-sim --latency-ms ", "zserial-gang --jobs "]:
            self.check(line, set())

    def test_offers_ports_to_program(self):
        self.check("zserial-gang ", PORTS | {"report"})
        self.check("zserial-gang --certify dev/ttyUSB0 ", PORTS)

    def test_completes_like_zserial_after_the_separator(self):
        self.check("zserial-gang dev/ttyUSB0 -- -x", {"-x", "-xe", "-xu"})
        self.check_images("zserial-gang dev/ttyUSB0 -- -wv ")
        self.check("zserial-inspect plan -- -B 012", {"0121", "0122"})
        self.check("zserial-sim --exec -- zserial -B 012", {"0121", "0122"})
        self.check("zserial-sim --exec -- zserial-insp", {"zserial-inspect"})


if __name__ == "__main__":
    unittest.main()
