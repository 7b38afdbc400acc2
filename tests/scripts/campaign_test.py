#!/usr/bin/env python3
"""Tests of how the reliability campaign counts and judges its runs."""

import dataclasses
import pathlib
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
sys.path.append(str(pathlib.Path(__file__).resolve().parents[2] / "scripts"))
from campaign import hexfile, procedures, tables
from campaign.device import LARGE, SMALL
from campaign.memory import Image, Memory, sample
from campaign.run import Outcome, Run
from campaign.sections import SECTIONS
from campaign.verdict import Cause, End, Verdict, judge


def cells(row, verdicts):
    names = [cell.strip() for cell in tables.HEAD.splitlines()[0].strip("|").split("|")]
    values = [cell.strip() for cell in tables.line_of(row, verdicts).strip("|").split("|")]
    return dict(zip(names, values))


def verdict(end, faults, cause=None):
    return Verdict("section/line/write/0", end, cause, 1.0, faults, 0)


class Line(unittest.TestCase):
    row = SECTIONS["bytes"].rows()[4]

    def test_counts_runs_without_a_fault_separately(self):
        shown = cells(self.row, [verdict(End.RIGHT, {}), verdict(End.RIGHT, {"noise": 2})])
        self.assertEqual((shown["Runs"], shown["Without a fault"], shown["Right"]),
                         ("2", "1", "1"))

    def test_shows_no_results_if_no_run_met_a_fault(self):
        shown = cells(self.row, [verdict(End.RIGHT, {})])
        self.assertEqual((shown["Faults met"], shown["Right"], shown["False success"]),
                         ("0", "—", "—"))

    def test_sums_the_faults_of_all_runs_by_kind(self):
        shown = cells(self.row, [verdict(End.RIGHT, {"noise": 2, "unplug": 1}),
                                 verdict(End.ERROR, {"noise": 3})])
        self.assertEqual(shown["Faults met"], "6: 5 noise, 1 unplug")

    def test_shows_every_false_success_and_its_cause(self):
        lied = verdict(End.FALSE_SUCCESS, {"noise": 1}, Cause.REQUEST)
        shown = cells(self.row, [lied, verdict(End.RIGHT, {"noise": 1})])
        self.assertEqual(shown["False success"], "1: 1 damaged request, its checksum fits")

    def test_shows_broken_runs(self):
        shown = cells(self.row, [verdict(End.BROKEN, {"noise": 1})])
        self.assertEqual(shown["Error reported"], "0, and 1 BROKEN")


class Count(unittest.TestCase):
    def test_is_high_enough_to_meet_the_requested_faults(self):
        row = dataclasses.replace(SECTIONS["bytes"].rows()[0], faults_per_run=0.5)
        self.assertEqual(row.count(50, 250), 500)

    def test_is_the_minimum_if_every_run_meets_many_faults(self):
        row = dataclasses.replace(SECTIONS["bytes"].rows()[0], faults_per_run=100)
        self.assertEqual(row.count(50, 250), 50)

    def test_is_the_minimum_without_faults(self):
        row = dataclasses.replace(SECTIONS["bytes"].rows()[0], faults_per_run=None)
        self.assertEqual(row.count(50, 250), 50)


class HexFile(unittest.TestCase):
    def test_is_read_back_as_written(self):
        stretches = [(0x3FE, b"\x01\x02\x03"), (0xFFF8, bytes(range(48))), (0x400010, b"\x55")]
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "image.hex"
            hexfile.write(path, stretches)
            self.assertEqual(hexfile.read(path), stretches)


