#!/usr/bin/env python3
"""Checks the syntax of the udev rules, and that each line is explained. The test of the packages lets
udev itself read them."""

import re
import sys
import unittest

sys.dont_write_bytecode = True
import programs

RULES = programs.ROOT / "packaging/udev/70-zserial.rules"

MATCHES = "==|!="
ASSIGNMENTS = r"=|\+="
# The operators that udev(7) allows for each key that these rules need.
KEYS = {
    "ACTION": MATCHES, "SUBSYSTEM": MATCHES, "SUBSYSTEMS": MATCHES, "DRIVERS": MATCHES,
    "KERNEL": MATCHES, "TEST": MATCHES, "ENV{}": f"{MATCHES}|=", "ATTR{}": f"{MATCHES}|=",
    "TAG": rf"{MATCHES}|\+=", "SYMLINK": rf"\+=", "GOTO": "=", "LABEL": "=",
}
TOKEN = re.compile(r'([A-Z]+)(?:\{([A-Za-z0-9_./]+)\})?(==|!=|\+=|=)"([^"]*)"')


def faults_of(text):
    """Returns the faults of rules as texts that start with the line number."""
    faults = []
    labels = re.findall(r'LABEL="(\w+)"', text)
    lines = text.splitlines()
    for number, line in enumerate(lines, start=1):
        if not line or line.startswith("#"):
            continue
        if number < 2 or not lines[number - 2].startswith("#"):
            faults.append(f"{number}: not explained")
        for part in re.split(r",\s*(?=[A-Z])", line):
            token = TOKEN.fullmatch(part)
            if not token:
                faults.append(f"{number}: no rule: {part}")
                continue
            key, attribute, operator, value = token.groups()
            key += "{}" if attribute else ""
            if not re.fullmatch(KEYS.get(key, "none"), operator):
                faults.append(f"{number}: {key} does not take {operator}")
            if key == "GOTO" and value not in labels:
                faults.append(f"{number}: no label {value}")
    return faults


class Rules(unittest.TestCase):
    def test_are_well_formed_and_explained(self):
        self.assertEqual(faults_of(RULES.read_text()), [])

    def test_come_before_access_is_granted_and_after_the_adapter_is_known(self):
        self.assertTrue(60 < int(RULES.name.partition("-")[0]) < 73)


class FaultyRules(unittest.TestCase):
    def check(self, line, fault):
        self.assertEqual(faults_of(f"# What it is for.\n{line}\n"), [fault])

    def test_are_found(self):
        self.check('TAG+="uaccess', '2: no rule: TAG+="uaccess')
        self.check('TAG+="uaccess" SYMLINK+="a"', '2: no rule: TAG+="uaccess" SYMLINK+="a"')
        self.check('TAGS+="uaccess"', "2: TAGS does not take +=")
        self.check('ACTION="add"', "2: ACTION does not take =")
        self.check('ENV{A}+="add"', "2: ENV{} does not take +=")
        self.check('GOTO="nowhere"', "2: no label nowhere")
        self.assertEqual(faults_of('# A reason.\n\nTAG+="uaccess"\n'), ["3: not explained"])


if __name__ == "__main__":
    unittest.main()
