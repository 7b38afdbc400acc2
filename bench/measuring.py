"""Runs programs and reports the time and memory that they needed."""

import json
import os
import statistics
import subprocess
import time
from dataclasses import dataclass


@dataclass
class Usage:
    seconds: float  # from start to end
    peak_kib: int  # of memory; this interpreter's own 16 MiB if the program needs less
    processor_seconds: float


def usage_of(command, expected_status=0):
    """Runs a command to its end and discards its output."""
    nothing = os.open(os.devnull, os.O_RDWR)
    redirections = [(os.POSIX_SPAWN_DUP2, nothing, number) for number in (0, 1, 2)]
    begin = time.perf_counter()
    process = os.posix_spawnp(command[0], command, os.environ, file_actions=redirections)
    _, status, resources = os.wait4(process, 0)
    end = time.perf_counter()
    os.close(nothing)
    if os.waitstatus_to_exitcode(status) != expected_status:
        words = " ".join(str(word) for word in command)
        raise RuntimeError(f"ended with status {os.waitstatus_to_exitcode(status)}: {words}")
    processor_seconds = resources.ru_utime + resources.ru_stime
    return Usage(end - begin, resources.ru_maxrss, processor_seconds)


def usages(commands, rounds, expected_status=None):
    """Runs each of the named commands once a round, so that a busy moment affects all alike. Returns
    usages by name, one per round."""
    found = {name: [] for name in commands}
    for _ in range(rounds):
        for name, command in commands.items():
            found[name].append(usage_of(command, (expected_status or {}).get(name, 0)))
    return found


@dataclass
class Timing:
    real_ns: float
    cpu_ns: float


UNIT_NS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}


def benchmark(program, pattern, rounds, min_seconds, folder="."):
    """A benchmark program's timings by name, one per round."""
    output = subprocess.run(
        [
            program,
            f"--benchmark_filter={pattern}",
            f"--benchmark_repetitions={rounds}",
            f"--benchmark_min_time={min_seconds}",
            "--benchmark_enable_random_interleaving=true",
            "--benchmark_format=json",
        ],
        cwd=folder,
        check=True,
        stdout=subprocess.PIPE,
        stderr=subprocess.DEVNULL,
    ).stdout
    timings = {}
    for entry in json.loads(output)["benchmarks"]:
        if entry.get("error_occurred"):
            raise RuntimeError(f"{entry['name']}: {entry['error_message']}")
        if entry["run_type"] != "iteration":
            continue
        name = entry["run_name"].split("/real_time")[0].split("/iterations")[0]
        unit = UNIT_NS[entry["time_unit"]]
        timing = Timing(entry["real_time"] * unit, entry["cpu_time"] * unit)
        timings.setdefault(name, []).append(timing)
    return timings


def each(attribute, measured):
    """That attribute of the measurements of all rounds."""
    return [getattr(one, attribute) for one in measured]


def median(attribute, measured):
    return statistics.median(each(attribute, measured))


def ratios(attribute, mine, other):
    """The ratio of one to the other, round by round."""
    return [a / b for a, b in zip(each(attribute, mine), each(attribute, other))]
