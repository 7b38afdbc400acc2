#!/usr/bin/env python3
"""Installs a build into an empty folder and checks what is there. Argument: the build folder."""

import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
import programs

BUILD = Path(sys.argv.pop())
DOCUMENTS = "share/doc/zserial"
PROGRAMS = ["zserial", "zserial-gang", "zserial-inspect", "zserial-sim"]


def files_in(folder):
    """Returns the paths of all files below a folder, relative to it; links count as files."""
    return {path.relative_to(folder).as_posix() for path in folder.rglob("*")
            if path.is_symlink() or not path.is_dir()}


def documents():
    """Returns the paths, in the tree, of everything that is installed as a document."""
    root = programs.ROOT
    kept = {f"docs/{name}" for name in files_in(root / "docs")}
    kept |= {f"inspect/schema/{name}" for name in files_in(root / "inspect/schema")}
    kept |= {f"examples/{name}" for name in files_in(root / "examples") if "__pycache__" not in name}
    return kept | {"README.md", "CHANGELOG.md", "CONTRIBUTING.md"}


def public_headers():
    """Returns the headers that docs/embedding.md lists."""
    rows = re.findall(r"^\| `([A-Za-z/]+\.h)` \|", (programs.ROOT / "docs/embedding.md").read_text(),
                      re.MULTILINE)
    return set(rows)


class Installed(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        subprocess.run(["cmake", "--install", BUILD, "--prefix", cls.folder], check=True,
                       capture_output=True)
        cls.files = files_in(cls.folder)

    def below(self, folder):
        return {name.removeprefix(folder + "/") for name in self.files if name.startswith(folder + "/")}

    def test_are_programs_with_their_manual_pages_and_completions(self):
        self.assertEqual(self.below("bin"), set(PROGRAMS))
        self.assertEqual(self.below("share/man"),
                         {f"man1/{name}.1" for name in PROGRAMS} | {"man5/zserial-device-table.5"})
        self.assertEqual(self.below("share/bash-completion/completions"), set(PROGRAMS))
        self.assertEqual(self.below("share/fish/vendor_completions.d"),
                         {f"{name}.fish" for name in PROGRAMS})
        self.assertEqual(self.below("share/zsh/site-functions"), {"_zserial"})

    def test_complete_every_program_with_the_same_file(self):
        for folder in ["share/bash-completion/completions", "share/fish/vendor_completions.d"]:
            texts = {(self.folder / folder / name).read_text() for name in self.below(folder)}
            self.assertEqual(len(texts), 1)

    def test_are_device_rules(self):
        self.assertEqual(self.below("lib/udev"), {"rules.d/70-zserial.rules"})

    def test_are_documents_and_examples(self):
        self.assertEqual(self.below(DOCUMENTS), documents())

    def test_are_documents_whose_links_work_without_the_libraries(self):
        folder = Path(self.enterContext(tempfile.TemporaryDirectory()))
        subprocess.run(["cmake", "--install", BUILD, "--component", "programs", "--prefix", folder],
                       check=True, capture_output=True)
        links = 0
        for page in (folder / DOCUMENTS).rglob("*.md"):
            for target in re.findall(r"\]\(([^)#: ]+)(?:#[^)]*)?\)", page.read_text()):
                links += 1
                self.assertTrue((page.parent / target).exists(), f"{page.name}: {target}")
        self.assertGreater(links, 50)

    def test_are_the_public_headers_and_no_others(self):
        self.assertEqual(self.below("include/zserial"), public_headers())
        self.assertGreater(len(public_headers()), 10)

    def test_are_libraries_for_cmake(self):
        libraries = {Path(name).name for name in self.files if name.endswith(".a")}
        self.assertEqual(libraries, {"libzserial-core.a", "libzserial-process.a", "libzserial-sim.a"})
        found = {Path(name).name for name in self.files if "/cmake/zserial/" in name}
        found -= {name for name in found if re.fullmatch(r"zserialTargets-[a-z]+\.cmake", name)}
        self.assertEqual(found, {"zserialConfig.cmake", "zserialConfigVersion.cmake",
                                 "zserialTargets.cmake"})

    def test_are_nothing_else(self):
        known = ("bin/", "include/zserial/", "lib/udev/", "share/bash-completion/", "share/fish/",
                 "share/man/", "share/zsh/", DOCUMENTS + "/")
        rest = {name for name in self.files if not name.startswith(known)}
        self.assertEqual({name for name in rest if not re.fullmatch(
            r"lib[a-z0-9_/-]*/(libzserial-(core|process|sim)\.a|cmake/zserial/\w+(-\w+)?\.cmake)", name)}, set())

    def test_contain_no_path_of_the_build_tree(self):
        for name in self.files:
            if name.endswith((".cmake", ".h", ".rules", ".fish", ".zsh", ".1", ".5")):
                text = (self.folder / name).read_text()
                self.assertNotIn(str(programs.ROOT), text, name)


if __name__ == "__main__":
    unittest.main()
