#!/usr/bin/env python3
"""Measures the uploader's speed and prints a line for every goal."""

import argparse
import re
import subprocess
import sys
import tempfile
from pathlib import Path

import conditions
import gang
import goal
import host
import images
import plan
import wire

PARTS = {"host": host, "images": images, "plan": plan, "wire": wire, "gang": gang}
FIGURES = re.compile(r"(<!-- figures -->\n).*(<!-- end of figures -->)", re.DOTALL)


class Context:
    """The folders, and how thoroughly to measure."""

    def __init__(self, options, scratch):
        self.bench = Path(__file__).resolve().parent
        self.build = options.build.resolve()
        self.scratch = Path(scratch)
        self.image = self.scratch / "device.hex"
        self.short = options.short
        self.rounds = 1 if options.short else options.rounds
        self.slow_rounds = options.slow_rounds
        self.repetitions = 3 if options.short else max(3, options.rounds)
        self.min_seconds = 0.02 if options.short else 0.3


def arguments():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("build", type=Path, help="folder of a release build with benchmarks")
    parser.add_argument(
        "--short", action="store_true",
        help="less than a minute; a goal that is not met is not an error",
    )
    parser.add_argument("--rounds", type=int, default=5, help="of which medians are taken")
    parser.add_argument(
        "--slow-rounds", type=int, default=3, help="at the low rates, where one takes minutes"
    )
    parser.add_argument("--write", type=Path, help="page to put the table into")
    parser.add_argument("--part", choices=PARTS, action="append", help="only this; repeatable")
    options = parser.parse_args()
    if options.part and options.write:
        parser.error("the page has the figures of all parts")
    return options


def make_device_image(context):
    """Fills the flash of the devices of device.txt."""
    program = context.build / "bench/hex_program"
    subprocess.run([program, "device", str(128 * 1024), context.image], check=True)


def write_page(path, goals, circumstances):
    table = f"{circumstances}\n\n{goal.as_markdown(goals)}\n\n"
    page, count = FIGURES.subn(lambda found: found[1] + "\n" + table + found[2], path.read_text())
    if count != 1:
        sys.exit(f"{path} has no place for figures")
    path.write_text(page)


def main():
    options = arguments()
    circumstances = conditions.text(Path(__file__).resolve().parent.parent)
    goals = []
    with tempfile.TemporaryDirectory() as scratch:
        context = Context(options, scratch)
        make_device_image(context)
        for name in options.part or PARTS:
            for reached in PARTS[name].goals(context):
                print(*reached.cells(), sep="  ", file=sys.stderr, flush=True)
                goals.append(reached)
    print(f"{circumstances}\n\n{goal.as_text(goals)}")
    if options.write:
        write_page(options.write, goals, circumstances)
    # A short run may share its machine with other work: it shows that everything can be measured.
    sys.exit(0 if options.short or all(reached.met for reached in goals) else 1)


if __name__ == "__main__":
    main()
