#!/usr/bin/env python3
"""Runs zserial against simulated devices on lines that damage, lose, delay and duplicate data, and
compares what it reports with what the devices hold. scripts/reliability.sh builds the programs and
calls this script."""

import argparse
import concurrent.futures
import pathlib
import shutil
import sys
import time

sys.dont_write_bytecode = True
SOURCE = pathlib.Path(__file__).resolve().parent.parent
sys.path.append(str(SOURCE / "bench"))
import conditions
from campaign import load, run as runs, tables, verdict
from campaign.cases import CASES
from campaign.device import SMALL
from campaign.sections import SECTIONS
from campaign.verdict import Cause, End

ALL = [*SECTIONS, "cases", "load"]
MARKER = ".files-of-reliability"  # marks a folder whose contents may be removed


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--programs", type=pathlib.Path, default=SOURCE / "build/release",
                        help="the folder of zserial, zserial-sim and zserial-gang")
    parser.add_argument("--folder", type=pathlib.Path, default=SOURCE / "build/reliability",
                        help="where runs leave their files; emptied at the start if an earlier"
                        " campaign left it, refused if it holds anything else")
    parser.add_argument("--runs", type=int, default=50, help="at least, for every row of the tables")
    parser.add_argument("--faults", type=int, default=250,
                        help="that the runs of a row should meet; adds runs as needed")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--jobs", type=int, default=32,
                        help="runs on the small device at once, and half as many on larger ones")
    parser.add_argument("--devices", type=int, default=32, help="programmed at once by \"load\"")
    parser.add_argument("--section", choices=ALL, action="append", help="only this one; repeatable")
    parser.add_argument("--only", metavar="RUN", action="append",
                        help="a single run by its name, with all its files kept; repeatable")
    parser.add_argument("--smoke", action="store_true",
                        help="a few runs of each section; a case for which the machine is too slow"
                        " is not judged")
    parser.add_argument("--write", type=pathlib.Path, metavar="PAGE",
                        help="page to put the tables into")
    return parser.parse_args()


