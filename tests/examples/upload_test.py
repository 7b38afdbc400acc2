#!/usr/bin/env python3
"""Tests of examples/upload.py with the real programs, which have to be on the PATH."""

import pathlib
import shutil
import subprocess
import tempfile
import unittest

EXAMPLES = pathlib.Path(__file__).resolve().parents[2] / "examples"
LARK = "0110"


class Upload(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        for name in ("device.txt", "blink.hex", "plover-96.hex"):
            shutil.copy(EXAMPLES / name, self.folder)

    def run_in_folder(self, *command):
        return subprocess.run(command, cwd=self.folder, timeout=60, check=False, text=True,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE)

    def upload(self, *arguments):
        return self.run_in_folder(EXAMPLES / "upload.py", *arguments)

    def upload_to_device(self, *arguments, options=()):
        """To a simulated LARK-32, which has seen something if there is a trace."""
        run = self.run_in_folder("zserial-sim", "--device", LARK, "--trace", "trace", *options,
                                 "--summary", "summary", "--exec", "--", EXAMPLES / "upload.py",
                                 LARK, "{}", *arguments)
        return run.stdout.split("\n", 1)[1]  # after the path of the port

    def was_asked(self):
        return (self.folder / "trace").read_text(encoding="utf-8") != ""

    def expect_refused(self, reason, *arguments):
        before = sorted(self.folder.iterdir())
        shown = self.upload_to_device(*arguments)
        self.assertEqual(shown, f"FAILED: refused: {reason}\n")
        self.assertFalse(self.was_asked())
        self.assertLessEqual(set(self.folder.iterdir()) - set(before),
                             {self.folder / "trace", self.folder / "summary"})

    def test_reports_success(self):
        self.assertEqual(self.upload_to_device("-wv", "blink.hex", "-R"),
                         "ok: All operations completed succesfully!\n")
        self.assertTrue(self.was_asked())

    def test_reports_the_failed_step_and_its_cause(self):
        shown = self.upload_to_device("-e", "-w", "blink.hex", options=("--fault", "wrong-ack@3"))
        self.assertEqual(shown, "FAILED: Now writingFailed to write memory, aborting...: unable to "
                                "write flash row at address 0x00000800\n")

    def test_reports_a_file_that_could_not_be_saved(self):
        self.assertIn("FAILED: what was read could not be saved: ",
                      self.upload_to_device("-r", "/dev/full"))

    def test_reports_a_device_of_another_version(self):
        run = self.run_in_folder("zserial-sim", "--device", LARK, "--summary", "summary", "--exec",
                                 "--", EXAMPLES / "upload.py", "0111", "{}", "-r", "all.hex")
        self.assertIn("FAILED: another device answered: 0x0110\n", run.stdout)

    def test_verifies_what_the_device_holds(self):
        holds = ("--memory", "blink.hex")
        self.assertEqual(self.upload_to_device("-v", "blink.hex", options=holds),
                         "ok: All operations completed succesfully!\n")

    def test_refuses_an_image_that_does_not_fit(self):
        self.expect_refused("LARK-32: 1416 bytes outside the device, the first at 0x00012000.",
                            "-e", "-w", "plover-96.hex", "-v", "plover-96.hex")

    def test_refuses_an_image_that_is_missing_and_creates_none(self):
        self.expect_refused("There is no blinck.hex.", "-wv", "blinck.hex")

    def test_refuses_words_that_would_be_ignored(self):
        self.expect_refused('"-vw" is ignored.: "blink.hex" is ignored.', "-vw", "blink.hex")

    def test_refuses_an_option_whose_arguments_are_missing(self):
        shown = self.upload_to_device("-W", "0x800", "0x1000")
        self.assertIn("FAILED: refused: ", shown)
        self.assertIn("must follow -W", shown)
        self.assertFalse(self.was_asked())

    def test_accepts_a_range(self):
        self.assertEqual(self.upload_to_device("-e", "-W", "0x800", "0x1000", "blink.hex"),
                         "ok: All operations completed succesfully!\n")

    def test_refuses_an_image_without_its_end(self):
        lines = (self.folder / "blink.hex").read_text(encoding="utf-8").splitlines(keepends=True)
        (self.folder / "half.hex").write_text("".join(lines[:100]), encoding="utf-8")
        shown = self.upload_to_device("-wv", "half.hex")
        self.assertIn("FAILED: refused: ", shown)
        self.assertFalse(self.was_asked())

    def test_refuses_to_work_without_a_table(self):
        (self.folder / "device.txt").unlink()
        run = self.upload(LARK, "/dev/null", "-wv", "blink.hex")
        self.assertEqual((run.returncode, run.stdout),
                         (1, "FAILED: refused: zserial-inspect: cannot read the table device.txt: "
                             "there is no such file\n"))

    def test_reports_a_program_that_is_missing(self):
        run = self.run_in_folder("env", "PATH=/nowhere", shutil.which("python3"),
                                 EXAMPLES / "upload.py", LARK, "/dev/null", "-wv", "blink.hex")
        self.assertEqual(run.returncode, 1)
        self.assertIn("FAILED: No such file or directory: zserial-inspect", run.stdout)
        self.assertEqual(run.stderr, "")

    def test_explains_itself(self):
        for arguments in ((), (LARK,), (LARK, "/dev/null")):
            run = self.upload(*arguments)
            self.assertEqual(run.returncode, 1)
            self.assertIn("upload.py VERSION PORT ARGUMENT...", run.stderr)


if __name__ == "__main__":
    unittest.main()
