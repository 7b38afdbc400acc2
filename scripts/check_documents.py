#!/usr/bin/env python3
"""Checks documents: runs their command lines on simulated devices, follows their links, or compares
the list of messages with the sources and with the page that explains them.

    scripts/check_documents.py commands --programs build/release docs/user-guide.md ...
    scripts/check_documents.py links
    scripts/check_documents.py messages

By default, all documents of the tree are checked."""

import argparse
import pathlib
import subprocess
import sys

sys.dont_write_bytecode = True
SOURCE = pathlib.Path(__file__).resolve().parent.parent
sys.path.append(str(SOURCE / "scripts"))
from documents import commands, links, messages


def all_documents():
    folders = [SOURCE, SOURCE / "docs", SOURCE / "examples", SOURCE / "tests" / "support"]
    return [page for folder in folders for page in sorted(folder.glob("*.md"))]


def report(failures):
    for failure in failures:
        print(failure, file=sys.stderr)
    return 1 if failures else 0


def check_commands(arguments):
    status = 0
    for document in arguments.documents or all_documents():
        failures, left_out = commands.check(document, SOURCE, arguments.programs.resolve())
        print("\n".join(left_out), end="\n" if left_out else "")
        status = max(status, report(failures))
    return status


def parse():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("what", choices=("commands", "links", "messages"))
    parser.add_argument("documents", nargs="*", type=pathlib.Path)
    parser.add_argument("--programs", type=pathlib.Path, default=SOURCE / "build",
                        help="the folder of zserial, zserial-sim, zserial-inspect and zserial-gang")
    return parser.parse_intermixed_args()


def main():
    arguments = parse()
    if arguments.what == "commands":
        return check_commands(arguments)
    if arguments.what == "links":
        return report(list(links.broken(arguments.documents or all_documents())))
    return report(list(messages.disagreements(SOURCE)))


if __name__ == "__main__":
    sys.exit(main())
