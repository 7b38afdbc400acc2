#!/usr/bin/env python3
"""Calls zserial from a program: upload.py VERSION PORT ARGUMENT...

Has zserial-inspect check the arguments for a device with this bootloader version. If it finds
nothing wrong, passes them on, judges how the run ended, and prints one line. Copy the parts you
need."""

import dataclasses
import json
import re
import signal
import subprocess
import sys

#: Warnings that stop a run as errors do: a word that would be ignored, an option in place of an
#: argument, an image with records after its end record or without one.
SERIOUS = {"P002", "P016", "I012", "I013"}
#: A step that fails on an erased device, such as -v.
DEPENDS_ON_DEVICE = "P023"
#: Longer than any upload takes. Without an answer, zserial gives up within a minute.
LIMIT_S = 900


@dataclasses.dataclass
class Outcome:
    ok: bool
    step: str  # the last message of zserial
    causes: list  # the errors that led to it, innermost first


def objections(version, port, arguments):
    """Returns what is wrong with the command line, its images or the table. zserial would carry out
    most of it and report success."""
    plan = subprocess.run(["zserial-inspect", "plan", "--json", "--device", version, "--",
                           "-s", port, *arguments], stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, timeout=LIMIT_S, check=False)
    if plan.returncode not in (0, 1):
        return [plan.stderr.decode(errors="replace").strip()]
    return [problem["message"] for problem in json.loads(plan.stdout)["problems"]
            if problem["code"] != DEPENDS_ON_DEVICE
            and (problem["severity"] == "error" or problem["code"] in SERIOUS)]


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


def another_device(version, out):
    """Returns the version of the device that answered if it is not the expected one."""
    found = re.search(r"QV entry procedure: 0x([0-9a-f]{4})", out)
    return found[1] if found and int(found[1], 16) != int(version, 16) else None


def judge(version, status, out, errors):
    shown = lines(out)
    step = shown[-1] if shown else ""
    if status == -signal.SIGABRT:
        return Outcome(False, "the device table cannot be used",
                       causes(errors.split("terminate")[0]))
    if status < 0:
        return Outcome(False, f"ended by signal {-status}", [])
    if another := another_device(version, out):
        return Outcome(False, f"another device answered: 0x{another}", [])
    if "could not open file" in errors and "for writing" in errors:
        return Outcome(False, "what was read could not be saved", causes(errors))
    return Outcome(status == 0, step, [] if status == 0 else causes(errors))


def upload(version, port, arguments):
    if found := objections(version, port, arguments):
        return Outcome(False, "refused", found)
    run = subprocess.run(["zserial", "-s", port, *arguments], stdout=subprocess.PIPE,
                         stderr=subprocess.PIPE, timeout=LIMIT_S, check=False)
    return judge(version, run.returncode, run.stdout.decode(errors="replace"),
                 run.stderr.decode(errors="replace"))


def main():
    if len(sys.argv) < 4:
        sys.exit(__doc__)
    try:
        outcome = upload(sys.argv[1], sys.argv[2], sys.argv[3:])
    except subprocess.TimeoutExpired:
        outcome = Outcome(False, f"not finished within {LIMIT_S} s", [])
    except OSError as error:
        outcome = Outcome(False, f"{error.strerror}: {error.filename}", [])
    print("ok" if outcome.ok else "FAILED", outcome.step, *outcome.causes, sep=": ")
    sys.exit(0 if outcome.ok else 1)


if __name__ == "__main__":
    main()
