#!/usr/bin/env python3
"""Runs zserial against simulated devices on lines that damage, lose, delay and double what they
carry, and compares what it claims with what the devices hold. scripts/reliability.sh builds the
programs and calls this."""

import argparse
import concurrent.futures
import pathlib
import shutil
import statistics
import sys
import time

sys.dont_write_bytecode = True
from campaign import load, run as runs, verdict
from campaign.cases import CASES
from campaign.sections import SECTIONS
from campaign.verdict import Cause, End

SOURCE = pathlib.Path(__file__).resolve().parent.parent
ALL = [*SECTIONS, "cases", "load"]
MARKER = ".files-of-reliability"  # in a folder whose content may be removed


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--programs", type=pathlib.Path, default=SOURCE / "build/release",
                        help="the folder of zserial and zserial-sim")
    parser.add_argument("--folder", type=pathlib.Path, default=SOURCE / "build/reliability",
                        help="where runs leave their files; emptied at the start if an earlier"
                        " campaign left it, refused if it holds anything else")
    parser.add_argument("--runs", type=int, default=50, help="of every row of the tables")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--jobs", type=int, default=24, help="runs at once")
    parser.add_argument("--devices", type=int, default=32, help="programmed at once by \"load\"")
    parser.add_argument("--section", choices=ALL, action="append", help="only this one; repeatable")
    parser.add_argument("--only", metavar="RUN", action="append",
                        help="a single run by its name, with all its files kept; repeatable")
    parser.add_argument("--smoke", action="store_true",
                        help="a few runs of each section; a case for which the machine is too slow is not judged")
    return parser.parse_args()


class Campaign:
    def __init__(self, arguments):
        self.arguments = arguments
        build = arguments.programs.resolve()
        self.programs = runs.Programs(str(build / "zserial"), str(build / "zserial-sim"))
        self.folder = arguments.folder.resolve()
        self.faults = []  # of the tool or of the campaign, as against those of the line
        self.pool = concurrent.futures.ThreadPoolExecutor(arguments.jobs)

    def carry_out(self, run):
        """Ends with (run, outcome, end, cause). The files of what went right are removed."""
        folder = self.folder / run.key
        outcome = runs.execute(run, self.programs, folder)
        end = verdict.end_of(run, outcome)
        cause = verdict.cause_of(run, outcome) if end is End.DIFFERENT else None
        if end in (End.RIGHT, End.ERROR) and not self.arguments.only:
            shutil.rmtree(folder)
        if end is End.BROKEN or cause is Cause.NONE:
            self.faults.append(f"{run.key}: {end.value}, {cause.value if cause else 'no cause'}")
        return run, outcome, end, cause

    def start(self, name):
        """Lets the runs of a section begin as soon as there is room for them."""
        rows = SECTIONS[name].rows(self.arguments.smoke)
        count = 1 if self.arguments.smoke else self.arguments.runs
        return [(row, [self.pool.submit(self.carry_out, row.run(self.arguments.seed, number))
                       for number in range(count * row.times)]) for row in rows]

    def section(self, name, started):
        title = SECTIONS[name].title
        print(f"\n### {title}\n\n| Line | Procedure | Runs | Right | Error told | Different | Median"
              " | Longest |\n|---|---|---|---|---|---|---|---|")
        strays = []
        for row, futures in started:
            results = [future.result() for future in futures]
            print(f"| {row.circumstances} | {row.procedure.name} | {line_of(results)} |", flush=True)
            strays += [result for result in results if result[2] in (End.DIFFERENT, End.BROKEN)]
        tell(strays)

    def cases(self):
        cases = [case for case in CASES if not (self.arguments.smoke and case.needs_quick_machine)]
        results = list(self.pool.map(lambda case: self.carry_out(case.run(self.arguments.seed)),
                                     cases))
        print("\n### Cases\n\n| Case | What happens | Procedure | Simulator, without `--fault` | End |\n"
              "|---|---|---|---|---|")
        judged = [self.judge(case, *result[1:]) for case, result in zip(cases, results)]
        if not any(judged):
            self.faults.append("cases: none could be judged")

    def judge(self, case, outcome, end, cause):
        """Whether the case could be judged: a late answer leaves its faults to other commands. Where
        answers are late on purpose it always can, given a machine that is quick enough."""
        judged = case.needs_quick_machine or not outcome.gave_up_waiting
        told = f"{end.value}{f': {cause.value}' if cause else ''}" if judged \
            else "not judged: the machine was too slow"
        options = " ".join(word for word in case.options if word != "--fault")
        print(f"| {case.name} | {case.what} | {case.procedure.name} | `{options}` | {told} |")
        if judged and (end, cause) != (case.end, case.cause):
            self.faults.append(f"cases/{case.name}: {end.value} instead of {case.end.value}")
        return judged

    def load(self):
        table = (SOURCE / "examples/device.txt").read_text(encoding="utf-8")
        print("\n### Load\n\n| Line | Devices | Right | All done after | CPU of zserial: median, most"
              " | CPU of zserial-sim |\n|---|---|---|---|---|---|")
        for name, options in {"as fast as it goes": [], "115200 baud": ["--pace"]}.items():
            if self.arguments.smoke and options:
                continue
            folder = self.folder / "load" / name.replace(" ", "_")
            line, right = load.measure(self.programs, folder, table, self.arguments.seed,
                                       4 if self.arguments.smoke else self.arguments.devices,
                                       options)
            print(f"| {name} | {line} |", flush=True)
            if not right:
                self.faults.append(f"load, {name}: not all devices hold their image")

    def only(self, key):
        section, *words = key.split("/")
        if section == "cases":
            run = next(case for case in CASES if case.name == words[0]).run(self.arguments.seed)
        else:
            row = next(row for row in SECTIONS[section].rows()
                       if row.run(0, 0).key == "/".join([section, *words[:2], "0"]))
            run = row.run(self.arguments.seed, int(words[2]))
        _, outcome, end, cause = self.carry_out(run)
        print(f"{key}: {end.value}{f', {cause.value}' if cause else ''}; files in {outcome.folder}")


