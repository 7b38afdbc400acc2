"""What users do with a device, and how its end is judged against what the tool claims."""

import dataclasses
import typing

from . import device

TOOL = "{zserial} -B " + device.VERSION + " -x frames.log "


@dataclasses.dataclass(frozen=True)
class Procedure:
    name: str
    steps: tuple
    # The addresses at which the claim that goes with status 0 is not true, given image and outcome.
    wrong: typing.Callable
    # The device that it starts with, given random numbers and the image.
    before: typing.Callable
    may_change_device: bool = True


def _anything(draws, _image):
    return device.random_memory(draws)


def _partly_up_to_date(draws, image):
    """An older version of the same image: about half of its pages differ."""
    memory = device.random_memory(draws)
    cells = dict(memory.written_and_verified(image).cells)
    for page in sorted({address // device.PAGE * device.PAGE for address in image
                        if address in device.FLASH}):
        if draws.random() < 0.5:
            cells[page + draws.randrange(device.PAGE)] ^= 0x10
    return device.Memory(cells)


def _right_or_with_a_wrong_byte(draws, image):
    memory = device.random_memory(draws).written(image)
    if draws.random() < 0.5:
        memory.cells[draws.choice(sorted(image))] ^= 0x10
    return memory


def _not_written(image, outcome):
    return outcome.after.differences(outcome.before.written(image).cells)


def _not_written_and_verified(image, outcome):
    return outcome.after.differences(outcome.before.written_and_verified(image).cells)


def _not_held(image, outcome):
    return outcome.after.differences(image)


def _not_read(_image, outcome):
    return outcome.before.differences(device.read_hex(outcome.folder / "read.hex"), whole=True)


WRITE = Procedure("write", (TOOL + "-e -w image.hex",), _not_written, _anything)
READ = Procedure("read", (TOOL + "-r read.hex",), _not_read, _anything, may_change_device=False)
VERIFY = Procedure("verify", (TOOL + "-v image.hex",), _not_held, _right_or_with_a_wrong_byte,
                   may_change_device=False)
WRITE_AND_VERIFY = Procedure("write-and-verify", (TOOL + "-wv image.hex",),
                             _not_written_and_verified, _partly_up_to_date)

WRITE_THEN_VERIFY = Procedure("write, verify", (TOOL + "-e -w image.hex -v image.hex",),
                              _not_written, _anything)
WRITE_AND_VERIFY_THEN_VERIFY = Procedure(
    "write-and-verify, verify", (TOOL + "-wv image.hex", TOOL + "-v image.hex"),
    _not_written_and_verified, _partly_up_to_date)
READ_TWICE = Procedure(
    "read twice and compare",
    (TOOL + "-r read.hex", TOOL + "-r again.hex", "cmp read.hex again.hex"), _not_read, _anything,
    may_change_device=False)
# The version is not taken from the command line: the device is asked, or caught as it starts.
ASK = "{zserial} -x frames.log "
ASK_WRITE_VERIFY = Procedure("write, verify without -B", (ASK + "-e -w image.hex -v image.hex",),
                             _not_written, _anything)
