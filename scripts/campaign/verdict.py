"""How a run ended, and where it went wrong without a word, why."""

import enum
import re

from . import frames
from .device import EEPROM, FLASH


class End(enum.Enum):
    RIGHT = "right"
    ERROR = "error told"
    DIFFERENT = "different"
    BROKEN = "broken"  # killed, crashed, or failed without a word


class Cause(enum.Enum):
    """Why the tool could not notice."""

    REQUEST = "damaged request, its checksum fits"
    RESPONSE = "damaged answer, its checksum fits"
    ACKNOWLEDGEMENT = "acknowledgement of another row"
    PROFILE = "damaged version, another device's profile"
    NONE = "UNEXPLAINED"


# The tool's last words on a failure, and those of cmp(1).
FAILURE = re.compile(r"aborting\.\.\.|[Ff]ailure!|failed\?|Aborting\.\.\.|differ: ")


def end_of(run, outcome):
    """One of End."""
    changed = not run.procedure.may_change_device and outcome.after != outcome.before
    if outcome.status == 0:
        right = not changed and not run.procedure.wrong(run.image, outcome)
        return End.RIGHT if right else End.DIFFERENT
    if outcome.status != 1 or not FAILURE.search(outcome.out):
        return End.BROKEN
    if changed or _accuses_wrongly(run, outcome):
        return End.DIFFERENT
    return End.ERROR if _is_error(run, outcome) else End.RIGHT


def damage_of(run, outcome):
    """What of it is not as claimed, in words."""
    wrong = run.procedure.wrong(run.image, outcome)
    if not run.procedure.may_change_device:
        changed = outcome.after.differences(outcome.before.cells)
        return f"{len(wrong)} bytes not as claimed, {len(changed)} changed in the device"
    inside = len(wrong & run.image.keys())
    return f"{inside} bytes of the image wrong, {len(wrong) - inside} elsewhere"


def _accuses_wrongly(run, outcome):
    """A difference is told that is not there."""
    return "data mismatch" in outcome.out and not outcome.after.differences(run.image)


def _is_error(run, outcome):
    """A verification that finds a difference ends right."""
    return run.procedure.may_change_device or "data mismatch" not in outcome.out


def cause_of(run, outcome):
    """One of Cause, from what was sent and what arrived."""
    sent, received = frames.read_log(outcome.folder / "frames.log")
    done = frames.read_trace(outcome.folder / "trace.txt")
    if "entry procedure: 0x" in outcome.out and "entry procedure: 0x0110" not in outcome.out:
        return Cause.PROFILE
    if set(done) - set(sent):
        return Cause.REQUEST
    if any(_is_lie(payload, outcome) for payload in received):
        return Cause.RESPONSE
    if any(payload[0] in (2, 3, 5) for payload in set(sent) - set(done)):
        return Cause.ACKNOWLEDGEMENT
    return Cause.NONE


def _is_lie(payload, outcome):
    """Data that was read and that the device neither held before nor holds now."""
    if payload[0] not in (1, 4) or len(payload) < 6:
        return False
    start = int.from_bytes(payload[2:5], "little") + (EEPROM.start if payload[0] == 4 else 0)
    data = enumerate(payload[5:], start)
    memory = EEPROM if payload[0] == 4 else FLASH
    return any(address not in memory or
               byte not in (outcome.before.cells[address], outcome.after.cells[address])
               for address, byte in data)
