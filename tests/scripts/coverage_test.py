#!/usr/bin/env python3
"""Tests of what scripts/coverage_gaps.py says about lines that no test reaches."""

import json
import pathlib
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
sys.path.append(str(pathlib.Path(__file__).resolve().parents[2] / "scripts"))
import coverage_gaps


class Gaps(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def lines(self, **files):
        """The lines of these files; those that begin with "-" are not reached."""
        report = []
        for name, text in files.items():
            (self.folder / name).mkdir(exist_ok=True)
            (self.folder / name / "a.cpp").write_text(text.replace("-", " "), encoding="utf-8")
            report.append({"file": f"{name}/a.cpp", "lines": [
                {"line_number": number, "count": 0 if line.startswith("-") else 2,
                 "gcovr/noncode": not line}
                for number, line in enumerate(text.splitlines(), 1)]})
        path = self.folder / "lines.json"
        path.write_text(json.dumps({"files": report}), encoding="utf-8")
        return coverage_gaps.read_lines(path, self.folder)

    def problems(self, listed, **files):
        path = self.folder / "reasons.txt"
        path.write_text(listed, encoding="utf-8")
        return coverage_gaps.problems(self.lines(**files), *coverage_gaps.read_reasons(path))

    def test_with_a_reason_are_none_wherever_they_stand(self):
        listed = "# why\napp/a.cpp: f();\n"
        for text in ("-f();\n" + "x\n" * 99, "x\n" * 80 + "\n-  f();\n" + "x\n" * 20):
            self.assertEqual(self.problems(listed, app=text), [])

    def test_without_a_reason_are_named(self):
        self.assertEqual(self.problems("", app="x\n" * 99 + "-f();\n"),
                         ["app/a.cpp:100: no test, and no reason listed: f();"])

    def test_of_another_file_need_their_own_reason(self):
        found = self.problems("# why\napp/a.cpp: f();\n", app="-f();\n" + "x\n" * 99,
                              gang="-f();\n" + "x\n" * 99)
        self.assertEqual(len(found), 1)
        self.assertTrue(found[0].startswith("gang/a.cpp:1: "), found)

    def test_of_the_same_text_need_a_reason_each(self):
        text = "-return;\n-return;\n" + "x\n" * 99
        self.assertEqual(len(self.problems("# why\napp/a.cpp: return;\n", app=text)), 2)
        self.assertEqual(self.problems("# why\n" + "app/a.cpp: return;\n" * 2, app=text), [])

    def test_that_a_test_reaches_now_are_stale(self):
        self.assertEqual(self.problems("# why\napp/a.cpp: f();\n", app="f();\n"),
                         ["listed, but reached or gone: app/a.cpp: f();"])

    def test_below_no_reason_are_reported(self):
        self.assertEqual(self.problems("# why\n\napp/a.cpp: f();\n", app="x\n" * 99 + "-f();\n"),
                         ["listed without a reason: app/a.cpp: f();"])

    def test_of_more_than_two_percent_are_too_many(self):
        listed = "# why\n" + "app/a.cpp: f();\n" * 3
        self.assertEqual(self.problems(listed, app="x\n" * 147 + "-f();\n" * 3), [])
        self.assertEqual(self.problems(listed, app="x\n" * 146 + "-f();\n" * 3),
                         ["less than 98 %"])

    def test_are_counted_by_folder(self):
        self.assertEqual(coverage_gaps.table(self.lines(gang="x\n-f();\n", app="x\n\nx\n")),
                         ["app           2 of      2 lines  100.00 %",
                          "gang          1 of      2 lines   50.00 %",
                          "all           3 of      4 lines   75.00 %"])


if __name__ == "__main__":
    unittest.main()
