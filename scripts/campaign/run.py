"""One run: a simulated device with faults, and the tool at work on it."""

import dataclasses
import json
import os
import shlex
import signal
import subprocess
import time

from . import device, frames

LONGEST_RUN_S = 240


@dataclasses.dataclass
class Programs:
    zserial: str
    simulator: str


@dataclasses.dataclass
class Run:
    """What is to be done. The steps are argument lists of the tool, or commands of the shell."""

    key: str
    seed: int
    procedure: "Procedure"
    options: list  # of the simulator, faults among them
    image: dict
    before: device.Memory


@dataclasses.dataclass
class Outcome:
    """How it went, and everything by which that is judged."""

    status: int  # None where it had to be killed
    seconds: float
    out: str
    before: device.Memory
    after: device.Memory
    folder: object
    gave_up_waiting: bool  # for an answer that was given


def arguments_of(run, programs):
    """The simulator's command line, with the tool's within it."""
    steps = " && ".join(step.format(zserial=f"{shlex.quote(programs.zserial)} -s \"$0\"")
                        for step in run.procedure.steps)
    return [programs.simulator, "--table", "device.txt", "--device", device.VERSION,
            "--memory", "before.hex", "--save", "after.hex", "--trace", "trace.txt",
            "--seed", str(run.seed), *run.options, "--summary", "summary.json", "--json", "--exec", "--", "sh", "-c", steps, "{}"]


def prepare(run, folder):
    folder.mkdir(parents=True)
    (folder / "device.txt").write_text(device.TABLE, encoding="ascii")
    device.write_hex(folder / "image.hex", run.image)
    device.write_hex(folder / "before.hex", run.before.cells)


def status_of_command(summary):
    """The exit status of what the simulator ran; -1 if it has none."""
    if not summary.exists():
        return -1
    return json.loads(summary.read_text(encoding="utf-8"))["command"].get("status", -1)


def execute(run, programs, folder):
    """Leaves images, trace, frame log and output in the folder, which must not be there yet."""
    prepare(run, folder)
    command = arguments_of(run, programs)
    line = shlex.join(command) + "\n"
    (folder / "command.txt").write_text(line, encoding="utf-8")
    start = time.monotonic()
    with open(folder / "out.txt", "wb") as out, open(folder / "err.txt", "wb") as err:
        process = subprocess.Popen(command, cwd=folder, stdin=subprocess.DEVNULL, stdout=out,
                                   stderr=err, start_new_session=True)
        try:
            status = process.wait(LONGEST_RUN_S)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            process.wait()
            status = None
    seconds = time.monotonic() - start
    if status is not None:
        status = status_of_command(folder / "summary.json")
    saved = folder / "after.hex"
    after = device.Memory(device.read_hex(saved) if saved.exists() else {})
    text = (folder / "out.txt").read_text(encoding="utf-8", errors="replace")
    trace = folder / "trace.txt"
    gave_up = trace.exists() and frames.gave_up_waiting(folder / "frames.log", trace)
    return Outcome(status, seconds, text, run.before, after, folder, gave_up)
