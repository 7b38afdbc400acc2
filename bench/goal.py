"""A figure beside what it should be."""

from dataclasses import dataclass
from typing import Optional


@dataclass
class Goal:
    group: str
    what: str
    figure: float
    bound: Optional[float]  # None: a remark, which has nothing to meet
    at_least: bool = False  # otherwise at most
    unit: str = ""
    beside: str = ""

    @staticmethod
    def remark(group, what, figure, beside):
        return Goal(group, what, figure, None, beside=beside)

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
            bound,
            verdict,
            self.beside,
        ]


HEAD = ["", "what", "figure", "goal", "", "beside it"]


def as_text(goals):
    rows = [HEAD] + [goal.cells() for goal in goals]
    widths = [max(len(row[i]) for row in rows) for i in range(len(HEAD))]
    return "\n".join(
        "  ".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip() for row in rows
    )


def as_markdown(goals):
    rows = [HEAD, ["---"] * len(HEAD)] + [goal.cells() for goal in goals]
    return "\n".join("| " + " | ".join(row) + " |" for row in rows)
