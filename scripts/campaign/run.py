"""One run: a simulated device with faults, and zserial."""

import dataclasses
import json
import os
import shlex
import signal
import subprocess
import time
import typing

from . import device, frames, hexfile
from .memory import Image, Memory

LONGEST_RUN_S = 240
ALL_IS_WELL, COMMAND_FAILED = 0, 3  # of the simulator's statuses


@dataclasses.dataclass
class Programs:
    zserial: str
    simulator: str
    gang: str


@dataclasses.dataclass
class Run:
    """What a run does, and with which device and image."""

    key: str
    seed: int
    procedure: "Procedure"
    options: list  # of the simulator, faults among them
    image: Image
    before: Memory

    @property
    def device(self):
        return self.before.device


@dataclasses.dataclass
class Outcome:
    """The outcome of a run, and everything needed to judge it."""

    status: typing.Optional[int]  # of the procedure; None if it is not reliable
    seconds: float
    out: str
    before: Memory
    after: Memory
    folder: object
    summary: dict  # the simulator's, empty if it had to be killed

    @property
    def faults(self):
        """The number of faults of each kind that occurred."""
        return self.summary.get("faults", {})

    @property
    def repeated(self):
        """Commands that were repeated because there was no valid answer in time."""
        return self.summary.get("repeated", 0)

    @property
    def late_rows(self):
        """Rows written, each of which a slow device acknowledges late."""
        return self.summary.get("flash", {}).get("rows_programmed", 0)

    def gave_up_waiting(self):
        """Returns whether zserial gave up waiting for an answer that was sent."""
        trace = self.folder / "trace.txt"
        return trace.exists() and frames.gave_up_waiting(self.folder / "frames.log", trace)


def arguments_of(run, programs):
    """Returns the command line of the simulator, which contains that of the procedure."""
    zserial = shlex.quote(programs.zserial)
    gang = f"{shlex.quote(programs.gang)} --zserial {zserial} \"$0\""
    steps = " && ".join(step.format(zserial=f"{zserial} -s \"$0\"", gang=gang)
                        for step in run.procedure.steps)
    return [programs.simulator, "--table", "device.txt", "--device", device.VERSION,
            "--memory", "before.hex", "--save", "after.hex", "--trace", "trace.txt",
            "--summary", "summary.json", "--json", "--seed", str(run.seed), *run.options,
            "--exec", "--", "sh", "-c", steps, "{}"]


def prepare(run, folder):
    folder.mkdir(parents=True)
    (folder / "device.txt").write_text(run.device.table, encoding="ascii")
    hexfile.write(folder / "image.hex", run.image.stretches)
    hexfile.write(folder / "before.hex", run.before.image().stretches)


def execute(run, programs, folder):
    """Runs zserial, and leaves images, trace, frame log and output in a folder, which must not exist."""
    prepare(run, folder)
    command = arguments_of(run, programs)
    line = shlex.join(command) + "\n"
    (folder / "command.txt").write_text(line, encoding="utf-8")
    start = time.monotonic()
    status = _run(command, folder)
    seconds = time.monotonic() - start
    summary = _summary(folder / "summary.json") if status in (ALL_IS_WELL, COMMAND_FAILED) else {}
    saved = folder / "after.hex"
    after = Memory(run.device, Image(hexfile.read(saved) if saved.exists() else []))
    out = (folder / "out.txt").read_text(encoding="utf-8", errors="replace")
    return Outcome(summary.get("command", {}).get("status"), seconds, out, run.before, after, folder,
                   summary)


def _run(command, folder):
    """Returns the status of the simulator, or None if it had to be killed."""
    with open(folder / "out.txt", "wb") as out, open(folder / "err.txt", "wb") as err:
        process = subprocess.Popen(command, cwd=folder, stdin=subprocess.DEVNULL, stdout=out,
                                   stderr=err, start_new_session=True)
        try:
            return process.wait(LONGEST_RUN_S)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            process.wait()
            return None


def _summary(path):
    return json.loads(path.read_text(encoding="utf-8")) if path.exists() else {}
