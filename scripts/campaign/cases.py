"""One case of each error that zserial cannot detect, at a given command, and how to detect it."""

import dataclasses

from . import memory, procedures
from .device import SMALL
from .run import Run
from .verdict import Cause, End

RUNNING = ("--entry", "version")
STARTING = ("--entry", "probe", "--fault", "corrupt-response@1")


@dataclasses.dataclass(frozen=True)
class Case:
    name: str
    what: str
    options: tuple
    procedure: procedures.Procedure
    end: End
    cause: Cause = None
    needs_quick_machine: bool = False
    seed: int = 1  # of the simulator

    def run(self, base_seed):
        key = f"cases/{self.name}"
        image = _whole_pages(memory.generator(base_seed, "cases"))
        filled = memory.Image([(SMALL.flash.start, b"\xAA" * len(SMALL.flash))])
        before = memory.Memory(SMALL, filled)
        if self.procedure is procedures.VERIFY:
            before = before.written(image)
        return Run(key, self.seed, self.procedure, list(self.options), image, before)


def _whole_pages(draws):
    """Returns an image of three pages and two rows of EEPROM, so that the number of a command
    determines what it does. The device with the other version has no flash at the last page."""
    pages = [(SMALL.flash.start, 2 * SMALL.page), (SMALL.flash.stop - SMALL.page, SMALL.page),
             (SMALL.eeprom.start, 2 * SMALL.eeprom_row)]
    return memory.Image((start, memory.random_bytes(draws, size)) for start, size in pages)


def _case(name, what, faults, procedure, end, cause=None, extra=(), quick=False):
    words = tuple(word for fault in faults.split() for word in ("--fault", fault))
    return Case(name, what, (*RUNNING, *extra, *words), procedure, end, cause, quick)


# In "-e -w", command 1 erases, 2 to 13 write flash rows and 14 and 15 EEPROM rows. In "-wv", each
# page takes ten commands: a read that finds it different, an erase, and a write and a read for each
# of four rows; 31 and 32 write EEPROM rows.
LATE = "the answer to a row comes 450 ms late, a later row is lost on the way"
SHIFT = "the same with a device that takes 200 ms a row; the fourth row after it is lost"
ROW = "two bytes of a row damaged, the checksum fits"
EEPROM = "two bytes of an EEPROM row damaged, the checksum fits"
VERSION = "one bit of the reply to the probe wrong, which makes it that of another device"
ANSWER = "two bytes of what is read damaged, the checksum fits"

CASES = [
    _case("late-write", LATE, "delay-response:450@3 lose-request@5", procedures.WRITE,
          End.FALSE_SUCCESS, Cause.ACKNOWLEDGEMENT, quick=True),
    _case("late-write-verify", LATE, "delay-response:450@3 lose-request@5",
          procedures.WRITE_THEN_VERIFY, End.ERROR, quick=True),
    _case("late-write-and-verify", LATE, "delay-response:450@3 lose-request@6",
          procedures.WRITE_AND_VERIFY, End.ERROR, quick=True),
    _case("shift-write", SHIFT, "delay-response:400@3 lose-request@8", procedures.WRITE,
          End.FALSE_SUCCESS, Cause.ACKNOWLEDGEMENT, ("--write-ms", "200"), quick=True),
    _case("shift-write-verify", SHIFT, "delay-response:400@3 lose-request@8",
          procedures.WRITE_THEN_VERIFY, End.ERROR, None, ("--write-ms", "200"), quick=True),
    _case("row-write", ROW, "alter-request@3", procedures.WRITE, End.FALSE_SUCCESS, Cause.REQUEST),
    _case("row-write-verify", ROW, "alter-request@3", procedures.WRITE_THEN_VERIFY, End.ERROR),
    _case("row-certified", ROW, "alter-request@3", procedures.CERTIFIED, End.ERROR),
    _case("row-write-and-verify", ROW, "alter-request@3", procedures.WRITE_AND_VERIFY, End.ERROR),
    _case("eeprom-write-and-verify", EEPROM, "alter-request@31",
          procedures.WRITE_AND_VERIFY, End.FALSE_SUCCESS, Cause.REQUEST),
    _case("eeprom-write-and-verify-verify", EEPROM, "alter-request@31",
          procedures.WRITE_AND_VERIFY_THEN_VERIFY, End.ERROR),
    _case("answer-read", ANSWER, "alter-response@3", procedures.READ, End.FALSE_SUCCESS,
          Cause.RESPONSE),
    _case("answer-read-twice", ANSWER, "alter-response@3", procedures.READ_TWICE, End.ERROR),
    _case("answer-verify", ANSWER, "alter-response@3", procedures.VERIFY, End.RIGHT),
    _case("answer-write-and-verify", ANSWER, "alter-response@4", procedures.WRITE_AND_VERIFY,
          End.ERROR),
    Case("version-write-verify", VERSION, STARTING, procedures.ASK_WRITE_VERIFY, End.FALSE_SUCCESS,
         Cause.PROFILE, seed=49),
    Case("version-certified", VERSION, STARTING, procedures.ASK_CERTIFIED, End.ERROR, seed=49),
    Case("version-given-write-verify", VERSION, STARTING, procedures.WRITE_THEN_VERIFY, End.RIGHT,
         seed=49),
]
