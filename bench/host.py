"""The uploader's own cost, on a line that takes no time."""

import os

from goal import Goal
from measuring import benchmark, each, median, ratios, usages

LOST_RESPONSE_WAIT_NS = 300e6


def turn_goals(context):
    times = benchmark(
        context.build / "bench/transaction_benchmark",
        "",
        context.repetitions,
        context.min_seconds,
        context.bench,
    )
    mine, bare = (times[f"transaction_of_{who}"] for who in ("the_device_object", "a_bare_loop"))
    yield Goal(
        "host turn",
        "transaction of a row ÷ the same in a bare loop",
        ratios("real_ns", mine, bare),
        1.5,
        beside=" and ".join(f"{median('real_ns', which) / 1e3:.1f} µs" for which in (mine, bare)),
    )
    for operation in ("read", "write"):
        mine, bare = (
            times[f"{operation}_of_{who}"] for who in ("the_device_object", "a_bare_loop")
        )
        yield Goal(
            "host turn",
            f"CPU time of a {operation} of 128 KiB ÷ the same in a bare loop",
            ratios("cpu_ns", mine, bare),
            2,
            beside=" and ".join(f"{median('cpu_ns', which) / 1e6:.1f} ms" for which in (mine, bare)),
        )
    lost = times["transaction_with_a_lost_response"]
    yield Goal(
        "lost response",
        "time of a transaction that loses one ÷ the 300 ms of the wait",
        [real_ns / LOST_RESPONSE_WAIT_NS for real_ns in each("real_ns", lost)],
        1.05,
        beside=f"{median('real_ns', lost) / 1e6:.1f} ms",
    )


def start_goals(context):
    times = usages(
        {
            "refused": [context.build / "zserial", "-s", "port", "-s", "port"],
            "empty": [context.build / "bench/empty_program"],
        },
        5 * context.rounds,
        expected_status={"refused": 1},
    )
    yield Goal(
        "start",
        "a refused command line ÷ an empty Qt Core program",
        ratios("seconds", times["refused"], times["empty"]),
        2,
        beside=" and ".join(
            f"{median('seconds', times[which]) * 1e3:.1f} ms" for which in ("refused", "empty")
        ),
    )


def waiting_goals(context):
    """A run that looks for a device and finds none only waits."""
    device_end, port = os.openpty()
    command = [context.build / "zserial", "-s", os.ttyname(port)]
    runs = usages({"entry": command}, context.rounds, expected_status={"entry": 1})["entry"]
    os.close(port)
    os.close(device_end)
    yield Goal(
        "silent device",
        "processor time of a run that nobody answers ÷ its time",
        [run.processor_seconds / run.seconds for run in runs],
        0.05,
        beside=f"{median('processor_seconds', runs) * 1e3:.0f} ms"
        f" and {median('seconds', runs):.1f} s",
    )


def log_goals(context):
    if context.short:
        return  # the goal is a time, which a busy machine need not meet
    times = benchmark(
        context.build / "bench/log_benchmark", "", context.repetitions, context.min_seconds
    )
    logged, written = times["log_a_frame"], times["write_the_text_of_a_frame"]
    yield Goal(
        "frame log",
        "a logged frame of 265 bytes beyond the write of its text",
        [(a - b) / 1e3 for a, b in zip(each("real_ns", logged), each("real_ns", written))],
        5,
        unit=" µs",
        beside=" and ".join(
            f"{median('real_ns', which) / 1e3:.1f} µs" for which in (logged, written)
        ),
    )


def goals(context):
    yield from turn_goals(context)
    yield from start_goals(context)
    yield from waiting_goals(context)
    yield from log_goals(context)
