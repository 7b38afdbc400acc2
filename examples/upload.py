#!/usr/bin/env python3
"""Calls zserial from a program: upload.py PORT ARGUMENT...

Passes the arguments on, judges how the run ended, and prints one line. Copy the parts you need."""

import dataclasses
import os
import re
import signal
import subprocess
import sys

#: Options that take an image: which argument it is. zserial creates a missing image as an empty file.
IMAGES = {"-w": 1, "-W": 3, "-v": 1, "-wv": 1}
#: Longer than any upload takes. Without an answer, zserial gives up within a minute.
LIMIT_S = 900


@dataclasses.dataclass
class Outcome:
    ok: bool
    step: str  # the last message of zserial
    causes: list  # the errors that led to it, innermost first


def missing_images(arguments):
    """Yields the images that do not exist or are empty."""
    for place, word in enumerate(arguments):
        name = arguments[place + IMAGES[word]] if word in IMAGES else None
        if name and not (os.path.isfile(name) and os.path.getsize(name)):
            yield name


def lines(text):
    """Returns the lines as a terminal shows them in the end: progress overwrites itself with "\\r"."""
    shown = (line.rsplit("\r", 1)[-1].strip() for line in text.split("\n"))
    return [line for line in shown if line]


def causes(errors):
    """Returns the quoted errors at the end of standard error; other lines are progress."""
    found = []
    for line in errors.replace("\\n", "; ").split("\n"):
        report = re.fullmatch(r'"(.*)" *', line)
        found = found + [report[1]] if report else found if not line.strip() else []
    return found


def judge(status, out, errors):
    shown = lines(out)
    step = shown[-1] if shown else ""
    if status == -signal.SIGABRT:
        return Outcome(False, "the device table cannot be used",
                       causes(errors.split("terminate")[0]))
    if status < 0:
        return Outcome(False, f"ended by signal {-status}", [])
    if "could not open file" in errors and "for writing" in errors:
        return Outcome(False, "what was read could not be saved", causes(errors))
    return Outcome(status == 0, step, [] if status == 0 else causes(errors))


def upload(port, arguments):
    for name in missing_images(arguments):
        return Outcome(False, f"no image: {name}", [])
    try:
        run = subprocess.run(["zserial", "-s", port, *arguments], stdout=subprocess.PIPE,
                             stderr=subprocess.PIPE, timeout=LIMIT_S, check=False)
    except subprocess.TimeoutExpired:
        return Outcome(False, f"not finished within {LIMIT_S} s", [])
    return judge(run.returncode, run.stdout.decode(errors="replace"),
                 run.stderr.decode(errors="replace"))


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    outcome = upload(sys.argv[1], sys.argv[2:])
    print("ok" if outcome.ok else "FAILED", outcome.step, *outcome.causes, sep=": ")
    sys.exit(0 if outcome.ok else 1)


if __name__ == "__main__":
    main()
