"""Loading and saving of images, compared with other programs and as the images grow."""

import filecmp
import math
import subprocess

from goal import Goal
from measuring import benchmark, each, median, ratios, usages

MIB = 1024 * 1024
ISLAND_BYTES = 200

# Each image: the arguments of hex_program that make it, and its number of bytes.
FULL_IMAGES = {
    "dense 16 MiB": (["dense", str(16 * MIB)], 16 * MIB),
    "dense 64 MiB": (["dense", str(64 * MIB)], 64 * MIB),
    "20,000 islands": (["islands", "20000"], 20000 * ISLAND_BYTES),
}
SHORT_IMAGES = {"dense 4 MiB": (["dense", str(4 * MIB)], 4 * MIB)}


def commands_for(context, image, result):
    programs = context.build / "bench"
    commands = {
        "minimal": [programs / "minimal_hex", image],
        "load": [programs / "hex_program", "load", image],
        "convert": [programs / "hex_program", "convert", image, result],
        "inspect": [context.build / "zserial-inspect", "image", image],
        "objcopy": ["objcopy", "-I", "ihex", "-O", "ihex", image, result],
    }
    if not context.short:
        commands["srec_cat"] = ["srec_cat", image, "-intel", "-o", result, "-intel"]
    return commands


def hex_goals(context):
    for name, (words, size) in (SHORT_IMAGES if context.short else FULL_IMAGES).items():
        image, result = context.scratch / "image.hex", context.scratch / "result.hex"
        subprocess.run([context.build / "bench/hex_program", *words, image], check=True)
        times = usages(commands_for(context, image, result), context.rounds)
        require_same_bytes(context, image, result)
        yield from ratio_goals(context, name, times)
        most = 3.5 * size + 10 * MIB
        for job in ("load", "convert", "inspect"):
            yield Goal(
                "HEX",
                f"{name}, peak memory of {job} ÷ (3.5 × image + 10 MiB)",
                [peak_kib * 1024 / most for peak_kib in each("peak_kib", times[job])],
                1,
                beside=f"{max(each('peak_kib', times[job])) / 1024:.0f} MiB",
                figure_of=max,
            )


def require_same_bytes(context, image, result):
    """Checks that the measured programs did the work that they were measured for."""
    program = context.build / "bench/hex_program"
    subprocess.run([program, "convert", image, result], check=True)
    if not filecmp.cmp(image, result, shallow=False):
        raise RuntimeError(f"{image} is not the same after it was loaded and saved")
    sizes = [
        subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout
        for command in ([program, "load", image], [context.build / "bench/minimal_hex", image])
    ]
    if sizes[0] != sizes[1]:
        raise RuntimeError(f"{image} holds {sizes[0]} or {sizes[1]} bytes")


def ratio_goals(context, name, times):
    pairs = [("load", "minimal", 2), ("convert", "objcopy", 0.8), ("convert", "srec_cat", 0.25)]
    titles = {"minimal": "a minimal C parser"}
    if name.startswith("dense"):
        pairs.append(("inspect", "load", 2))
    for mine, other, bound in pairs:
        if other in times:
            yield Goal(
                "HEX",
                f"{name}, {mine} ÷ {titles.get(other, other)}",
                ratios("seconds", times[mine], times[other]),
                bound,
                beside=" and ".join(
                    f"{median('seconds', times[which]) * 1e3:.0f} ms" for which in (mine, other)
                ),
            )


def growth_goals(context):
    """From one size to the next, time grows like a power of the size: the exponent is 1 for linear
    growth, about 1.1 for n·log n and 2 for quadratic growth. Only the two largest sizes count,
    because small images benefit from the processor's caches."""
    sizes = (1, 4) if context.short else (1, 4, 16, 64)
    counts = (1000, 10000) if context.short else (1000, 10000, 100000)
    times = benchmark(
        context.build / "bench/memory_benchmark",
        "/(" + "|".join(str(n) for n in [*(MIB * size for size in sizes), *counts]) + ")$",
        context.repetitions,
        context.min_seconds,
    )
    for subject, numbers, unit in (
        ("dense", [MIB * size for size in sizes], "bytes"),
        ("islands", counts, "islands"),
    ):
        for job in ("load", "assemble_rows", "save"):
            yield growth_goal(times, f"{job}_of_{subject}", numbers, unit)
    yield growth_goal(times, "load_of_descending_islands", counts, "islands")
    for count in counts:
        assembly, load = (times[f"{job}_of_islands/{count}"] for job in ("assemble_rows", "load"))
        yield Goal(
            "growth",
            f"{count:,} islands, row assembly ÷ load",
            ratios("cpu_ns", assembly, load),
            2,
        )


def growth_goal(times, benchmark_name, numbers, unit):
    series = [times[f"{benchmark_name}/{number}"] for number in numbers]
    step = math.log(numbers[-1] / numbers[-2])
    return Goal(
        "growth",
        f"{benchmark_name.replace('_', ' ')}, up to {numbers[-1]:,} {unit}: last exponent",
        [math.log(ratio) / step for ratio in ratios("cpu_ns", series[-1], series[-2])],
        1.2,
        beside=", ".join(
            f"{median('cpu_ns', timings) / number:.3g}" for timings, number in zip(series, numbers)
        )
        + f" ns per {unit[:-1]}",
    )


def goals(context):
    yield from hex_goals(context)
    yield from growth_goals(context)
