#!/usr/bin/env python3
"""Compares the lines that no test reaches with a list that gives a reason for each.

The list has blocks, separated by blank lines:

    # why no test reaches these
    folder/File.cpp: the text of a line
    folder/File.cpp: the text of another line

A line is known by its text, so that it may move within its file. A text that several such lines of
a file share is listed once for each of them.
"""

import argparse
import json
import sys
from collections import Counter
from pathlib import Path
from typing import NamedTuple

SOURCE = Path(__file__).resolve().parents[1]
LEAST_PERCENT = 98


class Line(NamedTuple):
    file: str
    number: int
    text: str
    reached: bool

    @property
    def name(self):
        return f"{self.file}: {self.text}"


def read_lines(report, source):
    """Every line with code, in the order of files and numbers. `report` is what gcovr writes."""
    lines = []
    for file in json.loads(report.read_text(encoding="utf-8"))["files"]:
        texts = (source / file["file"]).read_text(encoding="utf-8").splitlines()
        lines += [Line(file["file"], line["line_number"], texts[line["line_number"] - 1].strip(),
                       line["count"] > 0)
                  for line in file["lines"] if not line.get("gcovr/noncode")]
    return sorted(lines)


def read_reasons(path):
    """How often each name is listed, and the names that stand below no reason."""
    listed, bare = Counter(), []
    has_reason = False
    for line in path.read_text(encoding="utf-8").splitlines():
        if line.startswith("#"):
            has_reason = True
        elif not line.strip():
            has_reason = False
        else:
            listed[line.strip()] += 1
            if not has_reason:
                bare.append(line.strip())
    return listed, bare


def table(lines):
    total, reached = Counter(), Counter()
    for line in lines:
        for row in (line.file.split("/")[0], "all"):
            total[row] += 1
            reached[row] += line.reached
    return [f"{row:8} {reached[row]:6} of {total[row]:6} lines  "
            f"{100 * reached[row] / total[row]:6.2f} %"
            for row in [*sorted(set(total) - {"all"}), "all"]]


def problems(lines, listed, bare):
    missing = [line for line in lines if not line.reached]
    names = Counter(line.name for line in missing)
    unexplained = names - listed
    found = [f"{line.file}:{line.number}: no test, and no reason listed: {line.text}"
             for line in missing if line.name in unexplained]
    found += [f"listed, but reached or gone: {name}" for name in sorted(listed - names)]
    found += [f"listed without a reason: {name}" for name in bare]
    if 100 * (len(lines) - len(missing)) < LEAST_PERCENT * len(lines):
        found.append(f"less than {LEAST_PERCENT} %")
    return found


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("report", type=Path, help="what gcovr writes with --json")
    parser.add_argument("reasons", type=Path, help="the list")
    options = parser.parse_args()
    lines = read_lines(options.report, SOURCE)
    found = problems(lines, *read_reasons(options.reasons))
    print("\n".join([*table(lines), *found]))
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
