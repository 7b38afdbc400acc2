#!/usr/bin/env python3
"""Installs the libraries of a build, builds the examples against them as other projects would, and runs
the examples. Argument: the build folder."""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
import programs

BUILD = Path(sys.argv.pop())
EXAMPLES = programs.ROOT / "examples"
# The result of --check is the exit status; the summary is not used.
EXEC = [BUILD / "zserial-sim", "--device", "0110", "--summary", "summary", "--check", "blink.hex"]

EACH_HEADER = """
cmake_minimum_required(VERSION 3.25)
project(headers LANGUAGES CXX)
find_package(zserial REQUIRED COMPONENTS core sim)
file(GLOB_RECURSE headers RELATIVE {folder}/include/zserial {folder}/include/zserial/*.h)
foreach(header IN LISTS headers)
    string(MAKE_C_IDENTIFIER ${{header}} name)
    file(WRITE ${{CMAKE_BINARY_DIR}}/${{name}}.cpp "#include \\"${{header}}\\"\\n")
    list(APPEND sources ${{CMAKE_BINARY_DIR}}/${{name}}.cpp)
endforeach()
add_library(headers OBJECT ${{sources}})
target_compile_options(headers PRIVATE -fsyntax-only -Wall -Wextra -Wpedantic -Werror)
target_link_libraries(headers PRIVATE zserial::core zserial::sim)
"""


class Project(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        subprocess.run(["cmake", "--install", BUILD, "--component", "development", "--prefix",
                        cls.folder / "installed"], check=True, capture_output=True)

    def run_in(self, folder, *command, **options):
        return subprocess.run(command, cwd=folder, capture_output=True, text=True, timeout=120,
                              **options)

    def build(self, source):
        """Builds a project and returns the build folder."""
        build = self.folder / f"build-{source.name}"
        for command in [["cmake", "-S", source, "-B", build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
                         f"-DCMAKE_PREFIX_PATH={self.folder / 'installed'}"],
                        ["cmake", "--build", build]]:
            ended = self.run_in(self.folder, *command)
            self.assertEqual(ended.returncode, 0, ended.stdout + ended.stderr)
        return build

    def test_of_each_header_alone_compiles(self):
        source = self.folder / "headers"
        source.mkdir()
        (source / "CMakeLists.txt").write_text(EACH_HEADER.format(folder=self.folder / "installed"))
        # Only compiled: with -fsyntax-only there are no objects to check or to link.
        build = self.build(source)
        self.assertGreater(len(list(build.glob("*.cpp"))), 10)

    def test_that_embeds_an_upload_writes_shows_progress_and_can_be_cancelled(self):
        program = self.build(EXAMPLES / "embed") / "embed"
        for name in ["device.txt", "blink.hex"]:
            shutil.copy(EXAMPLES / name, self.folder)
        embed = [program, "{}", "0110", "blink.hex"]

        written = self.run_in(self.folder, *EXEC, "--exec", "--", *embed, stdin=subprocess.DEVNULL)
        self.assertEqual(written.returncode, 0, written.stdout + written.stderr)
        self.assertIn("\n5152 of 5152 bytes\nwritten\n", written.stdout)

        cancelled = self.run_in(self.folder, *EXEC, "--exec", "--", *embed, input="\n")
        self.assertEqual(cancelled.returncode, 3)
        self.assertIn("\nupload_firmware() aborted by user\n\nnot written\n", cancelled.stdout)

        other = self.run_in(self.folder, *EXEC, "--exec", "--", program, "{}", "0111", "blink.hex",
                            stdin=subprocess.DEVNULL)
        self.assertEqual(other.returncode, 3)
        self.assertTrue(other.stdout.endswith("\nanother device\n"), other.stdout)

        unknown = self.run_in(self.folder, program, "port", "0199", "blink.hex")
        self.assertEqual(unknown.returncode, 2)
        self.assertTrue(unknown.stdout.startswith("embed PORT VERSION IMAGE"), unknown.stdout)

        no_port = self.run_in(self.folder, program, "missing", "0110", "blink.hex",
                              stdin=subprocess.DEVNULL)
        self.assertEqual(no_port.returncode, 1)
        self.assertIn("\ncannot open port missing (", no_port.stdout)

    def test_that_tests_an_upload_passes(self):
        build = self.build(EXAMPLES / "test-your-upload")
        passed = self.run_in(build, "ctest", "--output-on-failure", "--no-tests=error")
        self.assertEqual(passed.returncode, 0, passed.stdout)
        listed = self.run_in(EXAMPLES / "test-your-upload", build / "upload_test")
        self.assertIn("[  PASSED  ] 3 tests.", listed.stdout)


if __name__ == "__main__":
    unittest.main()
