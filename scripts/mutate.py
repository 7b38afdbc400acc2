#!/usr/bin/env python3
"""Changes one token of the product at a time, in a copy of the tree, and lists the changes that no
test notices. The same seed chooses the same changes of the same sources. Results are kept: a
repeated call continues where the last one ended."""

import argparse
import json
import os
import pathlib
import random
import sys
import tempfile

sys.dont_write_bytecode = True
from mutation.mutants import mutants_of
from mutation.tree import TESTS, End, Tree

SOURCE = pathlib.Path(__file__).resolve().parent.parent


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--count", type=int, default=200, help="how many changes to try")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--folder", choices=TESTS, action="append",
                        help="only sources of this folder; repeatable")
    parser.add_argument("--file", action="append", help="only this source; repeatable")
    parser.add_argument("--headers", action="store_true",
                        help="change headers, too, after which much is built")
    parser.add_argument("--quick", action="store_true",
                        help="only with the folder's own tests; survivors may be noticed by others")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--work", type=pathlib.Path,
                        default=pathlib.Path(tempfile.gettempdir()) / "zserial-mutation",
                        help="folder for the copy, its build and the results")
    parser.add_argument("--list", action="store_true", help="list the changes and try none")
    return parser.parse_args()


def chosen(arguments):
    """In random order, so that the first part of the list is also a sample."""
    patterns = ["*.cpp", "*.h"] if arguments.headers else ["*.cpp"]
    paths = [SOURCE / file for file in arguments.file or []] or sorted(
        path for folder in arguments.folder or TESTS for pattern in patterns
        for path in (SOURCE / folder).glob(pattern))
    mutants = [mutant for path in paths
               for mutant in mutants_of(str(path.relative_to(SOURCE)), path.read_text("utf-8"))]
    random.Random(arguments.seed).shuffle(mutants)
    return mutants


class Results:
    """The outcome of each change, one line of JSON each."""

    def __init__(self, path):
        self.path = path
        lines = path.read_text(encoding="utf-8").splitlines() if path.exists() else []
        self.ends = {entry["key"]: End(entry["end"]) for entry in map(json.loads, lines)}

    def add(self, mutant, end):
        self.ends[mutant.key] = end
        with open(self.path, "a", encoding="utf-8") as file:
            file.write(json.dumps({"key": mutant.key, "end": end.value}) + "\n")


def try_all(arguments, mutants):
    """The mutants tried, with their ends; those that do not compile do not count."""
    arguments.work.mkdir(parents=True, exist_ok=True)
    results = Results(arguments.work / ("quick.jsonl" if arguments.quick else "results.jsonl"))
    tree = Tree(SOURCE, arguments.work, arguments.jobs)
    tree.bring_up_to_date()
    sound = set()
    tried = {}
    for mutant in mutants:
        if len(tried) == arguments.count:
            break
        folder = pathlib.Path(mutant.path).parts[0]
        if mutant.key not in results.ends:
            if folder not in sound:
                tree.require_success(folder)
                sound.add(folder)
            results.add(mutant, tree.try_out(mutant, not arguments.quick))
            print(f"{results.ends[mutant.key].value}: {mutant.key}", flush=True)
        if results.ends[mutant.key] is not End.STILLBORN:
            tried[mutant] = results.ends[mutant.key]
    return tried


def main():
    arguments = parse_arguments()
    mutants = chosen(arguments)
    if arguments.list:
        print(*(mutant.key for mutant in mutants), sep="\n")
        return 0
    tried = try_all(arguments, mutants)
    survivors = [mutant for mutant, end in tried.items() if end is End.SURVIVED]
    print(f"\n{len(tried) - len(survivors)} of {len(tried)} killed, seed {arguments.seed}."
          " Not noticed:")
    for mutant in sorted(survivors, key=lambda each: (each.path, each.line)):
        print(f"{mutant.path}:{mutant.line}: {mutant.kind}")
        print(f"  - {mutant.before}\n  + {mutant.after}")
    return 1 if survivors else 0


if __name__ == "__main__":
    sys.exit(main())
