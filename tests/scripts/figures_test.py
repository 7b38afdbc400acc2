#!/usr/bin/env python3
"""Tests of how measurements are presented."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
SOURCE = pathlib.Path(__file__).resolve().parents[2]
sys.path.append(str(SOURCE / "bench"))
import conditions
import goals
from goal import Goal
from measuring import Usage, median, ratios


class Figure(unittest.TestCase):
    def test_is_the_median_with_minimum_and_maximum(self):
        cells = Goal("group", "what", [3, 1, 2, 9, 1.5], 2.5).cells()
        self.assertEqual(cells[2:6], ["2.000", "1.000–9.000 of 5", "≤ 2.5", "met"])

    def test_of_peak_memory_is_the_maximum(self):
        goal = Goal("group", "what", [0.5, 1.2, 0.6], 1, figure_of=max)
        self.assertEqual(goal.cells()[2:6], ["1.200", "0.500–1.200 of 3", "≤ 1", "NOT MET"])

    def test_may_have_a_lower_bound(self):
        self.assertTrue(Goal("group", "what", [0.98], 0.97, at_least=True).met)
        self.assertFalse(Goal("group", "what", [0.96], 0.97, at_least=True).met)

    def test_of_a_remark_has_no_goal(self):
        self.assertEqual(Goal.remark("group", "what", [0.1], "").cells()[4:6], ["", ""])


class Ratio(unittest.TestCase):
    mine, other = [Usage(2, 5, 0), Usage(6, 5, 0)], [Usage(1, 5, 0), Usage(2, 5, 0)]

    def test_is_taken_round_by_round(self):
        self.assertEqual(ratios("seconds", self.mine, self.other), [2, 3])

    def test_is_shown_with_the_medians_of_both(self):
        self.assertEqual(median("seconds", self.mine), 4)


class Page(unittest.TestCase):
    def test_states_the_conditions_above_the_table(self):
        with tempfile.TemporaryDirectory() as folder:
            page = pathlib.Path(folder) / "page.md"
            page.write_text("a\n<!-- figures -->\nold\n<!-- end of figures -->\nb\n",
                            encoding="utf-8")
            goals.write_page(page, [Goal("group", "what", [1], 2)], "Processor, date.")
            lines = page.read_text(encoding="utf-8").splitlines()
        self.assertEqual(lines[:5], ["a", "<!-- figures -->", "", "Processor, date.", ""])
        self.assertEqual(lines[7], "| group | what | 1.000 | 1.000–1.000 of 1 | ≤ 2 | met |  |")


class Conditions(unittest.TestCase):
    def test_name_processor_system_date_and_commit(self):
        self.assertRegex(conditions.text(SOURCE),
                         r"^.+, \d+ cores; Linux [0-9.]+; \d{4}-\d\d-\d\d; commit .+\.$")

    def test_name_the_commit_and_mention_uncommitted_changes(self):
        with tempfile.TemporaryDirectory() as folder:
            file = pathlib.Path(folder) / "file"
            git = ["git", "-C", folder, "-c", "user.name=n", "-c", "user.email=e@example.org"]
            for words in (["init", "-q"], ["commit", "-q", "--allow-empty", "-m", "first"]):
                subprocess.run([*git, *words], check=True)
            self.assertRegex(conditions.commit(folder), r"^commit [0-9a-f]+$")
            file.touch()
            subprocess.run([*git, "add", "file"], check=True)
            self.assertRegex(conditions.commit(folder), r"^commit [0-9a-f]+ and changes to it$")

    def test_mention_that_the_commit_is_unknown(self):
        with tempfile.TemporaryDirectory() as folder:
            self.assertEqual(conditions.commit(folder), "commit not known")


if __name__ == "__main__":
    unittest.main()
