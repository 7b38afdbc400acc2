#!/usr/bin/env python3
"""Compares the manual pages with the programs and the sources, and checks them with mandoc. Argument:
the folder of the programs."""

import re
import subprocess
import sys
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
import programs

PAGES = programs.ROOT / "packaging/man"
FOLDER = Path(sys.argv.pop())


def sections(page):
    """Returns the lines of a page by the name of their section or subsection."""
    found = {}
    name = ""
    for line in (PAGES / page).read_text().splitlines():
        if match := re.match(r"\.S[hs] (.+)", line):
            name = match[1]
        else:
            found.setdefault(name, []).append(line)
    return found


def options_in(*lines):
    """Returns {option: its arguments} for the tagged items among the lines."""
    items = [re.match(r"\.It Fl (\S+)(.*)", line) for line in lines]
    return {"-" + item[1]: re.sub(r" (Op|Ar) ?", " ", item[2]).split() for item in items if item}


class OptionsOf(unittest.TestCase):
    def check(self, command, *lines):
        documented = {name: bool(values) for name, values in options_in(*lines).items()}
        self.assertEqual(documented, programs.options_of(*command))

    def test_zserial(self):
        lines = (PAGES / "zserial.1").read_text().splitlines()
        documented = {name: len(values) for name, values in options_in(*lines).items()}
        self.assertEqual(documented, programs.tool_options())
        self.assertGreater(len(documented), 10)

    def test_zserial_sim(self):
        self.check([FOLDER / "zserial-sim"], *sum(sections("zserial-sim.1").values(), []))

    def test_zserial_gang_and_its_report(self):
        parts = sections("zserial-gang.1")
        self.check([FOLDER / "zserial-gang", "report"], *parts.pop("report"))
        self.check([FOLDER / "zserial-gang"], *sum(parts.values(), []))

    def test_every_subcommand_of_zserial_inspect(self):
        program = FOLDER / "zserial-inspect"
        parts = sections("zserial-inspect.1")
        own = [name for name in parts if name.islower()]
        self.assertEqual(own, programs.subcommands_of(program))
        for name in own:
            with self.subTest(name):
                self.check([program, name], *parts["DESCRIPTION"], *parts[name])


class OtherLists(unittest.TestCase):
    def test_the_kinds_of_faults(self):
        documented = re.findall(r"^\.It Cm ([a-z-]+)", "\n".join(sections("zserial-sim.1")["Faults"]),
                                re.MULTILINE)
        self.assertEqual(documented, programs.fault_kinds(FOLDER / "zserial-sim"))

    def test_the_columns_of_the_table(self):
        header = (programs.ROOT / "profile/Profile.h").read_text()
        attributes = re.search(r"enum Attr : int \{(.*?)_enum_size", header, re.DOTALL)[1]
        names = re.findall(r"^        ([a-z_]+)", attributes, re.MULTILINE)
        page = (PAGES / "zserial-device-table.5").read_text()
        self.assertEqual(re.findall(r"^\.Cm ([a-z_]+) :", page, re.MULTILINE), names)


class Pages(unittest.TestCase):
    def test_there_is_one_for_every_program_and_the_table(self):
        self.assertEqual(sorted(page.name for page in PAGES.iterdir()),
                         ["zserial-device-table.5", "zserial-gang.1", "zserial-inspect.1",
                          "zserial-sim.1", "zserial.1"])

    def test_mandoc_has_no_warnings(self):
        pages = sorted(PAGES.iterdir())
        lint = subprocess.run(["mandoc", "-T", "lint", "-W", "warning", *pages],
                              capture_output=True, text=True)
        self.assertEqual((lint.returncode, lint.stdout + lint.stderr), (0, ""))


if __name__ == "__main__":
    unittest.main()
