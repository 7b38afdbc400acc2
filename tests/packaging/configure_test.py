#!/usr/bin/env python3
"""Configures the tree in several ways and checks what would be built."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
import programs

INCLUDING = """
cmake_minimum_required(VERSION 3.25)
project(including LANGUAGES CXX)
add_subdirectory({root} zserial)
"""


class Configured(unittest.TestCase):
    def setUp(self):
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory()))

    def configure(self, source, *options):
        ended = subprocess.run(["cmake", "-S", source, "-B", self.folder / "build", "-G", "Ninja",
                                *options], capture_output=True, text=True)
        self.assertEqual(ended.returncode, 0, ended.stdout + ended.stderr)

    def cached(self, name):
        lines = (self.folder / "build/CMakeCache.txt").read_text().splitlines()
        return next(line.partition("=")[2] for line in lines if line.startswith(name + ":"))

    def rules(self):
        return (self.folder / "build/build.ninja").read_text()

    def test_without_options_is_optimised(self):
        self.configure(programs.ROOT)
        self.assertEqual(self.cached("CMAKE_BUILD_TYPE"), "Release")
        self.assertIn("-O3", self.rules())

    def test_with_a_build_type_keeps_it(self):
        self.configure(programs.ROOT, "-DCMAKE_BUILD_TYPE=Debug")
        self.assertEqual(self.cached("CMAKE_BUILD_TYPE"), "Debug")
        self.assertNotIn("-O3", self.rules())

    def test_as_part_of_a_project_leaves_build_type_and_installation_to_it(self):
        (self.folder / "CMakeLists.txt").write_text(INCLUDING.format(root=programs.ROOT))
        self.configure(self.folder)
        self.assertEqual(self.cached("CMAKE_BUILD_TYPE"), "")
        self.assertNotIn("-O3", self.rules())
        ended = subprocess.run(["cmake", "--install", self.folder / "build", "--prefix",
                                self.folder / "installed"], capture_output=True, text=True)
        self.assertEqual(ended.returncode, 0, ended.stderr)
        self.assertFalse((self.folder / "installed").exists())

    def test_without_pseudo_terminals_has_no_simulator_and_no_gang(self):
        self.configure(programs.ROOT, "-DZSERIAL_HAS_OPENPT=")
        self.assertEqual(self.cached("ZSERIAL_BUILD_SIMULATOR"), "OFF")
        self.assertEqual(self.cached("ZSERIAL_BUILD_GANG"), "OFF")
        rules = self.rules()
        self.assertIn("build zserial-inspect:", rules)
        self.assertNotIn("sim/line", rules)
        self.assertNotIn("zserial-gang", rules)
        script = "".join(path.read_text() for path in (self.folder / "build").rglob("cmake_install.cmake"))
        self.assertIn("/zserial-inspect", script)
        self.assertNotIn("zserial-sim", script)
        self.assertNotIn("zserial-gang", script)


if __name__ == "__main__":
    unittest.main()
