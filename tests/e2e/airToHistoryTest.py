#!/usr/bin/env python3
"""From sound to the history window: three passes, the program killed in the middle of one of them, and what the window
exports of them."""

import csv
import sys
import unittest

import calibration
from calibration import RAW, SIDES
from direwolf_air import DirewolfAir
from station import MAIN_WINDOW, Program, StationTest, rig

EVERY_CHANNEL = [(side, calibration.GRIDS[grid][0], row)
                 for side, kinds in calibration.CHANNELS.items() for channels in kinds
                 for grid, row in (channel.split(" ", 1) for channel in channels)]


def readings_in(path):
    """The records of an export; none while it is not there."""
    if not path.is_file():
        return []
    with path.open(encoding="utf-8", newline="") as file:
        return list(csv.DictReader(file))


class AirToHistory(StationTest):
    def export(self, program, count):
        """Has the true window show and export all of the history, by keys. The readings come in by and by: so many are
        waited for."""
        program.activate(MAIN_WINDOW)
        program.key("alt+i")
        window = program.activate("Telemetry history")
        program.key("alt+r", "a")  # of the ranges the one that begins with A
        path = self.scratch / "history.csv"

        def exported():
            program.activate("Telemetry history")
            program.key("alt+x", "r")
            dialog = program.activate("Export readings")
            program.key("ctrl+a")
            program.type(path)
            program.key("Return")
            program.wait_until_gone(dialog)
            rig.wait_for(path.is_file, "the export is there", alive=program.process)
            readings = readings_in(path)
            path.unlink()
            return readings if len(readings) >= count else None
        readings = rig.wait_for(exported, f"{count} readings are exported", 60, alive=program.process)
        program.activate("Telemetry history")
        program.key("Escape")
        program.wait_until_gone(window)
        return readings

    def test_three_passes_one_of_them_with_a_kill_in_its_middle_are_exported_by_the_window(self):
        keys = list(RAW)
        lines = calibration.three_passes()
        with DirewolfAir() as engine:
            program = self.start(engine.port, {
                ("HISTORY", "CHANNELS"): ";".join("/".join(channel) for channel in EVERY_CHANNEL)})

            def hear(tour, some):
                engine.play([f"{SIDES[key[0]]}>APRS,WIDE2-2:{lines[tour, key]}" for key in some])
                for key in some:
                    program.wait_for_text(lines[tour, key], 60)

            program.wait_for_text("*** AGWPE V")
            hear(0, keys)
            hear(1, keys[:4])
            program.process.kill()
            program.process.wait()
            program = Program(program.folder, self.environment, self.scratch)
            self.addCleanup(rig.end, program.process)
            program.wait_for_text("*** AGWPE V", times=2)
            hear(1, keys[4:])
            hear(2, keys)
        expected = calibration.readings_of_three_passes(program.folder)
        self.assertEqual(len(expected), 96)
        exported = self.export(program, len(expected))
        program.end()

        def frames(readings):
            """Four readings each, which have one time: their order is nobody's matter."""
            return [sorted(readings[i:i + 4]) for i in range(0, len(readings), 4)]

        self.assertEqual(
            frames([(row["side"], row["grid"], row["row"], float(row["raw"]), float(row["value"])) for row in exported]),
            frames([(side, grid, row, float(raw), value) for _, _, side, _, _, grid, row, raw, value in expected]))
        kept = (program.folder / "tlm.txt").read_text(encoding="utf-8").splitlines()[1:]
        self.assertEqual([row["utc"] for row in exported], [line.split(",")[0] for line in kept for _ in range(4)])


if __name__ == "__main__":
    sys.exit(unittest.main(verbosity=2))
