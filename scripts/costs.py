#!/usr/bin/env python3
"""Writes the tables of docs/costs.md: the costs of runs, as calculated by `zserial-inspect plan`.

    scripts/costs.py --programs build/release            # update the tables
    scripts/costs.py --programs build/release --check    # check that they are up to date"""

import argparse
import json
import pathlib
import random
import subprocess
import sys
import tempfile

SOURCE = pathlib.Path(__file__).resolve().parent.parent
PAGE = SOURCE / "docs" / "costs.md"
BEGIN, END = "<!-- begin: written by scripts/costs.py -->\n", "<!-- end -->\n"
DEVICE, VERSION, RATE = "LARK-32", "0110", "115200"
FLASH_START = 0x800
RATES = (9600, 38400, 115200, 460800)
SIZES_KIB = (4, 15, 30)
#: Name, arguments, and whether the device already holds the image.
RUNS = (
    ("`-e -w FILE`", "-e -w image.hex", False),
    ("`-e -w FILE -v FILE`", "-e -w image.hex -v image.hex", False),
    ("`-wv FILE`, nothing matches", "-wv image.hex", False),
    ("`-wv FILE`, everything matches", "-wv image.hex", True),
    ("`-e -wv FILE`", "-e -wv image.hex", True),
    ("`-v FILE`", "-v image.hex", True),
    ("`-r FILE`", "-r read.hex", True),
)


def record(address, data, kind=0):
    body = bytes([len(data), address >> 8, address & 0xFF, kind]) + data
    return f":{body.hex()}{-sum(body) & 0xFF:02x}".upper() + "\n"


def image(size):
    """Returns an Intel HEX file with `size` random bytes from the start of flash on."""
    data = random.Random(1).randbytes(size)
    lines = (record(FLASH_START + place, data[place:place + 16]) for place in range(0, size, 16))
    return "".join(lines) + record(0, b"", 1)


def plan(programs, folder, rate, size, arguments, holds_it):
    """Returns the plan of zserial-inspect for one run."""
    table = (SOURCE / "examples" / "device.txt").read_text(encoding="utf-8")
    row, = (line for line in table.split("\n") if DEVICE in line and line.startswith("v"))
    (folder / "device.txt").write_text(row.replace(RATE, str(rate), 1) + "\n", encoding="utf-8")
    (folder / "image.hex").write_text(image(size), encoding="utf-8")
    before = ["--before", "image.hex"] if holds_it else []
    run = subprocess.run(
        [programs / "zserial-inspect", "plan", "--json", "--device", VERSION, *before, "--", "-s",
         "port", *arguments.split()],
        cwd=folder, stdout=subprocess.PIPE, check=False)
    if run.returncode > 1:
        sys.exit(f"no plan for {arguments}")
    return json.loads(run.stdout)


def table_of(titles, rows):
    lines = [titles, ["---"] + ["---:"] * (len(titles) - 1), *rows]
    return "".join(f"| {' | '.join(map(str, line))} |\n" for line in lines) + "\n"


def seconds(planned):
    return f"{planned['seconds']['total']:.1f}"


def tables(programs, folder):
    most = max(SIZES_KIB)
    yield f"Seconds for {most} KiB by the rate of the line:\n\n"
    yield table_of(["Run", *(f"{rate} baud" for rate in RATES)], [
        [name, *(seconds(plan(programs, folder, rate, most * 1024, arguments, holds_it))
                 for rate in RATES)] for name, arguments, holds_it in RUNS])
    yield f"Seconds at {RATE} baud by the size of the image:\n\n"
    yield table_of(["Run", *(f"{size} KiB" for size in SIZES_KIB)], [
        [name, *(seconds(plan(programs, folder, RATE, size * 1024, arguments, holds_it))
                 for size in SIZES_KIB)] for name, arguments, holds_it in RUNS])
    yield f"Pages erased and commands for {min(SIZES_KIB)} and {most} KiB; the device has 30 pages:\n\n"
    yield table_of(["Run", *(f"{what}, {size} KiB" for size in (min(SIZES_KIB), most)
                             for what in ("pages erased", "commands"))], [
        [name, *wear(programs, folder, arguments, holds_it)] for name, arguments, holds_it in RUNS])


def wear(programs, folder, arguments, holds_it):
    for size in (min(SIZES_KIB), max(SIZES_KIB)):
        planned = plan(programs, folder, RATE, size * 1024, arguments, holds_it)
        yield planned["pages_erased"]
        yield sum(planned["commands"][kind] for kind in ("erase", "write", "read"))


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--programs", type=pathlib.Path, default=SOURCE / "build")
    parser.add_argument("--check", action="store_true")
    arguments = parser.parse_args()
    page = PAGE.read_text(encoding="utf-8")
    before, _, rest = page.partition(BEGIN)
    _, _, after = rest.partition(END)
    with tempfile.TemporaryDirectory() as folder:
        written = "".join(tables(arguments.programs.resolve(), pathlib.Path(folder)))
    new = before + BEGIN + "\n" + written + END + after
    if not arguments.check:
        PAGE.write_text(new, encoding="utf-8")
    elif page != new:
        sys.exit(f"{PAGE} is not what is counted: write it again with {__file__}")


if __name__ == "__main__":
    main()
