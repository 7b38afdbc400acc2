#!/usr/bin/env python3
"""Tests of the changes that scripts/mutate.py makes to a source, and of how it tries them out."""

import pathlib
import sys
import tempfile
import time
import unittest

sys.dont_write_bytecode = True
sys.path.append(str(pathlib.Path(__file__).resolve().parents[2] / "scripts"))
from mutation.mutants import mutants_of
from mutation.programs import Limits, Program, Verdict, notices
from mutation.tree import Tree


def changes(text, kind=None):
    """Returns the text after each change."""
    return {mutant.applied_to(text) for mutant in mutants_of("file.cpp", text)
            if kind in (None, mutant.kind)}


class Changes(unittest.TestCase):
    def test_of_a_comparison_shift_its_limit_or_invert_it(self):
        self.assertEqual(changes("x = a < b;", "operator"), {"x = a <= b;", "x = a >= b;"})

    def test_of_arithmetic_swap_the_operator(self):
        self.assertEqual(changes("x = a + b;", "operator"), {"x = a - b;"})
        self.assertEqual(changes("x <<= b;", "operator"), {"x >>= b;"})
        self.assertEqual(changes("++x;", "operator"), {"--x;"})

    def test_leave_templates_pointers_and_references_alone(self):
        for text in ("std::vector<int> x;", "int* p = &x;", "const T& y = x;", "T&& y = x;"):
            self.assertEqual(changes(text, "operator"), set(), text)

    def test_of_numbers_keep_their_base_and_suffix(self):
        self.assertEqual(changes("x = 16U;", "constant"), {"x = 17U;", "x = 15U;"})
        self.assertEqual(changes("x = 0xFFU;", "constant"), {"x = 0x100U;"})
        self.assertEqual(changes("x = 0;", "constant"), {"x = 1;"})

    def test_of_booleans_invert_them(self):
        self.assertEqual(changes("return true;"), {"return false;"})
        self.assertEqual(changes("return !x;"), {"return x;"})

    def test_of_conditions_make_them_always_or_never_true(self):
        self.assertEqual(changes("if (f(a)) {\n}", "condition"),
                         {"if (true) {\n}", "if (false) {\n}"})
        self.assertEqual(changes("while (f(a)) {\n}", "condition"), {"while (false) {\n}"})

    def test_remove_calls_and_assignments(self):
        self.assertEqual(changes("{ a.b(c); }", "statement"), {"{ ; }"})
        self.assertEqual(changes("{ x = y; }", "statement"), {"{ ; }"})

    def test_remove_no_declarations_and_no_parts_of_loops(self):
        for text in ("{ QFile file(name); }", "{ std::vector<int> x(3); }", "{ return f(); }",
                     "for (i = 0; i != f(); ++i) {\n}", "A::~A() = default;"):
            self.assertEqual(changes("{} " + text, "statement"), set(), text)

    def test_leave_comments_strings_and_directives_alone(self):
        for text in ("// a < b", "/* 1\n + 2 */", 'f("a < 1");', "g('1');", "#if A < 1\n",
                     'h(R"(1 < 2)");', "static_assert(A < 1);"):
            self.assertEqual(changes(text, "operator") | changes(text, "constant"), set(), text)

    def test_show_the_line_before_and_after(self):
        mutant, = mutants_of("file.cpp", "int f()\n{\n    return a + b;\n}\n")
        self.assertEqual(mutant.key, "file.cpp:3: operator: return a + b; -> return a - b;")


class Trial(unittest.TestCase):
    """The trial of a mutant in a tree with a single source, which is not really built or tested."""

    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.tree = Tree(pathlib.Path("/nowhere"), pathlib.Path(self.folder.name), 1)
        self.source = self.tree.tree / "util/file.cpp"
        self.source.parent.mkdir(parents=True)
        self.source.write_text("return true;", encoding="utf-8")
        self.mutant, = mutants_of("util/file.cpp", "return true;")

    def test_runs_with_the_change_and_restores_the_source(self):
        seen = []
        self.tree._outcome = lambda labels: seen.append(self.source.read_text())
        self.tree.try_out(self.mutant, [])
        self.assertEqual((seen, self.source.read_text()), (["return false;"], "return true;"))

    def test_restores_the_source_when_interrupted(self):
        def interrupt(labels):
            raise KeyboardInterrupt
        self.tree._outcome = interrupt
        with self.assertRaises(KeyboardInterrupt):
            self.tree.try_out(self.mutant, [])
        self.assertEqual(self.source.read_text(), "return true;")

    def test_kills_a_hanging_command_and_all_its_children(self):
        mark = self.tree.tree / "mark"
        command = f"(sleep 1; touch {mark}) & sleep 1000"
        self.assertFalse(self.tree._run(["sh", "-c", command], longest_s=0.1))
        time.sleep(1.5)
        self.assertFalse(mark.exists())


class Noticed(unittest.TestCase):
    """What a test program, here a shell script, shows about a mutant."""

    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def notices(self, script, limit_s=60):
        path = pathlib.Path(self.folder.name) / "program"
        path.write_text("#!/bin/sh\n" + script, encoding="utf-8")
        path.chmod(0o700)
        limits = Limits(path.with_name("limits.json"))
        limits.of = lambda program: limit_s
        return notices(Program("label", str(path), self.folder.name, alone=True), limits)

    def test_is_a_test_that_fails_again_on_its_own(self):
        script = """
            echo "$@" >> calls
            echo "[ RUN      ] Suite.Name/row"
            echo "[  FAILED  ] Suite.Name/row, where GetParam() = 1"
            exit 1
            """
        self.assertEqual(self.notices(script), (Verdict.FAILED, "Suite.Name/row"))
        self.assertEqual((pathlib.Path(self.folder.name) / "calls").read_text("utf-8"),
                         "--gtest_fail_fast --gtest_filter=*\n"
                         "--gtest_fail_fast --gtest_filter=Suite.Name/row\n")

    def test_is_a_crash(self):
        script = """
            echo "[ RUN      ] Suite.Good"
            echo "[       OK ] Suite.Good"
            echo "[ RUN      ] Suite.Crashes"
            kill -SEGV $$
            """
        self.assertEqual(self.notices(script), (Verdict.FAILED, "Suite.Crashes"))

    def test_is_a_hang(self):
        self.assertEqual(self.notices("echo '[ RUN      ] Suite.Hangs'; sleep 1000", limit_s=0.5),
                         (Verdict.HUNG, "Suite.Hangs"))

    def test_is_not_a_random_failure(self):
        script = """
            [ -e mark ] && exit 0
            touch mark
            echo "[  FAILED  ] Suite.Name"
            exit 1
            """
        self.assertEqual(self.notices(script), (Verdict.PASSED, None))


if __name__ == "__main__":
    unittest.main()
