"""How close the time that is planned comes to that of a run on a paced line."""

import json
import os
import signal
import subprocess

from goal import Goal
from measuring import usage_of

RUNS = (("0201", 57600, "write"), ("0202", 115200, "write"), ("0203", 460800, "write"),
        ("0203", 460800, "read"), ("0203", 460800, "write and verify"))


def words_of(context, operation):
    return {
        "read": ["-r", context.scratch / "read.hex"],
        "write": ["-w", context.image],
        "write and verify": ["-wv", context.image],
    }[operation]


def planned_seconds(context, version, words):
    output = subprocess.run(
        [
            context.build / "zserial-inspect", "plan", "--json",
            *("--table", context.bench / "device.txt", "--device", version),
            *("--", "-s", "port", *words),
        ],
        check=True,
        stdout=subprocess.PIPE,
    ).stdout
    return json.loads(output)["seconds"]["total"]


def run_seconds(context, version, words):
    """Of the uploader, from its start to its end, with a device that is starting."""
    simulator = subprocess.Popen(
        [
            context.build / "zserial-sim", "--pace",
            *("--table", context.bench / "device.txt", "--device", version),
        ],
        stdout=subprocess.PIPE,
        text=True,
    )
    port = simulator.stdout.readline().strip()
    folder = os.getcwd()
    os.chdir(context.bench)
    try:
        return usage_of([context.build / "zserial", "-s", port, *words]).seconds
    finally:
        os.chdir(folder)
        simulator.send_signal(signal.SIGINT)
        simulator.communicate()


def goals(context):
    for version, baud, operation in RUNS[2:3] if context.short else RUNS:
        words = words_of(context, operation)
        planned = planned_seconds(context, version, words)
        rounds = 1 if context.short or baud == 57600 else context.slow_rounds
        runs = [run_seconds(context, version, words) for _ in range(rounds)]
        yield Goal(
            "plan",
            f"planned time of a {operation} beside a run, {baud} baud",
            [abs(planned / run - 1) for run in runs],
            0.02,
            beside=f"{planned:.2f} s and {sorted(runs)[len(runs) // 2]:.2f} s",
        )
