"""The campaign's sections: which runs there are."""

import dataclasses
import typing

from . import device, procedures
from .run import Run

RATES = ("0", "1e-6", "1e-5", "1e-4", "1e-3", "1e-2")
LOSSES = ("0", "0.001", "0.01", "0.05", "0.1", "0.2")
OPERATIONS = (procedures.WRITE, procedures.READ, procedures.VERIFY, procedures.WRITE_AND_VERIFY)
PROGRAMMING = (procedures.WRITE, procedures.WRITE_THEN_VERIFY, procedures.WRITE_AND_VERIFY,
               procedures.WRITE_AND_VERIFY_THEN_VERIFY)


@dataclasses.dataclass(frozen=True)
class Row:
    """A row of a table: runs of one procedure under the same circumstances."""

    section: str
    circumstances: str
    procedure: procedures.Procedure
    options: tuple
    entry: tuple = ("--entry", "version")
    eeprom: bool = True  # the image holds some
    times: int = 1  # as many runs as elsewhere

    def run(self, base_seed, number):
        """The run of that number; everything about it follows from seed, row and number."""
        words = (self.circumstances, self.procedure.name, str(number))
        key = "/".join([self.section, *(word.replace(" ", "_") for word in words)])
        draws = device.generator(base_seed, key)
        image = device.random_image(draws, self.eeprom)
        before = self.procedure.before(draws, image)
        return Run(key, draws.randrange(1 << 48), self.procedure, [*self.entry, *self.options],
                   image, before)


def _faults(*faults):
    return tuple(word for fault in faults for word in ("--fault", fault))


def _damaged_bytes(rates):
    return [Row("bytes", rate, procedure, _faults(f"request-bytes={rate}", f"response-bytes={rate}"))
            for rate in rates for procedure in OPERATIONS]


def _lost_responses(losses):
    return [Row("loss", f"{float(loss):.1%}", procedure, _faults(f"lose-response={loss}"))
            for loss in losses for procedure in OPERATIONS]


LATE = {
    "answers late": _faults("delay-response:350=0.05"),
    "answers late, requests lost": _faults("delay-response:350=0.05", "lose-request=0.05"),
    "answers twice": _faults("duplicate-response=0.1"),
    "answers twice, requests lost": _faults("duplicate-response=0.1", "lose-request=0.05"),
    "slow device": ("--write-ms", "320"),
    "slow device, requests lost, flash alone": ("--write-ms", "320",
                                                *_faults("lose-request=0.05")),
}


def _late_answers(names):
    return [Row("late", name, procedure, LATE[name], eeprom="flash alone" not in name)
            for name in names for procedure in PROGRAMMING]


def _fitting_checksums(rates):
    return [row for rate in rates for row in _altered_at(rate)]


def _altered_at(rate):
    requests = [Row("altered", f"requests, {rate}", procedure, _faults(f"request-bytes={rate}"))
                for procedure in (*PROGRAMMING, procedures.VERIFY)]
    answers = [Row("altered", f"answers, {rate}", procedure, _faults(f"response-bytes={rate}"))
               for procedure in (procedures.READ, procedures.READ_TWICE, procedures.VERIFY,
                                 procedures.WRITE_AND_VERIFY)]
    return requests + answers


def _damaged_entries(procedures_of_entry):
    return [Row("entry", "first answer with a wrong bit", procedure, _faults("corrupt-response@1"),
                ("--entry", "probe"), times=4) for procedure in procedures_of_entry]


@dataclasses.dataclass(frozen=True)
class Section:
    title: str
    make_rows: typing.Callable  # from the values that a table goes through
    values: typing.Iterable
    smoke_values: typing.Iterable  # those that take little time

    def rows(self, smoke=False):
        return self.make_rows(self.smoke_values if smoke else self.values)


SECTIONS = {
    "bytes": Section("Damaged bytes, both ways", _damaged_bytes, RATES, ("0", "1e-3")),
    "loss": Section("Lost answers", _lost_responses, LOSSES, ("0", "0.05")),
    "late": Section("Late answers", _late_answers, LATE, ("answers late", "answers twice")),
    "altered": Section("Checksums that fit by chance", _fitting_checksums, ("1e-2",), ("1e-3",)),
    "entry": Section("A damaged version", _damaged_entries,
                     (procedures.ASK_WRITE_VERIFY, procedures.WRITE_THEN_VERIFY),
                     (procedures.ASK_WRITE_VERIFY,)),
}
