"""What the uploader itself costs when the line costs nothing."""

import os

from goal import Goal
from measuring import benchmark, medians

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
        mine.real_ns / bare.real_ns,
        context.at_most(1.5),
        beside=f"{mine.real_ns / 1e3:.1f} µs and {bare.real_ns / 1e3:.1f} µs",
    )
    for operation in ("read", "write"):
        mine, bare = (
            times[f"{operation}_of_{who}"] for who in ("the_device_object", "a_bare_loop")
        )
        yield Goal(
            "host turn",
            f"CPU time of a {operation} of 128 KiB ÷ the same in a bare loop",
            mine.cpu_ns / bare.cpu_ns,
            context.at_most(2),
            beside=f"{mine.cpu_ns / 1e6:.1f} ms and {bare.cpu_ns / 1e6:.1f} ms",
        )
    lost = times["transaction_with_a_lost_response"]
    yield Goal(
        "lost response",
        "time of a transaction that loses one ÷ the 300 ms of the wait",
        lost.real_ns / LOST_RESPONSE_WAIT_NS,
        context.at_most(1.05),
        beside=f"{lost.real_ns / 1e6:.1f} ms",
    )


def start_goals(context):
    times = medians(
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
        times["refused"].seconds / times["empty"].seconds,
        context.at_most(2),
        beside=f"{times['refused'].seconds * 1e3:.1f} ms"
        f" and {times['empty'].seconds * 1e3:.1f} ms",
    )


def waiting_goals(context):
    """A run that looks for a device and finds none does nothing but wait."""
    device_end, port = os.openpty()
    command = [context.build / "zserial", "-s", os.ttyname(port)]
    usage = medians({"entry": command}, context.rounds, expected_status={"entry": 1})["entry"]
    os.close(port)
    os.close(device_end)
    yield Goal(
        "silent device",
        "processor time of a run that nobody answers ÷ its time",
        usage.processor_seconds / usage.seconds,
        context.at_most(0.05),
        beside=f"{usage.processor_seconds * 1e3:.0f} ms and {usage.seconds:.1f} s",
    )


def log_goals(context):
    if context.short:
        return  # the goal is a time, which a busy machine is not held to
    times = benchmark(
        context.build / "bench/log_benchmark", "", context.repetitions, context.min_seconds
    )
    logged, written = times["log_a_frame"], times["write_the_text_of_a_frame"]
    yield Goal(
        "frame log",
        "a logged frame of 265 bytes beyond the write of its text",
        (logged.real_ns - written.real_ns) / 1e3,
        context.at_most(5),
        unit=" µs",
        beside=f"{logged.real_ns / 1e3:.1f} µs and {written.real_ns / 1e3:.1f} µs",
    )


def goals(context):
    yield from turn_goals(context)
    yield from start_goals(context)
    yield from waiting_goals(context)
    yield from log_goals(context)
