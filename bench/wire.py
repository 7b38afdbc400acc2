"""How well the uploader uses a paced line."""

import json
import statistics
import subprocess

from goal import Goal

BAUDS = {57600: ("0201", 0.995), 115200: ("0202", 0.990), 460800: ("0203", 0.970)}
OPERATIONS = ("read", "write", "verify", "write and verify")


def uploader(context, version, operation):
    words = {
        "read": ["-r", context.scratch / "read.hex"],
        "write": ["-w", context.image],
        "verify": ["-v", context.image],
        "write and verify": ["-wv", context.image],
    }[operation]
    return [context.build / "zserial", "-s", "{}", "-B", version, *words]


def pace_of(context, version, operation, command):
    """Runs a command on a paced device; returns how long its line was busy, of what time, and how
    late the simulator was."""
    image = ["--check" if operation.startswith("write") else "--memory", context.image]
    # Into a file: a process reading a pipe would wake for every progress line and disturb the run.
    with open(context.scratch / "output", "w+b") as output:
        subprocess.run(
            [
                context.build / "zserial-sim",
                *("--table", context.bench / "device.txt", "--device", version),
                *("--entry", "version", "--pace", "--json", *image, "--exec", "--"),
                *command,
            ],
            cwd=context.bench,
            check=True,
            stdout=output,
            stderr=subprocess.DEVNULL,
        )
        output.seek(0)
        return json.loads(output.read().splitlines()[-1])["pace"]


def measure(context, version, operation, command, rounds):
    paces = [pace_of(context, version, operation, command) for _ in range(rounds)]
    uses = [pace["busy_us"] / pace["span_us"] for pace in paces]
    late = statistics.median(pace["mean_lateness_us"] for pace in paces)
    most = max(pace["max_lateness_us"] for pace in paces)
    return uses, f"simulator's last bytes late by {late:.0f} µs in the mean, {most} µs at most"


def goals(context):
    for baud, (version, bound) in BAUDS.items():
        if context.short and baud != max(BAUDS):
            continue
        rounds = context.rounds if baud == max(BAUDS) else context.slow_rounds
        for operation in OPERATIONS[: 2 if context.short else None]:
            command = uploader(context, version, operation)
            uses, late = measure(context, version, operation, command, rounds)
            yield Goal(
                "wire",
                f"{operation}, {baud} baud",
                uses,
                bound,
                at_least=True,
                beside=late,
            )
        for operation in ("read", "write"):
            bare = [context.build / "bench/bare_host", "{}", str(baud), operation]
            uses, late = measure(context, version, "read", bare, rounds)
            yield Goal.remark("wire", f"{operation} by a bare loop, {baud} baud", uses, late)