class DeviceMemory(unittest.TestCase):
    def test_differs_where_a_byte_differs(self):
        memory = Memory(SMALL, Image([(0x400, b"\x01\x02\x03")]))
        self.assertEqual(memory.differences(Image([(0x400, b"\x01\x03\x03")])), {0x401})

    def test_lacks_image_bytes_outside_of_it(self):
        self.assertEqual(Memory(SMALL).differences(Image([(0xBFF, b"\xFF\xFF")])), {0xC00})

    def test_differs_as_a_whole_where_the_image_has_no_data(self):
        memory = Memory(SMALL)
        image = Image([(SMALL.flash.start, b"\xFF" * len(SMALL.flash))])
        self.assertEqual(memory.differences(image, whole=True), set(SMALL.eeprom))

    def test_keeps_eeprom_when_flash_is_erased_and_written(self):
        memory = Memory(SMALL, Image([(0x400, b"\x00"), (SMALL.eeprom.start, b"\x07")]))
        after = memory.written(Image([(0x500, b"\x01")]))
        self.assertEqual([after[0x400], after[0x500], after[SMALL.eeprom.start]], [0xFF, 1, 7])

    def test_keeps_pages_that_write_and_verify_does_not_touch(self):
        memory = Memory(SMALL, Image([(0x400, b"\x00"), (0x510, b"\x00")]))
        after = memory.written_and_verified(Image([(0x500, b"\x01")]))
        self.assertEqual([after[0x400], after[0x500], after[0x510]], [0, 1, 0xFF])

    def test_depends_only_on_the_seed(self):
        self.assertEqual(sample.__wrapped__(LARGE, "1", True)[1],
                         sample.__wrapped__(LARGE, "1", True)[1])


class Judged(unittest.TestCase):
    image = Image([(0x400, b"\x01\x02")])

    def end(self, status, out="", after=None, before=None, procedure=procedures.WRITE):
        before = before or Memory(SMALL)
        run = Run("key", 1, procedure, [], self.image, before)
        with tempfile.TemporaryDirectory() as folder:
            (pathlib.Path(folder) / "trace.txt").touch()
            outcome = Outcome(status, 1.0, out, before, after or before.written(self.image),
                              pathlib.Path(folder), {})
            return judge(run, outcome).end

    def test_right_if_the_device_holds_the_image(self):
        self.assertIs(self.end(0), End.RIGHT)

    def test_a_false_success_if_a_byte_is_wrong(self):
        wrong = Memory(SMALL, Image([(0x400, b"\x01\x03")]))
        self.assertIs(self.end(0, after=wrong), End.FALSE_SUCCESS)

    def test_a_false_success_if_a_byte_elsewhere_has_changed(self):
        wrong = Memory(SMALL, Image([(0x400, b"\x01\x02"), (0xA00, b"\x00")]))
        self.assertIs(self.end(0, after=wrong), End.FALSE_SUCCESS)

    def test_an_error_if_the_tool_reports_one(self):
        self.assertIs(self.end(1, "Write failure!"), End.ERROR)

    def test_broken_if_it_fails_without_a_message(self):
        self.assertIs(self.end(1), End.BROKEN)

    def test_broken_if_it_was_killed(self):
        self.assertIs(self.end(137, "Write failure!"), End.BROKEN)
        self.assertIs(self.end(None, "Write failure!"), End.BROKEN)

    def verification(self, held):
        device = Memory(SMALL, Image([(0x400, held)]))
        return self.end(1, "Verify failure! data mismatch", device, device, procedures.VERIFY)

    def test_right_if_a_verification_finds_the_difference(self):
        self.assertIs(self.verification(b"\x01\x03"), End.RIGHT)

    def test_a_false_alarm_if_the_difference_does_not_exist(self):
        self.assertIs(self.verification(b"\x01\x02"), End.FALSE_ALARM)

    def test_a_false_alarm_if_a_verification_has_changed_the_device(self):
        wrong = Memory(SMALL, Image([(0x400, b"\x01\x03")]))
        self.assertIs(self.end(1, "Verify failure!", wrong, procedure=procedures.VERIFY),
                      End.FALSE_ALARM)


class Page(unittest.TestCase):
    def test_gets_a_table_at_the_marker_with_its_name(self):
        page = "before\n<!-- loss -->\nold\n<!-- end of loss -->\nafter\n"
        self.assertEqual(tables.put_into(page, "loss", "new"),
                         "before\n<!-- loss -->\n\nnew\n\n<!-- end of loss -->\nafter\n")

    def test_without_the_marker_is_an_error(self):
        with self.assertRaises(ValueError):
            tables.put_into("nothing", "loss", "new")


if __name__ == "__main__":
    unittest.main()