def line_of(results):
    ends = [result[2] for result in results]
    seconds = [result[1].seconds for result in results]
    different = str(ends.count(End.DIFFERENT))
    causes = [result[3] for result in results if result[3]]
    if causes:
        different += ": " + ", ".join(f"{causes.count(cause)} {cause.value}"
                                      for cause in Cause if cause in causes)
    if End.BROKEN in ends:
        different += f"; {ends.count(End.BROKEN)} BROKEN"
    return (f"{len(ends)} | {ends.count(End.RIGHT)} | {ends.count(End.ERROR)} | {different} |"
            f" {statistics.median(seconds):.1f} s | {max(seconds):.1f} s")


def tell(strays):
    """Where to look at what ended neither right nor with an error."""
    if strays:
        print()
    for run, outcome, end, cause in strays:
        print(f"- {run.key}: {end.value}{f', {cause.value}' if cause else ''};"
              f" {verdict.damage_of(run, outcome)}")


def empty(folder):
    """Leaves an empty folder that is marked as the campaign's; ends the program at one that holds
    files of somebody else. The mark stays, so that an interrupted call can be made again."""
    marker = folder / MARKER
    if folder.exists() and not marker.is_file() and (not folder.is_dir() or any(folder.iterdir())):
        sys.exit(f"{folder} is not a folder of an earlier campaign and not empty: remove it or name"
                 " another with --folder")
    folder.mkdir(parents=True, exist_ok=True)
    marker.touch()
    for entry in folder.iterdir():
        if entry.is_dir() and not entry.is_symlink():
            shutil.rmtree(entry)
        elif entry != marker:
            entry.unlink()


def main():
    arguments = parse_arguments()
    empty(arguments.folder)
    campaign = Campaign(arguments)
    start = time.monotonic()
    for key in arguments.only or []:
        campaign.only(key)
    names = [] if arguments.only else arguments.section or ALL
    started = {name: campaign.start(name) for name in SECTIONS if name in names}
    for name, rows in started.items():
        campaign.section(name, rows)
    if "cases" in names:
        campaign.cases()
    if "load" in names:
        campaign.load()
    print(f"\nSeed {arguments.seed}, {time.monotonic() - start:.0f} s.")
    for fault in campaign.faults:
        print(f"NOT AS IT SHOULD BE: {fault}", file=sys.stderr)
    return 1 if campaign.faults else 0


if __name__ == "__main__":
    sys.exit(main())
