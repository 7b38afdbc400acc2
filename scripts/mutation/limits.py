"""Processes with limited memory and file size: a changed program may do anything."""

import os
import resource
import signal
import subprocess

MOST_MEMORY = 8 << 30
MOST_OF_A_FILE = 5 << 30  # a test writes one of a little more than 4 GiB


class Process(subprocess.Popen):
    def kill_all(self):
        """Kills the process and everything that it has started."""
        try:
            os.killpg(self.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        self.wait()


def start(command, log, **arguments):
    """Starts a process in a session of its own, with its output in `log`."""
    return Process(command, stdin=subprocess.DEVNULL, stdout=log, stderr=subprocess.STDOUT,
                   start_new_session=True, preexec_fn=_limit, **arguments)


def _limit():
    resource.setrlimit(resource.RLIMIT_AS, (MOST_MEMORY, MOST_MEMORY))
    resource.setrlimit(resource.RLIMIT_FSIZE, (MOST_OF_A_FILE, MOST_OF_A_FILE))
