"""A copy of the sources in which mutants are built and tested."""

import dataclasses
import enum
import subprocess

from .limits import start
from .programs import Limits, Program, Verdict, notices

# For each folder, the test programs that test its sources directly, fastest first.
TESTS = {
    "util": ["util_test", "memory_test", "app_test", "tool_test"],
    "profile": ["profile_test", "examples_test", "device_test"],
    "memory": ["memory_test", "examples_test"],
    "device": ["device_operations_test", "device_layouts_test", "device_test",
               "device_random_test", "device_round_trip_test", "device_timing_test"],
    "app": ["app_test", "tool_test", "app_timing_test"],
}
LONGEST_BUILD_S = 1800


class End(enum.Enum):
    KILLED = "killed"
    HUNG = "killed by a timeout"
    SURVIVED = "survived"
    STILLBORN = "does not compile"


@dataclasses.dataclass(frozen=True)
class Outcome:
    end: End
    test: str = ""  # the test that detected the change


class Tree:
    def __init__(self, source, folder, jobs):
        self.source = source
        self.tree = folder / "tree"
        self.build_folder = folder / "build"
        self.jobs = str(jobs)
        self.log = folder / "log.txt"
        self.limits = Limits(folder / "limits.json")
        self.programs = {}

    def bring_up_to_date(self):
        """Copies only files that differ, so that a second campaign builds little."""
        names = subprocess.run(["git", "-C", str(self.source), "ls-files", "-z"], check=True,
                               capture_output=True, text=True).stdout.split("\0")
        for name in filter(None, names):
            here, there = self.source / name, self.tree / name
            if here.is_file() and not (there.is_file() and there.read_bytes() == here.read_bytes()):
                there.parent.mkdir(parents=True, exist_ok=True)
                there.write_bytes(here.read_bytes())
                there.chmod(here.stat().st_mode)
        # Warnings are not errors, because a mutant may leave a variable unused. Tests are discovered
        # when they are listed, not after each build.
        self._run(["cmake", "-S", str(self.tree), "-B", str(self.build_folder), "-G", "Ninja",
                   "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O0",
                   "-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST",
                   "-DZSERIAL_BUILD_TESTS=ON"], check=True)

    def require_success(self, labels):
        """Builds the unchanged sources and exits if one of their tests fails."""
        self._build(labels, check=True)
        self.programs.update(Program.all_of(self.build_folder))
        for label in labels:
            if not self.limits.measure(self.programs[label]):
                raise SystemExit(f"{label} fails without any change")

    def all_labels(self):
        """Returns the labels of all test programs, those of the folders in TESTS first."""
        self._build(["all"], check=True)
        own = [label for labels in TESTS.values() for label in labels]
        return [*dict.fromkeys(own + sorted(Program.all_of(self.build_folder)))]

    def try_out(self, mutant, labels):
        """Returns the Outcome of a mutant with these test programs, run one after the other."""
        path = self.tree / mutant.path
        original = path.read_bytes()
        path.write_text(mutant.applied_to(original.decode()), encoding="utf-8")
        try:
            return self._outcome(labels)
        finally:
            path.write_bytes(original)

    def _outcome(self, labels):
        for label in labels:
            if not self._build([label]):
                return Outcome(End.STILLBORN)
            verdict, test = notices(self.programs[label], self.limits)
            if verdict is not Verdict.PASSED:
                return Outcome(End.KILLED if verdict is Verdict.FAILED else End.HUNG, test)
        return Outcome(End.SURVIVED)

    def _build(self, targets, check=False):
        return self._run(["cmake", "--build", str(self.build_folder), "-j", self.jobs,
                          "--target", *targets], check)

    def _run(self, command, check=False, longest_s=LONGEST_BUILD_S):
        """Returns whether a command succeeded. If it hangs, it is killed with everything that it has
        started."""
        with open(self.log, "wb") as log:
            process = start(command, log)
            try:
                status = process.wait(longest_s)
            except subprocess.TimeoutExpired:
                status = None
            finally:
                process.kill_all()
        if check and status != 0:
            raise SystemExit(f"{' '.join(command)} failed; see {self.log}")
        return status == 0
