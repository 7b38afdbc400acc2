"""Test programs, run as a whole until a test fails."""

import dataclasses
import enum
import json
import os
import pathlib
import re
import subprocess
import tempfile
import time

from .limits import start

# Tests mostly wait, so more of them run at once than there are processors.
SHARDS = 6
POLL_S = 0.02
# A busy machine may slow down a run considerably, and a hang is rare enough to wait for.
SLOWEST = 4
SHORTEST_LIMIT_S = 20


class Verdict(enum.Enum):
    PASSED = "passed"
    FAILED = "failed"
    HUNG = "did not end"


@dataclasses.dataclass(frozen=True)
class Program:
    label: str
    path: str
    folder: str
    alone: bool  # true if a busy processor would spoil its measurements

    @staticmethod
    def all_of(build_folder):
        """Returns the programs by label. They must have been built."""
        listed = subprocess.run(["ctest", "--test-dir", str(build_folder), "--show-only=json-v1"],
                                check=True, capture_output=True, text=True).stdout
        programs = {}
        for test in json.loads(listed)["tests"]:
            properties = {each["name"]: each["value"] for each in test["properties"]}
            labels = properties.get("LABELS", []) if "WORKING_DIRECTORY" in properties else []
            # Tests with the label "check" are scripts.
            for label in set(labels) - {"check"}:
                programs[label] = Program(label, test["command"][0],
                                          properties["WORKING_DIRECTORY"],
                                          properties.get("RUN_SERIAL", False))
        return programs


class Run:
    """One run of a program: all of its shards at once, or the tests that match a filter."""

    def __init__(self, program, limit_s, only=None):
        self.program = program
        self.limit_s = limit_s
        shards = 1 if program.alone or only else SHARDS
        self.logs = [tempfile.TemporaryFile() for _ in range(shards)]
        self.processes = [self._shard(i, shards, only) for i in range(shards)]

    def _shard(self, index, shards, only):
        environment = dict(os.environ, GTEST_TOTAL_SHARDS=str(shards), GTEST_SHARD_INDEX=str(index))
        return start([self.program.path, "--gtest_fail_fast", f"--gtest_filter={only or '*'}"],
                     self.logs[index], cwd=self.program.folder, env=environment)

    def verdict(self):
        """Waits for all shards, or until one fails or hangs. Returns the verdict and the test that failed,
        if known."""
        end = time.monotonic() + self.limit_s
        try:
            while True:
                states = [process.poll() for process in self.processes]
                for log, state in zip(self.logs, states):
                    if state not in (None, 0):
                        return Verdict.FAILED, failed_test(log)
                if all(state == 0 for state in states):
                    return Verdict.PASSED, None
                if time.monotonic() > end:
                    return Verdict.HUNG, failed_test(self.logs[states.index(None)])
                time.sleep(POLL_S)
        finally:
            for process in self.processes:
                process.kill_all()
            for log in self.logs:
                log.close()


def failed_test(log):
    """Returns the first test that failed, or the one in which the program crashed or was killed."""
    log.seek(0)
    text = log.read().decode("utf-8", "replace")
    found = re.search(r"^\[  FAILED  \] ([\w/.]+)", text, re.MULTILINE) or \
        ([*re.finditer(r"^\[ RUN      \] ([\w/.]+)", text, re.MULTILINE)] or [None])[-1]
    return found[1] if found else None


class Limits:
    """Time limits of the programs: a multiple of the time that they take without any change."""

    def __init__(self, path):
        self.path = path
        self.taken_s = json.loads(path.read_text("utf-8")) if path.exists() else {}

    def of(self, program):
        return max(SHORTEST_LIMIT_S, SLOWEST * self.taken_s.get(program.label, 0))

    def measure(self, program):
        """Measures the program without any change. Returns whether it passes."""
        if program.label in self.taken_s:
            return True
        begin = time.monotonic()
        verdict, _ = Run(program, limit_s=1800).verdict()
        self.taken_s[program.label] = time.monotonic() - begin
        if verdict is Verdict.PASSED:
            self.path.write_text(json.dumps(self.taken_s), encoding="utf-8")
        return verdict is Verdict.PASSED


def notices(program, limits):
    """Returns how a program ends, and at which test. A test counts only if it fails or hangs again on
    its own, because on a busy machine it may do so once by chance."""
    for _ in range(3):
        verdict, test = Run(program, limits.of(program)).verdict()
        if verdict is Verdict.PASSED:
            return verdict, None
        again, _ = Run(program, limits.of(program), only=test).verdict()
        if again is not Verdict.PASSED:
            return again, test or program.label
    return Verdict.PASSED, None
