#!/usr/bin/env python3
"""From sound to records: Dire Wolf demodulates, the station without a window prints what it hears, on a machine without
a display."""

import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

import calibration
from direwolf_air import DirewolfAir

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))

import rig  # noqa: E402

PROGRAM = os.environ.get("QIRAN_CLI", "")
GRID_NAMES = {"gTlm0": "POWER", "gTlm1": "CURRENT", "gTlm2": "TEMP"}
SIDES = {"A": "XQ9ZZ-1", "B": "QIRAN-3"}
RAW = {
    ("A", 0): (62, 41, 88, 17), ("A", 1): (54, 70, 96, 48), ("A", 2): (60, 66, 31, 105), ("A", 3): (152, 149, 84, 171),
    ("B", 0): (22, 58, 36, 90), ("B", 1): (44, 69, 94, 39), ("B", 2): (47, 65, 73, 99), ("B", 3): (150, 147, 80, 170),
}


def readings(folder, lines):
    """What the frames must come to: (source, sequence, side, frame type, channel, grid, row, raw, value)."""
    table = calibration.formulae(folder / "formula.txt")
    for (side, kind), raw in RAW.items():
        for channel, value in enumerate(raw):
            grid, row = calibration.CHANNELS[side][kind][channel].split(" ", 1)
            a, b, c, d = table[side, kind, GRID_NAMES[grid], row.upper()]
            converted = ((value ** 3.0 * a + value ** 2.0 * b) + c * value) + d
            yield (SIDES[side], lines[side, kind].split(",")[0], side, kind, channel + 1, GRID_NAMES[grid], row, value,
                   float(f"{converted:.15g}"))


class AirToCommands(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory(prefix="qiran commands ")
        self.addCleanup(scratch.cleanup)
        self.scratch = pathlib.Path(scratch.name)
        self.environment = {"HOME": scratch.name, "PATH": os.environ["PATH"], "TZ": "UTC"}  # and no display

    def listen(self, folder):
        process = subprocess.Popen([PROGRAM, "--folder", folder, "listen", "--format", "json"], env=self.environment,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.addCleanup(process.stderr.close)
        self.addCleanup(process.stdout.close)
        self.addCleanup(rig.end, process)
        return process

    def until(self, process, wanted):
        """The records up to the first one that is wanted."""
        read = []
        for line in process.stdout:
            read.append(json.loads(line))
            if wanted(read[-1]):
                return read
        raise AssertionError(f"it ended: {process.stderr.read()}\n{read}")

    def test_every_frame_from_the_air_and_its_converted_readings_are_printed(self):
        with DirewolfAir() as engine:
            folder = rig.make_program_folder(self.scratch / "folder", engine.port)
            process = self.listen(folder)
            self.until(process, lambda one: one.get("text", "").startswith("*** AGWPE V"))
            lines = {key: calibration.line(10 + i, key[1], raw) for i, (key, raw) in enumerate(RAW.items())}
            engine.play([f"{SIDES[side]}>APRS,WIDE2-2:{lines[side, kind]}" for side, kind in RAW]
                        + ["N0CALL-9>APRS:the last one"])
            read = self.until(process, lambda one: one.get("text", "").startswith("the last one"))
            self.assertEqual(rig.end(process), 0)
        frames = [one for one in read if one["type"] == "frame"]
        self.assertEqual([(one["source"], one["destination"], one.get("path", []), one["kind"], one["port"],
                           one["text"].rstrip("\r\n")) for one in frames],
                         [(SIDES[side], "APRS", ["WIDE2-2"], "U", 1, lines[side, kind]) for side, kind in RAW]
                         + [("N0CALL-9", "APRS", [], "U", 1, "the last one")])
        found = [(one["source"], one["sequence"], one["side"], one["frame_type"], one["channel"], one["grid"], one["row"],
                  one["raw"], one["value"]) for one in read if one["type"] == "reading"]
        self.assertEqual(len(found), 32)
        self.assertEqual(found, list(readings(folder, lines)))


if __name__ == "__main__":
    sys.exit(unittest.main(verbosity=2))
