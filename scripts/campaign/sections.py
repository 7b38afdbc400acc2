"""The campaign's sections: which runs there are."""

import dataclasses
import math
import typing

from . import memory, procedures
from .device import LARGE, MEDIUM, SMALL, Device
from .run import Run

OPERATIONS = (procedures.WRITE, procedures.READ, procedures.VERIFY, procedures.WRITE_AND_VERIFY)
PROGRAMMING = (procedures.WRITE, procedures.WRITE_THEN_VERIFY, procedures.WRITE_AND_VERIFY,
               procedures.WRITE_AND_VERIFY_THEN_VERIFY, procedures.CERTIFIED)


@dataclasses.dataclass(frozen=True)
class Row:
    """A row of a table: runs of one procedure under the same conditions."""

    section: str
    circumstances: str
    procedure: procedures.Procedure
    options: tuple
    device: Device = SMALL
    entry: tuple = ("--entry", "version")
    eeprom: bool = True  # the image has data for it
    # Approximate number of faults that a run meets. None: no faults, for comparison.
    faults_per_run: typing.Optional[float] = None
    slow: bool = False  # the device acknowledges every row late, which is a fault each time

    def count(self, least, faults):
        """Returns the approximate number of runs that meet this many faults, and at least `least`."""
        if self.faults_per_run is None:
            return least
        return max(least, math.ceil(faults / self.faults_per_run))

    def run(self, base_seed, number):
        """Returns the run with this number, which depends only on seed, row and number."""
        key = f"{self.key}/{number}"
        draws = memory.generator(base_seed, key)
        images = self.device.images
        shared = f"{base_seed}/{self.device.name}/{number % images}" if images else draws.random()
        image, held = memory.sample(self.device, shared, self.eeprom)
        before = self.procedure.before(draws, image, held)
        return Run(key, draws.randrange(1 << 48), self.procedure, [*self.entry, *self.options],
                   image, before)

    @property
    def key(self):
        words = (self.circumstances, self.procedure.name)
        return "/".join([self.section, *(word.replace(" ", "_") for word in words)])


def _faults(*faults):
    return tuple(word for fault in faults for word in ("--fault", fault))


def _row(section, circumstances, procedure, options, chance, per_pass, device=SMALL, **more):
    """Returns a row with a fault in each of `per_pass` bytes or commands with probability `chance`."""
    expected = chance * per_pass * procedure.passes or None
    return Row(section, circumstances, procedure, options, device, faults_per_run=expected, **more)


def _flash_bytes(device):
    return sum(device.stretch_rows) * device.row


def _commands(device):
    return sum(device.stretch_rows) + 2


BYTES = {"0": SMALL, "1e-6": LARGE, "1e-5": MEDIUM, "1e-4": MEDIUM, "1e-3": SMALL, "1e-2": SMALL}


def _damaged_bytes(rates):
    return [_row("bytes", rate, procedure,
                 _faults(f"request-bytes={rate}", f"response-bytes={rate}"), float(rate),
                 _flash_bytes(BYTES[rate]), BYTES[rate])
            for rate in rates for procedure in _of_damaged_bytes(BYTES[rate])]


def _of_damaged_bytes(damaged):
    """Leaves out the certification on the large device: it takes long and meets no more faults than a
    verification."""
    return OPERATIONS if damaged is LARGE else (*OPERATIONS, procedures.CERTIFIED)


LOSSES = {"0": SMALL, "0.001": LARGE, "0.01": MEDIUM, "0.05": SMALL, "0.1": SMALL, "0.2": SMALL}


def _lost_responses(losses):
    return [_row("loss", f"{float(loss):.1%}", procedure, _faults(f"lose-response={loss}"),
                 float(loss), _commands(LOSSES[loss]), LOSSES[loss])
            for loss in losses for procedure in OPERATIONS]


# Options of the simulator, and the approximate number of faults per command that they cause.
LATE = {
    "answers late": (_faults("delay-response:350=0.05"), 0.05),
    "answers late, requests lost": (_faults("delay-response:350=0.05", "lose-request=0.05"), 0.1),
    "answers twice": (_faults("duplicate-response=0.1"), 0.1),
    "answers twice, requests lost": (_faults("duplicate-response=0.1", "lose-request=0.05"), 0.15),
    "slow device": (("--write-ms", "320"), 1),
    "slow device, requests lost, flash alone": (("--write-ms", "320",
                                                 *_faults("lose-request=0.05")), 1),
}


def _late_answers(names):
    return [_row("late", name, procedure, LATE[name][0], LATE[name][1], _commands(SMALL),
                 eeprom="flash alone" not in name, slow="slow" in name)
            for name in names for procedure in PROGRAMMING]


def _fitting_checksums(rates):
    return [row for rate in rates for row in _altered_at(rate)]


def _altered_at(rate):
    per_pass = _flash_bytes(SMALL)
    requests = [_row("altered", f"requests, {rate}", procedure, _faults(f"request-bytes={rate}"),
                     float(rate), per_pass)
                for procedure in PROGRAMMING]
    # The requests of a verification have about a tenth of the bytes of its answers.
    requests.append(_row("altered", f"requests, {rate}", procedures.VERIFY,
                         _faults(f"request-bytes={rate}"), float(rate), per_pass / 10))
    answers = [_row("altered", f"answers, {rate}", procedure, _faults(f"response-bytes={rate}"),
                    float(rate), per_pass)
               for procedure in (procedures.READ, procedures.READ_TWICE, procedures.VERIFY,
                                 procedures.WRITE_AND_VERIFY)]
    return requests + answers


def _damaged_entries(procedures_of_entry):
    return [Row("entry", "first answer with a wrong bit", procedure, _faults("corrupt-response@1"),
                entry=("--entry", "probe"), faults_per_run=1)
            for procedure in procedures_of_entry]


@dataclasses.dataclass(frozen=True)
class Section:
    title: str
    make_rows: typing.Callable  # from the values of a table
    values: typing.Iterable
    smoke_values: typing.Iterable  # those that take little time

    def rows(self, smoke=False):
        return self.make_rows(self.smoke_values if smoke else self.values)


SECTIONS = {
    "bytes": Section("Damaged bytes, both ways", _damaged_bytes, BYTES, ("0", "1e-4", "1e-3")),
    "loss": Section("Lost answers", _lost_responses, LOSSES, ("0", "0.05")),
    "late": Section("Late answers", _late_answers, LATE, ("answers late", "answers twice")),
    "altered": Section("Checksums that fit by chance", _fitting_checksums, ("1e-2",), ("1e-3",)),
    "entry": Section("A damaged version", _damaged_entries,
                     (procedures.ASK_WRITE_VERIFY, procedures.WRITE_THEN_VERIFY,
                      procedures.ASK_CERTIFIED),
                     (procedures.ASK_WRITE_VERIFY,)),
}
