#!/usr/bin/env python3
"""Checks the packages and the source archive. Arguments: their folder and a build folder of this
tree."""

import re
import subprocess
import sys
import tarfile
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
import programs

BUILD = Path(sys.argv.pop())
FOLDER = Path(sys.argv.pop())

# Accepted warnings of lintian, and the reasons.
EXPLAINED = {
    "initial-upload-closes-no-bugs": "nobody has asked Debian for this package",
}


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def package(name):
    return next(FOLDER.glob(f"{name}_*.deb"))


def field(name, key):
    return output_of("dpkg-deb", "--field", package(name), key).strip()


def depends(name):
    """Returns the names of the packages that a package depends on."""
    return set(re.findall(r"(?:^|, )([a-z0-9.+-]+)", field(name, "Depends")))


def files(name):
    """Returns the paths of a package's files below /usr, without folders."""
    with tempfile.NamedTemporaryFile() as archive:
        subprocess.run(["dpkg-deb", "--fsys-tarfile", package(name)], check=True, stdout=archive)
        with tarfile.open(archive.name) as opened:
            return {member.name.removeprefix("./usr/") for member in opened if not member.isdir()}


def installed_files():
    """Returns the same for `cmake --install` without changes by a packager."""
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run(["cmake", "--install", BUILD, "--prefix", folder], check=True,
                       capture_output=True)
        root = Path(folder)
        return {path.relative_to(root).as_posix() for path in root.rglob("*")
                if path.is_symlink() or not path.is_dir()}


class Packages(unittest.TestCase):
    def test_depend_on_the_libraries_that_the_programs_use(self):
        self.assertEqual(depends("zserial"), {"libc6", "libgcc-s1", "libqt5core5a",
                                              "libqt5serialport5", "libssl3", "libstdc++6", "zlib1g"})

    def test_for_development_depend_on_what_the_headers_include(self):
        self.assertEqual(depends("libzserial-dev"), {"qtbase5-dev", "libqt5serialport5-dev"})

    def test_have_the_version_of_the_project(self):
        version = re.search(r"VERSION ([0-9.]+)", (programs.ROOT / "CMakeLists.txt").read_text()
                            .partition("project(")[2])[1]
        for name in ["zserial", "libzserial-dev"]:
            self.assertEqual(field(name, "Version"), version + "-1")
        changelog = (programs.ROOT / "packaging/debian/changelog").read_text()
        self.assertTrue(changelog.startswith(f"zserial ({version}-1) "))

    def test_contain_what_is_installed_and_what_debian_adds(self):
        multiarch = output_of("dpkg-architecture", "-qDEB_HOST_MULTIARCH").strip()
        own = {f"share/doc/{name}/{file}" for name in ["zserial", "libzserial-dev"]
               for file in ["copyright", "changelog.gz", "changelog.Debian.gz"]}
        packaged = files("zserial") | files("libzserial-dev")
        self.assertEqual(own - packaged, set())
        moved = {name.replace(f"lib/{multiarch}/", "lib/", 1)
                 .replace("zsh/vendor-completions", "zsh/site-functions")
                 for name in packaged - own}
        moved = {name.removesuffix(".gz") if name.startswith("share/man/") else name for name in moved}
        self.assertEqual(moved, installed_files())

    def test_have_no_files_in_common(self):
        self.assertEqual(files("zserial") & files("libzserial-dev"), set())

    def test_say_that_no_licence_has_been_granted(self):
        with tempfile.TemporaryDirectory() as folder:
            for name in ["zserial", "libzserial-dev"]:
                subprocess.run(["dpkg-deb", "--extract", package(name), folder], check=True)
                text = Path(folder, f"usr/share/doc/{name}/copyright").read_text()
                self.assertIn("No licence has been granted yet.", text)

    def test_pass_lintian(self):
        ended = subprocess.run(["lintian", "--allow-root", "--tag-display-limit", "0",
                                *FOLDER.glob("*.deb")],
                               capture_output=True, text=True)
        lines = [line for line in ended.stdout.splitlines() if not line.startswith("N:")]
        self.assertEqual([line for line in lines if line.startswith("E:")], [])
        tags = {line.split()[2] for line in lines if line.startswith("W:")}
        self.assertEqual(tags, set(EXPLAINED), ended.stdout)


class SourceArchive(unittest.TestCase):
    @unittest.skipUnless((programs.ROOT / ".git").exists(), "this tree comes from an archive itself")
    def test_holds_the_files_of_the_tree_and_no_others(self):
        tracked = output_of("git", "-C", programs.ROOT, "ls-files", "--cached", "--others",
                            "--exclude-standard").splitlines()
        with tarfile.open(next(FOLDER.glob("zserial-*.tar.gz"))) as archive:
            packed = {member.name.partition("/")[2] for member in archive if not member.isdir()}
        self.assertEqual(packed, {name for name in tracked if (programs.ROOT / name).exists()})


if __name__ == "__main__":
    unittest.main()
