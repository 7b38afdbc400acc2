"""A copy of the sources, in which mutants are built and tested."""

import enum
import os
import pathlib
import resource
import signal
import subprocess

# The folder of a source, and the test programs that test it directly.
TESTS = {
    "util": ["util_tests"],
    "profile": ["profile_tests"],
    "memory": ["memory_test", "examples_tests"],
    "device": ["device_test", "device_operations_test", "device_random_test",
               "device_round_trip_test"],
    "app": ["app_test", "tool_test"],
}
NOT_OF_THE_PRODUCT = r"^(bench|docs|scripts)\."
# No single one of these tests takes this long, even on a busy machine.
LONGEST_TEST_S = {"util": 20, "profile": 20, "memory": 20}
LONGEST_TEST_OTHERWISE_S = 90
LONGEST_BUILD_S = 1800
LONGEST_RUN_S = 3600
MOST_MEMORY = 8 << 30  # a mutant may allocate without end
MOST_OF_A_FILE = 5 << 30  # or write without end; a test has one of a little more than 4 GiB


class End(enum.Enum):
    KILLED = "killed"
    SURVIVED = "survived"
    STILLBORN = "does not compile"


class Tree:
    def __init__(self, source, folder, jobs):
        self.source = source
        self.tree = folder / "tree"
        self.build_folder = folder / "build"
        self.jobs = str(jobs)
        self.log = folder / "log.txt"

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
        # Warnings are not errors: a mutant may leave a variable unused.
        self._run(["cmake", "-S", str(self.tree), "-B", str(self.build_folder), "-G", "Ninja",
                   "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O0 -w",
                   "-DZSERIAL_BUILD_TESTS=ON"], LONGEST_BUILD_S, check=True)

    def require_success(self, folder):
        """Builds the unchanged sources and ends the program if a test fails with them."""
        if not self._build(TESTS[folder]) or not self._test(folder):
            raise SystemExit(f"The tests of {folder} fail without any change; see {self.log}")

    def try_out(self, mutant, thorough=True):
        """One of End. The direct tests run first, and all others if those notice nothing."""
        path = self.tree / mutant.path
        original = path.read_bytes()
        path.write_text(mutant.applied_to(original.decode()), encoding="utf-8")
        try:
            return self._end_of(pathlib.Path(mutant.path).parts[0], thorough)
        finally:
            path.write_bytes(original)

    def _end_of(self, folder, thorough):
        if not self._build(TESTS[folder]):
            # Tests are listed by running them, which a mutant may not survive.
            compiled = "error:" not in self.log.read_text(encoding="utf-8", errors="replace")
            return End.KILLED if compiled else End.STILLBORN
        if not self._test(folder):
            return End.KILLED
        if thorough and not (self._build(["all"]) and self._test()):
            return End.KILLED
        return End.SURVIVED

    def _build(self, targets):
        return self._run(["cmake", "--build", str(self.build_folder), "-j", self.jobs,
                          "--target", *targets], LONGEST_BUILD_S)

    def _test(self, folder=None):
        """The tests of a folder, or all."""
        words = ["-L", f"^({'|'.join(TESTS[folder])})$"] if folder else ["-E", NOT_OF_THE_PRODUCT]
        longest_s = LONGEST_TEST_S.get(folder, LONGEST_TEST_OTHERWISE_S)
        return self._run(["ctest", "--test-dir", str(self.build_folder), "-j", self.jobs,
                          "--no-tests=error", "--stop-on-failure", "--timeout", str(longest_s),
                          "--output-on-failure", *words], LONGEST_RUN_S)

    def _run(self, command, longest_s, check=False):
        """Whether it succeeded. A command that hangs is killed with everything that it started."""
        with open(self.log, "wb") as log:
            process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=log,
                                       stderr=subprocess.STDOUT, start_new_session=True,
                                       preexec_fn=_limit)
            try:
                status = process.wait(longest_s)
            except subprocess.TimeoutExpired:
                status = None
            except BaseException:
                _kill(process)
                raise
        if status is None:
            _kill(process)
        if check and status != 0:
            raise SystemExit(f"{' '.join(command)} failed; see {self.log}")
        return status == 0


def _kill(process):
    os.killpg(process.pid, signal.SIGKILL)
    process.wait()


def _limit():
    resource.setrlimit(resource.RLIMIT_AS, (MOST_MEMORY, MOST_MEMORY))
    resource.setrlimit(resource.RLIMIT_FSIZE, (MOST_OF_A_FILE, MOST_OF_A_FILE))
