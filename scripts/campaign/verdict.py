"""How a run ended, and the cause of an error that was not reported."""

import dataclasses
import enum
import re
import typing

from . import frames


class End(enum.Enum):
    RIGHT = "right"
    ERROR = "error reported"
    FALSE_SUCCESS = "false success"  # zserial wrongly reported success
    FALSE_ALARM = "false alarm"  # about a difference that does not exist, or that was caused by reading
    BROKEN = "broken"  # killed, crashed, or failed without a message


class Cause(enum.Enum):
    """Why zserial could not detect an error."""

    REQUEST = "damaged request, its checksum fits"
    RESPONSE = "damaged answer, its checksum fits"
    ACKNOWLEDGEMENT = "acknowledgement of another row"
    PROFILE = "damaged version, another device's profile"
    NONE = "UNEXPLAINED"


@dataclasses.dataclass
class Verdict:
    """The result of a run."""

    key: str
    end: End
    cause: typing.Optional[Cause]
    seconds: float
    faults: dict  # number of each kind that occurred
    repeated: int  # number of commands repeated because there was no valid answer in time
    damage: str = ""  # in words, if the end is neither right nor an error

    @property
    def text(self):
        return self.end.value + (f": {self.cause.value}" if self.cause else "")


READ_FLASH, WRITE_FLASH, ERASE_FLASH, READ_EEPROM, WRITE_EEPROM = range(1, 6)

LATE_ROW = "late row"  # a fault that the simulator does not count, because the device is only slow

ACCUSATION = re.compile(r"data mismatch starting at address 0x([0-9A-Fa-f]+)\s+"
                        r"device data size \d+: ([0-9A-F ]+)\s+expected data \d+: ([0-9A-F ]+)")


def judge(run, outcome, slow=False):
    end = end_of(run, outcome)
    lied = end in (End.FALSE_SUCCESS, End.FALSE_ALARM)
    faults = dict(outcome.faults, **({LATE_ROW: outcome.late_rows} if slow else {}))
    return Verdict(run.key, end, cause_of(run, outcome) if lied else None, outcome.seconds,
                   {kind: count for kind, count in faults.items() if count}, outcome.repeated,
                   damage_of(run, outcome) if lied else "")


def end_of(run, outcome):
    """Returns the End of a run."""
    changed = not run.procedure.may_change_device and outcome.after != outcome.before
    if outcome.status == 0:
        right = not changed and not run.procedure.wrong(run.image, outcome)
        return End.RIGHT if right else End.FALSE_SUCCESS
    if outcome.status != 1 or not run.procedure.failure.search(outcome.out):
        return End.BROKEN
    if changed or _accuses_wrongly(run, outcome):
        return End.FALSE_ALARM
    return End.ERROR if _is_error(run, outcome) else End.RIGHT


def damage_of(run, outcome):
    """Describes what is not as reported."""
    wrong = run.procedure.wrong(run.image, outcome)
    if not run.procedure.may_change_device:
        changed = outcome.after.differences(outcome.before.image())
        return f"{len(wrong)} bytes not as claimed, {len(changed)} changed in the device"
    inside = sum(address in run.image for address in wrong)
    return f"{inside} bytes of the image wrong, {len(wrong) - inside} elsewhere"


def _accuses_wrongly(run, outcome):
    """Returns whether a reported difference does not exist."""
    return "data mismatch" in outcome.out and not outcome.after.differences(run.image)


def _is_error(run, outcome):
    """Returns whether a failure is an error: a verification that finds a difference ends right."""
    return run.procedure.may_change_device or "data mismatch" not in outcome.out


def cause_of(run, outcome):
    """Returns the Cause, from what was sent and what arrived. An error on the line explains only the
    addresses that it affects: all addresses that are not as reported must be among them."""
    wrong = _not_as_claimed(run, outcome)
    if "entry procedure: 0x" in outcome.out and "entry procedure: 0x0110" not in outcome.out:
        beyond = range(run.device.smaller_flash_end, run.device.flash.stop)
        return Cause.PROFILE if all(address in beyond for address in wrong) else Cause.NONE
    sent, received = frames.read_log(outcome.folder / "frames.log")
    done = frames.read_trace(outcome.folder / "trace.txt")
    strayed = _changed_by(run.device, set(done) - set(sent))
    lost = _changed_by(run.device, set(sent) - set(done))
    lied = set().union(*(_lies(payload, outcome) for payload in received))
    if not wrong <= strayed | lost | lied:
        return Cause.NONE
    # A request that went to a wrong address also did not reach its own.
    causes = {Cause.REQUEST: strayed and strayed | lost, Cause.RESPONSE: lied,
              Cause.ACKNOWLEDGEMENT: lost}
    return next((cause for cause, addresses in causes.items() if wrong & addresses), Cause.NONE)


def _not_as_claimed(run, outcome):
    wrong = run.procedure.wrong(run.image, outcome) if outcome.status == 0 else set()
    if not run.procedure.may_change_device:
        wrong = wrong | outcome.after.differences(outcome.before.image())
    return wrong | (_accused(outcome) if _accuses_wrongly(run, outcome) else set())


def _accused(outcome):
    """Returns the addresses that zserial reports as different."""
    found = ACCUSATION.search(outcome.out)
    if not found:
        return set()
    held, expected = (bytes.fromhex(dump) for dump in found.group(2, 3))
    pairs = enumerate(zip(held, expected), int(found[1], 16))
    return {address for address, (byte, other) in pairs if byte != other}


def _changed_by(device, payloads):
    """Returns all addresses that these commands write or erase."""
    return {address for payload in payloads for address in _target_of(device, payload)}


def _target_of(device, payload):
    start = _start_of(device, payload)
    if payload[0] == ERASE_FLASH and len(payload) == 5:
        first = start // device.page * device.page
        return range(first, min(first + payload[1] * device.page, device.flash.stop))
    if payload[0] in (WRITE_FLASH, WRITE_EEPROM) and len(payload) > 5:
        return range(start, start + len(payload) - 5)
    return range(0)


def _start_of(device, payload):
    start = int.from_bytes(payload[2:5], "little")
    return start + (device.eeprom.start if payload[0] in (READ_EEPROM, WRITE_EEPROM) else 0)


def _lies(payload, outcome):
    """Returns the addresses at which the data of an answer is neither what the device held before
    the run nor what it holds after it."""
    if payload[0] not in (READ_FLASH, READ_EEPROM) or len(payload) < 6:
        return set()
    before, after = outcome.before, outcome.after
    start = _start_of(before.device, payload)
    area = before.device.eeprom if payload[0] == READ_EEPROM else before.device.flash
    return {address for address, byte in enumerate(payload[5:], start)
            if address not in area or byte not in (before[address], after[address])}
