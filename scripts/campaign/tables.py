"""The results of a campaign, in Markdown."""

import re
import statistics

from .verdict import Cause, End

HEAD = """\
| Line | Procedure | Device | Runs | Without a fault | Faults met | Right | Error reported | False \
success | False alarm | Median | Longest |
|---|---|---|---|---|---|---|---|---|---|---|---|"""
ENDS = (End.RIGHT, End.ERROR, End.FALSE_SUCCESS, End.FALSE_ALARM)  # in the order of the columns
CASES_HEAD = """\
| Case | What happens | Procedure | Simulator, without `--fault` | End |
|---|---|---|---|---|"""
LOAD_HEAD = """\
| Line | Devices | Right | All done after | CPU of zserial: median, most | CPU of zserial-sim |
|---|---|---|---|---|---|"""


def line_of(row, verdicts):
    """Returns the line of a row. Runs without a fault are only counted: they had nothing to survive."""
    hit = [each for each in verdicts if each.faults]
    seconds = [each.seconds for each in hit or verdicts]
    cells = [row.circumstances, row.procedure.name, row.device.name, len(verdicts),
             len(verdicts) - len(hit), faults_text(hit),
             *(_ends(hit, end) if hit else "—" for end in ENDS),
             f"{statistics.median(seconds):.1f} s", f"{max(seconds):.1f} s"]
    return f"| {' | '.join(map(str, cells))} |"


def faults_text(verdicts):
    """Returns the number of faults, and their kinds if there are several."""
    counts = {}
    for each in verdicts:
        for kind, count in each.faults.items():
            counts[kind] = counts.get(kind, 0) + count
    total = str(sum(counts.values()))
    if len(counts) < 2:
        return total
    return f"{total}: " + ", ".join(f"{count} {kind}" for kind, count in sorted(counts.items()))


def _ends(verdicts, end):
    """Returns how many runs ended this way, and why. Broken runs, which should not occur, are counted
    with the errors."""
    if end is End.ERROR and any(each.end is End.BROKEN for each in verdicts):
        ends = [each.end for each in verdicts]
        return f"{ends.count(End.ERROR)}, and {ends.count(End.BROKEN)} BROKEN"
    causes = [each.cause for each in verdicts if each.end is end]
    known = ", ".join(f"{causes.count(cause)} {cause.value}" for cause in Cause if cause in causes)
    return f"{len(causes)}: {known}" if known else str(len(causes))


def case_line(case, result, judged):
    options = " ".join(word for word in case.options if word != "--fault")
    end = result.text if judged else "not judged: the machine was too slow"
    return f"| {case.name} | {case.what} | {case.procedure.name} | `{options}` | {end} |"


def put_into(page, name, text):
    """Replaces the text between two comments that name it."""
    pattern = re.compile(rf"(<!-- {name} -->\n).*?(<!-- end of {name} -->)", re.DOTALL)
    page, count = pattern.subn(lambda found: f"{found[1]}\n{text}\n\n{found[2]}", page)
    if count != 1:
        raise ValueError(f"the page has no place for {name}")
    return page
