#!/usr/bin/env python3
"""From sound to the grids: Dire Wolf demodulates, the program connects, shows, decodes, and comes back after a loss."""

import sys
import unittest

import calibration
from calibration import RAW, SIDES
from direwolf_air import DirewolfAir
from station import StationTest

class AirToGrids(StationTest):
    def test_telemetry_from_the_air_stands_calibrated_in_the_grids(self):
        with DirewolfAir() as engine:
            program = self.start(engine.port)
            program.wait_for_text("*** AGW-Connected to - localhost")
            program.wait_for_text("*** AGWPE V")
            lines = {key: calibration.line(10 + i, key[1], raw) for i, (key, raw) in enumerate(RAW.items())}
            engine.play([f"{SIDES[side]}>APRS,WIDE2-2:{lines[side, kind]}" for side, kind in RAW])
            for heard in lines.values():
                program.wait_for_text(heard)
            for callsign in SIDES.values():
                program.wait_for_line(rf"^\d\d:\d\d:\d\dR {callsign}>APRS,WIDE2-2 Port=1 <UI [^>]*>:\r?$")
            report = program.end()

        table = calibration.formulae(program.folder / "formula.txt")
        expected = {grid: {} for grid in calibration.GRIDS}
        for (side, kind), raw in RAW.items():
            for channel, value in enumerate(raw):
                grid, row, text = calibration.shown(table, side, kind, channel, value)
                expected[grid].setdefault(row, {})[side] = text
        self.assertEqual(sum(len(sides) for rows in expected.values() for sides in rows.values()), 32)
        for grid, rows in expected.items():
            for row, sides in rows.items():
                with self.subTest(grid=grid, row=row):
                    self.assertEqual(report.grids[grid][row], (sides.get("A", ""), sides.get("B", "")))
        for heard in lines.values():
            self.assertIn(heard, report.monitor)
        self.assertTrue((program.pictures / "frmQIRAN.png").is_file())

    def test_other_stations_are_shown_and_change_no_grid(self):
        with DirewolfAir() as engine:
            program = self.start(engine.port)
            program.wait_for_text("*** AGW-Connected to - localhost")
            engine.play(["N0CALL-9>APRS:" + calibration.line(1, 0, (1, 2, 3, 4)),
                         "XQ9ZZ-1>APRS:T#002,1,2,3", "XQ9ZZ-1>APRS:Thank you for listening"])
            program.wait_for_text("Thank you for listening")
            report = program.end()
        for rows in report.grids.values():
            self.assertEqual(set(rows.values()), {("", "")})
        self.assertIn("T#001,1,2,3,4", report.monitor)

    def test_an_engine_that_ends_and_comes_back_is_connected_again_after_the_retry(self):
        with DirewolfAir() as engine:
            program = self.start(engine.port)
            program.wait_for_text("*** AGW-Connected to - localhost")
            engine.stop()
            program.wait_for_text("*** AGW-Disconnected from - localhost")
            program.wait_for_text("Will automatically retry in 30 seconds time.")
            engine.start()
            program.wait_for_text("*** AGW-Connected to - localhost", seconds=45, times=2)
            heard = calibration.line(77, 3, (150, 147, 80, 170))
            engine.play([f"QIRAN-3>APRS:{heard}"])
            program.wait_for_text(heard)
            report = program.end()
        table = calibration.formulae(program.folder / "formula.txt")
        grid, row, text = calibration.shown(table, "B", 3, 0, 150)
        self.assertEqual(report.grids[grid][row], ("", text))
        self.assertEqual(report.monitor.count("*** AGW-Disconnected from - localhost"), 1)


if __name__ == "__main__":
    sys.exit(unittest.main(verbosity=2))
