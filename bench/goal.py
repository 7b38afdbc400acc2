"""A figure and its goal."""

import statistics
from dataclasses import dataclass
from typing import Callable, List, Optional


@dataclass
class Goal:
    group: str
    what: str
    rounds: List[float]  # the measured figure of each round
    bound: Optional[float]  # None: a remark, which has no goal
    at_least: bool = False  # otherwise at most
    unit: str = ""
    beside: str = ""
    figure_of: Callable = statistics.median  # the figure compared with the bound

    @staticmethod
    def remark(group, what, rounds, beside):
        return Goal(group, what, rounds, None, beside=beside)

    @property
    def figure(self):
        return self.figure_of(self.rounds)

    @property
    def met(self):
        if self.bound is None:
            return True
        return self.figure >= self.bound if self.at_least else self.figure <= self.bound

    def cells(self):
        sign = "≥" if self.at_least else "≤"
        bound = "" if self.bound is None else f"{sign} {self.bound:g}{self.unit}"
        verdict = "" if self.bound is None else "met" if self.met else "NOT MET"
        return [
            self.group,
            self.what,
            f"{self.figure:.3f}{self.unit}",
            f"{min(self.rounds):.3f}–{max(self.rounds):.3f} of {len(self.rounds)}",
            bound,
            verdict,
            self.beside,
        ]


HEAD = ["", "what", "figure", "least–most of the rounds", "goal", "", "beside it"]


def as_text(goals):
    rows = [HEAD] + [goal.cells() for goal in goals]
    widths = [max(len(row[i]) for row in rows) for i in range(len(HEAD))]
    return "\n".join(
        "  ".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip() for row in rows
    )


def as_markdown(goals):
    rows = [HEAD, ["---"] * len(HEAD)] + [goal.cells() for goal in goals]
    return "\n".join("| " + " | ".join(row) + " |" for row in rows)