class Campaign:
    def __init__(self, arguments):
        self.arguments = arguments
        build = arguments.programs.resolve()
        self.programs = runs.Programs(*(str(build / name) for name in
                                        ("zserial", "zserial-sim", "zserial-gang")))
        self.folder = arguments.folder.resolve()
        self.circumstances = conditions.text(SOURCE)
        self.complaints = []  # about zserial or the campaign itself
        self.unharmed = []  # verdicts on runs that met no fault
        self.tables = {}  # in Markdown, by the name of the section
        self.pool = concurrent.futures.ThreadPoolExecutor(arguments.jobs)
        # Runs on larger devices load the processors; those on small ones mostly wait.
        self.busy_pool = concurrent.futures.ThreadPoolExecutor(max(1, arguments.jobs // 2))

    def carry_out(self, run, slow=False):
        outcome = runs.execute(run, self.programs, self.folder / run.key)
        return self.finish(verdict.judge(run, outcome, slow))

    def carry_out_case(self, case):
        """Returns the verdict, and whether zserial gave up waiting for an answer that was sent."""
        run = case.run(self.arguments.seed)
        outcome = runs.execute(run, self.programs, self.folder / run.key)
        gave_up = outcome.gave_up_waiting()
        return self.finish(verdict.judge(run, outcome)), gave_up

    def finish(self, result):
        """Removes the files of a run that ended right or with an error."""
        if result.end in (End.RIGHT, End.ERROR) and not self.arguments.only:
            shutil.rmtree(self.folder / result.key)
        return result

    def start(self, name):
        """Submits the runs of a section; they start as soon as the pools have room."""
        return [(row, self.start_row(row)) for row in SECTIONS[name].rows(self.arguments.smoke)]

    def start_row(self, row):
        pool = self.pool if row.device is SMALL else self.busy_pool
        return [pool.submit(self.run_of, row, number) for number in range(self.count(row))]

    def count(self, row):
        return 1 if self.arguments.smoke else row.count(self.arguments.runs, self.arguments.faults)

    def run_of(self, row, number):
        return self.carry_out(row.run(self.arguments.seed, number), row.slow)

    def section(self, name, started):
        lines, strays = [], []
        self.show(name, SECTIONS[name].title, tables.HEAD)
        for row, futures in started:
            verdicts = [future.result() for future in futures]
            lines.append(tables.line_of(row, verdicts))
            print(lines[-1], flush=True)
            self.look_at(verdicts)
            strays += [each for each in verdicts if each.end not in (End.RIGHT, End.ERROR)]
        self.tables[name] = "\n".join([tables.HEAD, *lines])
        report(strays)

    def look_at(self, verdicts):
        self.unharmed += [each for each in verdicts if not each.faults]
        for each in verdicts:
            if each.end is End.BROKEN or each.cause is Cause.NONE:
                self.complaints.append(f"{each.key}: {each.text}")
            elif not each.faults and not each.repeated and each.end is not End.RIGHT:
                self.complaints.append(f"{each.key}: {each.text}, without a fault on its line")

    def show(self, name, title, head):
        print(f"\n### {title}\n\n{head}", flush=True)

    def cases(self):
        cases = [case for case in CASES if not (self.arguments.smoke and case.needs_quick_machine)]
        results = list(self.pool.map(self.carry_out_case, cases))
        self.show("cases", "Cases", tables.CASES_HEAD)
        judged = [self.judge(case, *result) for case, result in zip(cases, results)]
        if not any(judged):
            self.complaints.append("cases: none could be judged")

    def judge(self, case, result, gave_up):
        """Returns whether the case could be judged. It cannot if an unintended late answer has moved
        its faults to other commands. Cases with intended late answers require a fast machine and are
        always judged."""
        judged = case.needs_quick_machine or not gave_up
        self.add("cases", tables.CASES_HEAD, tables.case_line(case, result, judged))
        if judged and (result.end, result.cause) != (case.end, case.cause):
            self.complaints.append(f"{result.key}: {result.text} instead of {case.end.value}")
        return judged

    def add(self, name, head, line):
        """Prints a line and adds it to a table of the page."""
        print(line, flush=True)
        self.tables[name] = self.tables.get(name, head) + "\n" + line

    def load(self):
        table = (SOURCE / "examples/device.txt").read_text(encoding="utf-8")
        self.show("load", "Load", tables.LOAD_HEAD)
        for name, options in {"as fast as it goes": [], "115200 baud": ["--pace"]}.items():
            if self.arguments.smoke and options:
                continue
            folder = self.folder / "load" / name.replace(" ", "_")
            line, right = load.measure(self.programs, folder, table, self.arguments.seed,
                                       4 if self.arguments.smoke else self.arguments.devices,
                                       options)
            self.add("load", tables.LOAD_HEAD, f"| {name} | {line} |")
            if not right:
                self.complaints.append(f"load, {name}: not all devices hold their image")

    def only(self, key):
        section, *words = key.split("/")
        if section == "cases":
            case = next(case for case in CASES if case.name == words[0])
            result = self.carry_out(case.run(self.arguments.seed))
        else:
            row = next(row for row in SECTIONS[section].rows()
                       if row.key == "/".join([section, *words[:2]]))
            result = self.run_of(row, int(words[2]))
        print(f"{key}: {result.text}; faults met: {tables.faults_text([result])};"
              f" files in {self.folder / key}")


def report(strays):
    """Lists the runs that ended neither right nor with an error."""
    if strays:
        print()
    for each in strays:
        print(f"- {each.key}: {each.text}; {each.damage}")


def empty(folder):
    """Empties a folder except for the marker, so that an interrupted call can be repeated. Exits if
    the folder has files but no marker."""
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


def ending_of(campaign, seconds):
    """Returns the conditions, and whether the machine was fast enough: on a line without faults, a
    slow machine is the only reason to repeat a command."""
    arguments = campaign.arguments
    unharmed = campaign.unharmed
    repeating = sum(each.repeated > 0 for each in unharmed)
    return (f"{campaign.circumstances} Seed {arguments.seed}, up to {arguments.jobs} runs on the"
            f" small device at once and half as many on larger ones, {seconds:.0f} s."
            f" {len(unharmed)} runs met no fault; {repeating} of them repeated a command all the"
            " same, because the machine was too slow.")


def write_page(path, parts):
    page = path.read_text(encoding="utf-8")
    for name, text in parts.items():
        page = tables.put_into(page, name, text)
    path.write_text(page, encoding="utf-8")


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
    ending = ending_of(campaign, time.monotonic() - start)
    if not arguments.only:
        print(f"\n{ending}")
    if arguments.write:
        write_page(arguments.write, {**campaign.tables, "conditions": ending})
    for complaint in campaign.complaints:
        print(f"UNEXPECTED: {complaint}", file=sys.stderr)
    return 1 if campaign.complaints else 0


if __name__ == "__main__":
    sys.exit(main())
