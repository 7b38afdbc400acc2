"""Many devices programmed at once, and what the program that runs the uploads costs itself."""

import fcntl
import json
import os
import pty
import signal
import statistics
import struct
import subprocess
import termios
import threading
from dataclasses import dataclass

from goal import Goal

BAUD, VERSION, DEVICES = 115200, "0202", 32
SHORT_BAUD, SHORT_VERSION, SHORT_DEVICES = 460800, "0203", 4
TICKS_PER_S = os.sysconf("SC_CLK_TCK")


@dataclass
class Round:
    """What one gang took, all times in seconds."""

    slowest: float  # of the uploads
    own: float  # processor time of the gang itself
    tools: float  # and of all its uploads
    simulators: float
    lateness_us: float  # of the simulators' last bytes, the mean of the devices


class Device:
    """A simulated device on a paced line."""

    def __init__(self, context, version):
        self.process = subprocess.Popen(
            [
                context.build / "zserial-sim",
                *("--table", context.bench / "device.txt", "--device", version),
                *("--entry", "version", "--pace", "--json", "--check", context.image),
            ],
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
        )
        self.port = self.process.stdout.readline().decode().strip()

    def end(self):
        """Its processor time and how late its last bytes were; the device must hold the image."""
        self.process.send_signal(signal.SIGTERM)
        summary = json.loads(self.process.stdout.read().splitlines()[-1])
        _, status, usage = os.wait4(self.process.pid, 0)
        self.process.returncode = os.waitstatus_to_exitcode(status)
        if self.process.returncode != 0:
            raise RuntimeError(f"the device on {self.port} does not hold the image")
        return usage.ru_utime + usage.ru_stime, summary["pace"]["mean_lateness_us"]


def swallow(terminal):
    """Reads what is drawn until nobody has the terminal open any more."""
    try:
        while os.read(terminal, 65536):
            pass
    except OSError:
        pass


def run_in_terminal(command, folder):
    """Runs a command with the live table; returns its own processor time and that of its children."""
    screen, terminal = pty.openpty()
    reader = threading.Thread(target=swallow, args=(screen,))
    fcntl.ioctl(terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 40, 120, 0, 0))
    environment = dict(os.environ, TERM="xterm")
    with subprocess.Popen(
        command, cwd=folder, env=environment, stdin=subprocess.DEVNULL, stdout=terminal
    ) as process:
        os.close(terminal)
        reader.start()
        # Before it is waited for, the times of the process and of its children are still apart.
        os.waitid(os.P_PID, process.pid, os.WEXITED | os.WNOWAIT)
        with open(f"/proc/{process.pid}/stat", encoding="utf-8") as stat:
            fields = stat.read().rpartition(")")[2].split()
        ticks = [int(field) for field in fields[11:15]]
    reader.join()
    os.close(screen)
    if process.returncode != 0:
        raise RuntimeError(f"zserial-gang ended with status {process.returncode}")
    return sum(ticks[:2]) / TICKS_PER_S, sum(ticks[2:]) / TICKS_PER_S


def measure(context, version, count):
    record = context.scratch / "record.jsonl"
    record.unlink(missing_ok=True)
    devices = [Device(context, version) for _ in range(count)]
    own, tools = run_in_terminal(
        [
            context.build / "zserial-gang",
            *("--table", context.bench / "device.txt", "--record", record),
            *(device.port for device in devices),
            *("--", "-B", version, "-w", context.image),
        ],
        context.scratch,
    )
    ends = [device.end() for device in devices]
    lines = record.read_text(encoding="utf-8").splitlines()
    return Round(
        max(json.loads(line)["seconds"] for line in lines),
        own,
        tools,
        sum(seconds for seconds, _ in ends),
        statistics.mean(lateness for _, lateness in ends),
    )


def share(part, attribute):
    """Of one core, in percent, in each round."""
    return [100 * getattr(one, attribute) / one.slowest for one in part]


def goals(context):
    baud, version, count = (
        (SHORT_BAUD, SHORT_VERSION, SHORT_DEVICES) if context.short else (BAUD, VERSION, DEVICES)
    )
    alone, together = [], []
    for _ in range(context.slow_rounds if not context.short else 1):
        alone.append(measure(context, version, 1))
        together.append(measure(context, version, count))
    what = f"{count} devices, {baud} baud"
    late = statistics.median(one.lateness_us for one in together)
    yield Goal(
        "gang",
        f"{what}: slowest ÷ one alone",
        [many.slowest / one.slowest for many, one in zip(together, alone)],
        1.1,
        beside=f"{statistics.median(one.slowest for one in together):.2f} s and "
        f"{statistics.median(one.slowest for one in alone):.2f} s; simulators' last bytes late by "
        f"{late:.0f} µs in the mean",
    )
    yield Goal(
        "gang", f"{what}: its own processor time", share(together, "own"), 2, unit=" %",
        beside="of one core, live table included",
    )
    for name, attribute in (("uploads", "tools"), ("simulators", "simulators")):
        yield Goal.remark(
            "gang", f"{what}: processor time of the {name}, % of a core", share(together, attribute),
            "",
        )
