"""What users do with a device, and how the outcome is compared with what zserial reports."""

import dataclasses
import re
import typing

from . import device, hexfile
from .memory import Image

# The last words of zserial and of cmp(1) on a failure.
FAILURE = re.compile(r"aborting\.\.\.|[Ff]ailure!|failed\?|Aborting\.\.\.|differ: ")

TOOL = "{zserial} -B " + device.VERSION + " -x frames.log "


@dataclasses.dataclass(frozen=True)
class Procedure:
    name: str
    # Shell commands, run one after the other until one fails. Status 0 claims success, status 1 a
    # failure.
    steps: tuple
    # Given image and outcome, returns the addresses at which the claim of status 0 is false.
    wrong: typing.Callable
    # Given random numbers, the image and a memory, returns the memory before the procedure.
    before: typing.Callable
    # Approximate number of times that each byte of the image crosses the line in a run.
    passes: float
    may_change_device: bool = True
    failure: re.Pattern = FAILURE  # must be printed when the status is 1


def _anything(_draws, _image, memory):
    return memory


def _partly_up_to_date(draws, image, memory):
    """Returns a device with an older version of the image, of which about half of the pages differ."""
    return memory.written_and_verified(image).with_bits_turned(
        [page + draws.randrange(memory.device.page) for page in image.pages(memory.device)
         if draws.random() < 0.5])


def _right_or_with_a_wrong_byte(draws, image, memory):
    wrong = [draws.choice(image.addresses())] if draws.random() < 0.5 else []
    return memory.written(image).with_bits_turned(wrong)


def _not_written(image, outcome):
    return outcome.after.differences(outcome.before.written(image).image())


def _not_written_and_verified(image, outcome):
    return outcome.after.differences(outcome.before.written_and_verified(image).image())


def _not_held(image, outcome):
    return outcome.after.differences(image)


def _not_read(_image, outcome):
    file = outcome.folder / "read.hex"
    read = Image(hexfile.read(file) if file.exists() else [])
    return outcome.before.differences(read, whole=True)


WRITE = Procedure("write", (TOOL + "-e -w image.hex",), _not_written, _anything, passes=1)
READ = Procedure("read", (TOOL + "-r read.hex",), _not_read, _anything, passes=1,
                 may_change_device=False)
# A verification stops at the first difference.
VERIFY = Procedure("verify", (TOOL + "-v image.hex",), _not_held, _right_or_with_a_wrong_byte,
                   passes=0.75, may_change_device=False)
# A page that differs is read up to the first difference, and then written and read back.
WRITE_AND_VERIFY = Procedure("write-and-verify", (TOOL + "-wv image.hex",),
                             _not_written_and_verified, _partly_up_to_date, passes=1.75)

WRITE_THEN_VERIFY = Procedure("write, verify", (TOOL + "-e -w image.hex -v image.hex",),
                              _not_written, _anything, passes=2)
WRITE_AND_VERIFY_THEN_VERIFY = Procedure(
    "write-and-verify, verify", (TOOL + "-wv image.hex", TOOL + "-v image.hex"),
    _not_written_and_verified, _partly_up_to_date, passes=2.75)
READ_TWICE = Procedure(
    "read twice and compare",
    (TOOL + "-r read.hex", TOOL + "-r again.hex", "cmp read.hex again.hex"), _not_read, _anything,
    passes=2, may_change_device=False)
# Without -B: the device is asked for its version, or caught when it starts.
ASK = "{zserial} -x frames.log "
ASK_WRITE_VERIFY = Procedure("write, verify without -B", (ASK + "-e -w image.hex -v image.hex",),
                             _not_written, _anything, passes=2)


def _certified(options):
    """Returns steps that print the output of zserial-gang and of every zserial, with the status of
    zserial-gang."""
    return ("{gang} --certify --keep logs -- " + options + "-x frames.log -e -w image.hex;"
            " status=$?; cat logs/*/console.txt; exit $status",)


# A run that is not ok has one line with its verdict and ends with status 1.
NOT_OK = re.compile(r"^1 run: 1 (?!ok)[a-z-]+, ", re.MULTILINE)
CERTIFIED = Procedure("certified", _certified("-B " + device.VERSION + " "), _not_written,
                      _anything, passes=2, failure=NOT_OK)
ASK_CERTIFIED = Procedure("certified without -B", _certified(""), _not_written, _anything,
                          passes=2, failure=NOT_OK)
