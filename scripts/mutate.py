#!/usr/bin/env python3
"""Changes one token of the product at a time, in a copy of the tree, and lists the changes that no
test detects. The same seed selects the same changes of the same sources. Results are saved: a
repeated call continues where the last one stopped."""

import argparse
import json
import os
import pathlib
import random
import sys
import tempfile

sys.dont_write_bytecode = True
from mutation.mutants import mutants_of
from mutation.tree import TESTS, End, Outcome, Tree

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
    """Returns the mutants in random order, so that the start of the list is a sample, too."""
    patterns = ["*.cpp", "*.h"] if arguments.headers else ["*.cpp"]
    paths = [SOURCE / file for file in arguments.file or []] or sorted(
        path for folder in arguments.folder or TESTS for pattern in patterns
        for path in (SOURCE / folder).glob(pattern))
    mutants = [mutant for path in paths
               for mutant in mutants_of(str(path.relative_to(SOURCE)), path.read_text("utf-8"))]
    random.Random(arguments.seed).shuffle(mutants)
    return mutants


class Results:
    """The outcome of each change with some test programs, one line of JSON each."""

    def __init__(self, path):
        self.path = path
        lines = path.read_text(encoding="utf-8").splitlines() if path.exists() else []
        self.outcomes = {(entry["key"], entry["programs"]):
                         Outcome(End(entry["end"]), entry["test"])
                         for entry in map(json.loads, lines)}

    def get(self, mutant, programs, find_out):
        """Returns a saved outcome, or else calls `find_out`, prints its outcome and saves it."""
        at = (mutant.key, programs)
        if at not in self.outcomes:
            outcome = self.outcomes[at] = find_out()
            with open(self.path, "a", encoding="utf-8") as file:
                file.write(json.dumps({"key": mutant.key, "programs": programs,
                                       "end": outcome.end.value, "test": outcome.test}) + "\n")
            print(f"{outcome.end.value}: {mutant.key}  {outcome.test}", flush=True)
        return self.outcomes[at]


class Campaign:
    def __init__(self, arguments):
        arguments.work.mkdir(parents=True, exist_ok=True)
        self.results = Results(arguments.work / "results.jsonl")
        self.tree = Tree(SOURCE, arguments.work, arguments.jobs)
        self.tree.bring_up_to_date()
        self.sound = set()

    def try_out(self, mutant, programs, labels):
        def find_out():
            self._require_success(labels)
            return self.tree.try_out(mutant, labels)
        return self.results.get(mutant, programs, find_out)

    def try_own_tests(self, mutants, count):
        """Returns the outcomes by mutant; mutants that do not compile do not count."""
        tried = {}
        left = list(mutants)
        while left and len(tried) < count:
            missing = count - len(tried)
            # Sorted by source: the last change of a source has to be undone and built, too.
            batch = sorted(left[:missing], key=lambda each: (each.path, each.start))
            left = left[missing:]
            for mutant in batch:
                folder = pathlib.Path(mutant.path).parts[0]
                outcome = self.try_out(mutant, "own", TESTS[folder])
                if outcome.end is not End.STILLBORN:
                    tried[mutant] = outcome
        return tried

    def try_other_tests(self, tried):
        """Tries mutants that survive the tests of their folder with all other tests."""
        survivors = [mutant for mutant, outcome in tried.items() if outcome.end is End.SURVIVED]
        labels = self.tree.all_labels() if survivors else []
        for mutant in survivors:
            own = TESTS[pathlib.Path(mutant.path).parts[0]]
            others = [label for label in labels if label not in own]
            tried[mutant] = self.try_out(mutant, "others", others)

    def _require_success(self, labels):
        missing = [label for label in labels if label not in self.sound]
        if missing:
            self.tree.require_success(missing)
            self.sound.update(missing)


def main():
    arguments = parse_arguments()
    mutants = chosen(arguments)
    if arguments.list:
        print(*(mutant.key for mutant in mutants), sep="\n")
        return 0
    campaign = Campaign(arguments)
    tried = campaign.try_own_tests(mutants, arguments.count)
    if not arguments.quick:
        campaign.try_other_tests(tried)
    hung = sum(outcome.end is End.HUNG for outcome in tried.values())
    survivors = [mutant for mutant, outcome in tried.items() if outcome.end is End.SURVIVED]
    print(f"\n{len(tried) - len(survivors)} of {len(tried)} killed, {hung} of them by a timeout,"
          f" seed {arguments.seed}. Not noticed:")
    for mutant in sorted(survivors, key=lambda each: (each.path, each.line)):
        print(f"{mutant.path}:{mutant.line}: {mutant.kind}")
        print(f"  - {mutant.before}\n  + {mutant.after}")
    return 1 if survivors else 0


if __name__ == "__main__":
    sys.exit(main())
