#!/usr/bin/env python3
"""Tests that each check of the documents finds what it looks for."""

import pathlib
import re
import shutil
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
SOURCE = pathlib.Path(__file__).resolve().parents[2]
sys.path += [str(SOURCE / "scripts"), str(SOURCE / "examples")]
import bootloader
from documents import commands, links, markdown, messages


class Page(unittest.TestCase):
    """A document in a temporary folder."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def page(self, text, name="page.md"):
        path = self.folder / name
        path.write_text(text, encoding="utf-8")
        return path

    def blocks(self, text):
        return commands.command_blocks(self.page(text))

    def failures(self, text):
        """Returns the failures without their positions. None of our programs is needed."""
        found, _ = commands.check(self.page(text), SOURCE, self.folder)
        return [failure.split(": ", 1)[1] for failure in found]


class Blocks(Page):
    def test_may_be_indented_or_fenced(self):
        found = self.blocks("Text:\n\n    zserial -x\n\n```sh\nls\n```\n\n```console\n$ ls\n```\n")
        self.assertEqual([block.lines for block in found], [["zserial -x"], ["ls"], ["$ ls"]])

    def test_in_a_list_are_indented_further(self):
        self.assertEqual(self.blocks("- item\n\n    zserial, more of the item\n"), [])
        found = self.blocks("- item\n\n      zserial -x\n")
        self.assertEqual([block.lines for block in found], [["zserial -x"]])

    def test_in_other_languages_or_without_programs_hold_no_commands(self):
        self.assertEqual(self.blocks("```cpp\nzserial\n```\n\n    55 55 04\n"), [])

    def test_take_the_comments_before_them(self):
        first, second = self.blocks("<!-- status: 1 -->\n\n    zserial\n\nText.\n\n    zserial\n")
        self.assertEqual((first.comments, second.comments), (["status: 1"], []))

    def test_hold_commands_of_several_lines_with_their_output(self):
        block, = self.blocks("```console\n$ zserial \\\n    -x\nprinted\n\nmore\n$ ls\n```\n")
        self.assertEqual([(each.text, each.shown) for each in commands.commands(block)],
                         [("zserial \\\n    -x", ["printed", "", "more"]), ("ls", [])])


class Output(unittest.TestCase):
    def test_must_be_the_same(self):
        self.assertTrue(commands.agrees(["a", "b"], "a\nb\n"))
        self.assertFalse(commands.agrees(["a", "b"], "a\nb\nc\n"))
        self.assertFalse(commands.agrees(["a.b"], "axb\n"))

    def test_may_be_elided(self):
        self.assertTrue(commands.agrees(["a", "..."], "a\nb\nc\n"))
        self.assertTrue(commands.agrees(["...", "c ... e"], "a\nb\nc d e\n"))
        self.assertFalse(commands.agrees(["...", "c"], "a\nb\n"))

    def test_is_compared_as_it_finally_looks(self):
        self.assertTrue(commands.agrees(["50%done", "x"], "\r10%\r50%done  \nx\r\n\n"))

    def test_may_name_any_terminal(self):
        self.assertTrue(commands.agrees(["/dev/pts/3"], "/dev/pts/17\n"))


class Commands(Page):
    def test_print_what_is_shown(self):
        page = "```console\n$ echo a\na\n$ ls blink.hex\nblink.hex\n```\n"
        self.assertEqual(self.failures(page), [])

    def test_fail_with_different_output(self):
        failure, = self.failures("```console\n$ echo a\nb\n```\n")
        self.assertIn("is shown to print\nb", failure)

    def test_fail_with_a_different_status(self):
        self.assertEqual(len(self.failures("```console\n$ false\n```\n")), 1)
        self.assertEqual(self.failures("<!-- status: 1 -->\n```console\n$ false\n```\n"), [])
        self.assertEqual(len(self.failures("<!-- status: 1 -->\n```console\n$ true\n```\n")), 1)

    def test_without_a_prompt_stop_at_the_first_failure(self):
        self.assertEqual(len(self.failures("```sh\nfalse\ntrue\n```\n")), 1)

    def test_may_each_have_a_status(self):
        page = "<!-- status: 1 0 -->\n```sh\nfalse \\\n  x\ntrue\n```\n"
        self.assertEqual(self.failures(page), [])
        self.assertEqual(len(self.failures(page.replace("1 0", "1 1"))), 1)

    def test_may_print_to_standard_error(self):
        page = "<!-- output: errors -->\n```console\n$ echo a; echo b >&2\nb\n```\n"
        self.assertEqual(self.failures(page), [])
        self.assertEqual(len(self.failures(page.replace("errors", "none"))), 1)
        self.assertEqual(self.failures(page.replace("errors", "all").replace("\nb", "\na\nb")), [])

    def test_of_a_continued_block_find_the_files_of_the_first(self):
        page = "```sh\ntouch new\n```\n\n<!-- continues -->\n```sh\nls new\n```\n"
        self.assertEqual(self.failures(page), [])
        self.assertEqual(len(self.failures(page.replace("<!-- continues -->", ""))), 1)

    def test_find_files_that_the_page_shows(self):
        page = ("<!-- file: x/new -->\n```text\na\tb\n```\n\n"
                "<!-- continues -->\n```console\n$ cat x/new\na\tb\n```\n")
        self.assertEqual(self.failures(page), [])

    def test_are_skipped_for_a_stated_reason(self):
        page = self.page("<!-- not run: why -->\n```sh\nfalse\n```\n")
        self.assertEqual(commands.check(page, SOURCE, self.folder),
                         ([], [f"{page}:2: not run: why"]))

    def test_after_an_unknown_comment_are_not_run(self):
        failure, = self.failures("<!-- stauts: 1 -->\n```sh\ntrue\n```\n")
        self.assertIn("stauts", failure)

    def test_can_run_in_the_background(self):
        page = ("<!-- background -->\n```console\n$ python3 bootloader.py\n/dev/pts/3\n```\n\n"
                "<!-- continues -->\n```console\n$ test -c /dev/pts/3\n```\n")
        self.assertEqual(self.failures(page), [])


class Links(Page):
    def broken(self, text):
        self.page("# A heading\n\n## `-x`, and more\n\n## Twice\n\n## Twice\n", "other.md")
        return [fault.rsplit(": ", 1)[1] for fault in links.broken([self.page(text)])]

    def test_may_point_to_files_and_headings(self):
        self.assertEqual(self.broken(
            "# Here\n\n[a](other.md) [b](other.md#a-heading) [c](other.md#-x-and-more)\n"
            "[d](#here) [e\nf](other.md#twice-1) [g](https://example.org/x)\n"), [])

    def test_must_have_a_target(self):
        self.assertEqual(self.broken("[a](no.md)\n\n[b](other.md#no)\n\n[c](#no)\n"),
                         ["no such file", "no such heading", "no such heading"])

    def test_in_code_are_ignored(self):
        page = "`[a](no.md)`\n\n```text\n[a](no.md)\n```\n\n    [a](no.md)\n"
        self.assertEqual(self.broken(page), [])

    def test_are_reported_with_their_line(self):
        page = self.page("Text.\n\n    code\n\n`a\nb` [a](no.md)\n")
        self.assertEqual(list(links.broken([page])), [f"{page}:6: no.md: no such file"])


class Messages(unittest.TestCase):
    def test_are_literals_with_adjacent_ones_joined(self):
        source = '#include "a.h"\n// "no"\nf("one " // no\n  "two", \'"\', "three %1 \\"four\\"");'
        self.assertEqual(messages.literals(source), ["one two", 'three %1 \\"four\\"'])

    def test_are_compared_by_their_fixed_parts(self):
        self.assertEqual(messages.fragments("file {NAME} at 0x%1 (%2)\\n"), ("file", "at 0x"))

    def test_may_show_braces(self):
        self.assertEqual(messages.as_on_the_page("{FILE}: put {{name}} into it\\n"),
                         "FILE: put {name} into it")
        self.assertEqual(messages.fragments("{FILE}: put {{name}} into it"),
                         messages.fragments("%1: put {name} into it"))

    def test_in_sources_must_be_listed(self):
        listed = ["cannot open {FILE} now"]
        found = {("cannot open",): "a.cpp", ("now",): "a.cpp"}
        self.assertEqual(list(messages.missing_in_list(found, listed)), [])
        found["and later",] = "b.cpp"
        self.assertEqual(list(messages.missing_in_list(found, listed)),
                         ["b.cpp: not in tests/messages.txt: and later"])

    def test_are_more_than_names(self):
        found = {(name,): "a.cpp" for name in ("--keep-failures", "device.txt", "NO_COLOR")}
        self.assertEqual(list(messages.missing_in_list(found, [])), [])

    def test_are_not_help_texts(self):
        source = ('{"jobs", "number", "Run at most <number>."}, '
                  'const char* const description = "Runs;\\n" "one";\n'
                  'm_parser.addPositionalArgument("file", "The images.");\n'
                  'static const Subcommand subcommand = {\n"log",\n"Explain",\n    };\n'
                  'throw Error(QStringLiteral("no file"));')
        self.assertEqual(messages.literals(messages.HELP.sub("", source)), ["no file"])

    def test_in_the_list_must_be_in_a_source(self):
        self.assertEqual(list(messages.missing_in_sources({}, ["gone"])),
                         ["tests/messages.txt: in no source: gone"])

    def test_must_be_on_the_page_and_in_the_list(self):
        listed = {name: [] for name in messages.sections_of(messages.TOOL_PAGE)}
        listed["tool"] = ["bad {N}"]
        compared = lambda line: list(
            messages.between_list_and_page(listed, messages.TOOL_PAGE, ["", "", line]))
        self.assertEqual(compared("| `bad N` |"), [])
        self.assertEqual(compared("| `worse N` |"),
                         ["docs/troubleshooting.md: does not explain: bad N",
                          "docs/troubleshooting.md:3: not in tests/messages.txt: worse N"])

    def test_of_libraries_must_be_shown_by_a_command(self):
        listed = ["Bad '{N}'."]
        self.assertEqual(list(messages.missing_in_commands(listed, "page", ["Bad 'x'."])), [])
        self.assertEqual(list(messages.missing_in_commands(listed, "page", ["Good."])),
                         ["page: no command shows this text of a library: Bad '{N}'."])

    def test_are_taken_from_headings_and_first_columns_of_the_page(self):
        lines = ["### `one`, `two`", "", "| `three` | `no` |", "", "`no`"]
        self.assertEqual([text for _, text in messages.page_messages(lines)],
                         ["one", "two", "three"])


class EveryProgram(unittest.TestCase):
    """Checks a copy of the tree in which one message of a program is changed at a time."""

    #: One message of each program, as in the list and on the page, and the source that contains it.
    examples = {
        "tool": ("You specified more than one port.", "app/Options.cpp"),
        "companions": ("cannot wait for signals", "process/SignalEvents.cpp"),
        "zserial-sim": ("cannot write the summary ", "sim/program/Session.cpp"),
        "zserial-gang": ("--keep-failures needs --keep", "gang/Arguments.cpp"),
        "zserial-inspect": ("log takes one file", "inspect/LogCommand.cpp"),
    }

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.tree = pathlib.Path(folder.name)
        for name in ("docs", *(each for program in messages.PROGRAMS for each in program.folders)):
            shutil.copytree(SOURCE / name, cls.tree / name)
        (cls.tree / "tests").mkdir()
        shutil.copy(SOURCE / "tests" / "messages.txt", cls.tree / "tests")

    def with_change(self, name, old, new):
        """Returns the disagreements after the first occurrence of a text in a file has been replaced."""
        path = self.tree / name
        before = path.read_text(encoding="utf-8")
        self.assertIn(old, before)
        path.write_text(before.replace(old, new, 1), encoding="utf-8")
        try:
            return list(messages.disagreements(self.tree))
        finally:
            path.write_text(before, encoding="utf-8")

    def for_each(self, check):
        for program in messages.PROGRAMS:
            with self.subTest(program=program.section):
                check(program.page, *self.examples[program.section])

    def test_agrees_with_list_and_page(self):
        self.assertEqual(list(messages.disagreements(self.tree)), [])

    def test_has_no_message_that_the_list_lacks(self):
        def check(page, message, source):
            found = self.with_change("tests/messages.txt", f"\n{message}", f"\n#{message}")
            self.assertIn(f"{source}: not in tests/messages.txt: {message.strip()}", found)
            self.assertTrue(any(each.startswith(f"{page}:") for each in found))

        self.for_each(check)

    def test_has_no_message_that_the_page_lacks(self):
        def check(page, message, _):
            found = self.with_change(page, f"`{message}", f"`no {message}")
            self.assertIn(f"{page}: does not explain: {message}", " ".join(found))

        self.for_each(check)

    def test_has_every_message_of_the_list(self):
        def check(_, message, source):
            found = self.with_change(source, f'"{message}', '"a new message ')
            self.assertIn(f"tests/messages.txt: in no source: {message.strip()}", found)
            self.assertIn(f"{source}: not in tests/messages.txt: a new message", found)

        self.for_each(check)

    def test_has_the_sources_that_are_left_out(self):
        gone = messages.Program("tool", messages.TOOL_PAGE, ("app",), left_out=("Gone.cpp",))
        self.assertEqual(list(messages.missing_files(self.tree, gone)),
                         ["tool: left out, and not there: Gone.cpp"])


class Frames(unittest.TestCase):
    """The example device and the protocol page, compared with examples/frames.txt."""

    vector = re.compile(r"  (good|accepted|host|refused) (.*?) \| ([0-9A-F ]+?)(?: #.*)?$")

    def vectors(self):
        text = (SOURCE / "examples" / "frames.txt").read_text(encoding="utf-8")
        return [self.vector.match(line).groups() for line in text.splitlines() if "|" in line]

    def received(self, receiver, digits):
        payloads = (receiver.take(byte) for byte in bytes.fromhex(digits))
        return [payload for payload in payloads if payload is not None]

    def test_are_sent_and_received_by_the_example_device(self):
        for verdict, payload, frame in self.vectors():
            with self.subTest(frame=frame):
                receiver = bootloader.Receiver()
                good = verdict in ("good", "accepted")
                self.assertEqual(self.received(receiver, frame),
                                 [bytes.fromhex(payload)] if good else [])
                self.assertEqual(self.received(receiver, "55 55 00 02 FE 04"), [b"\0\2"])
                if verdict == "good":
                    self.assertEqual(bootloader.frame(bytes.fromhex(payload)), bytes.fromhex(frame))

    def test_on_the_page_are_among_the_vectors(self):
        good = {frame for verdict, _, frame in self.vectors() if verdict == "good"}
        page = "\n".join(markdown.read(SOURCE / "docs" / "protocol.md"))
        shown = set(re.findall(r"\b55 55 [0-9A-F ]+ 04\b", page))
        self.assertGreater(len(shown), 10)
        self.assertLessEqual(shown, good)


class Jobs(unittest.TestCase):
    """The jobs for continuous integration in examples/."""

    def test_install_what_a_build_needs(self):
        script = (SOURCE / "scripts" / "packages.sh").read_text(encoding="utf-8")
        needed = set(re.search(r"build_packages=\(([^)]*)\)", script)[1].split())
        self.assertIn("cmake", needed)
        for name in ("github.yml", "gitlab.yml"):
            with self.subTest(name=name):
                job = (SOURCE / "examples" / "ci" / name).read_text(encoding="utf-8")
                self.assertLessEqual(needed, set(job.split()))


if __name__ == "__main__":
    unittest.main()
