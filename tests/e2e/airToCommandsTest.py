#!/usr/bin/env python3
"""From sound to records: Dire Wolf demodulates, the station without a window prints what it hears, on a machine without
a display."""

import csv
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

import calibration
from calibration import RAW, SIDES, readings
from direwolf_air import DirewolfAir

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))

import rig  # noqa: E402

PROGRAM = os.environ.get("QIRAN_CLI", "")


class AirToCommands(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory(prefix="qiran commands ")
        self.addCleanup(scratch.cleanup)
        self.scratch = pathlib.Path(scratch.name)
        self.environment = {"HOME": scratch.name, "PATH": os.environ["PATH"], "TZ": "UTC"}  # and no display

    def listen(self, folder, *options):
        process = subprocess.Popen([PROGRAM, "--folder", folder, "listen", "--format", "json", *options], env=self.environment,
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

    def test_three_passes_one_of_them_with_a_kill_in_its_middle_stand_in_the_history(self):
        sides = list(RAW)
        numbered = calibration.three_passes()
        with DirewolfAir() as engine:
            folder = rig.make_program_folder(self.scratch / "folder", engine.port)

            def connected():
                process = self.listen(folder)
                self.until(process, lambda one: one.get("text", "").startswith("*** AGWPE V"))
                return process

            def hear(process, tour, keys):
                """Plays frames and waits for the readings of the last one."""
                engine.play([f"{SIDES[key[0]]}>APRS,WIDE2-2:{numbered[tour, key]}" for key in keys])
                last = numbered[tour, keys[-1]].split(",")[0]
                return self.until(process, lambda one: one["type"] == "reading" and one["sequence"] == last
                                  and one["channel"] == 4)

            process = connected()
            heard = hear(process, 0, sides)
            heard += hear(process, 1, sides[:4])
            process.kill()
            process.wait()
            process = connected()
            heard += hear(process, 1, sides[4:])
            heard += hear(process, 2, sides)
            self.assertEqual(rig.end(process), 0)
        heard = [one for one in heard if one["type"] == "reading"]
        told = subprocess.run([PROGRAM, "--folder", folder, "history", "--format", "json"], env=self.environment,
                              stdin=subprocess.DEVNULL, capture_output=True, text=True, check=True)
        self.assertEqual(told.stderr, "")
        kept = [json.loads(line) for line in told.stdout.splitlines()]
        self.assertEqual(kept, heard)
        found = [(one["source"], one["sequence"], one["side"], one["frame_type"], one["channel"], one["grid"], one["row"],
                  one["raw"], one["value"]) for one in kept]
        expected = calibration.readings_of_three_passes(folder)
        self.assertEqual(len(found), 96)
        self.assertEqual(found, expected)
        exported = subprocess.run([PROGRAM, "--folder", folder, "history", "--format", "csv"], env=self.environment,
                                  stdin=subprocess.DEVNULL, capture_output=True, text=True, check=True).stdout
        self.assertEqual([(row["sequence"], row["grid"], row["row"], float(row["raw"]), float(row["value"]))
                          for row in csv.DictReader(exported.splitlines())],
                         [(one[1], one[5], one[6], one[7], one[8]) for one in expected])

    def history(self, folder):
        """The lines of a folder's history without their times."""
        return [line.split(",", 1)[1] for line in (folder / "tlm.txt").read_text(encoding="utf-8").splitlines()]

    def test_both_ports_of_an_engine_come_to_the_same(self):
        """The same audio: by AGWPE's text, by its raw frames too, and by KISS."""
        with DirewolfAir() as engine:
            folders = {name: rig.make_program_folder(self.scratch / name, engine.port) for name in ("text", "raw", "kiss")}
            recordings = {name: self.scratch / f"{name}.kiss" for name in ("raw", "kiss")}
            processes = {
                "text": self.listen(folders["text"]),
                "raw": self.listen(folders["raw"], "--record", recordings["raw"]),
                "kiss": self.listen(folders["kiss"], "--record", recordings["kiss"],
                                    "--kiss", f"localhost:{engine.kiss_port}")}
            for name, process in processes.items():
                self.until(process, lambda one: one.get("text", "").startswith(
                    "*** KISS-Connected" if name == "kiss" else "*** Port1"))
            lines = {key: calibration.line(10 + i, key[1], raw) for i, (key, raw) in enumerate(RAW.items())}
            engine.play([f"{SIDES[side]}>APRS,QIRAN-1*,WIDE2-2:{lines[side, kind]}" for side, kind in RAW]
                        + ["N0CALL-9>APRS:before<0x00>after", "N0CALL-9>APRS:the last one"])
            read = {name: self.until(process, lambda one: one.get("text", "").startswith("the last one"))
                    for name, process in processes.items()}
            for process in processes.values():
                self.assertEqual(rig.end(process), 0)

        def told(name, *left_out):
            return [{key: value for key, value in one.items() if key not in ("utc", *left_out)} for one in read[name]]

        def frames(name):
            return [one for one in told(name) if one["type"] == "frame"]

        self.assertEqual(len(frames("kiss")), 10)
        # Raw frames and KISS: everything but the text of the frame with a NUL, which AGWPE cuts; its bytes are whole.
        self.assertEqual([{**one, "text": ""} for one in told("raw")], [{**one, "text": ""} for one in told("kiss")])
        self.assertEqual([one for one in told("raw") if one.get("source") != "N0CALL-9"],
                         [one for one in told("kiss") if one.get("source") != "N0CALL-9"])
        self.assertEqual(frames("raw")[-2]["text"], "before")
        self.assertTrue(bytes.fromhex(frames("raw")[-2]["hex"]).startswith(b"before\0after"))
        self.assertEqual(frames("kiss")[0]["path"], ["QIRAN-1*", "WIDE2-2"])
        # The text alone: no bytes and no marks besides.
        marked = [{**one, "path": [each.rstrip("*") for each in one["path"]]} if "path" in one else one
                  for one in told("raw", "hex")]
        self.assertEqual(told("text"), marked)
        self.assertEqual(len([one for one in read["text"] if one["type"] == "reading"]), 32)
        self.assertEqual(self.history(folders["text"]), self.history(folders["kiss"]))
        self.assertEqual(self.history(folders["raw"]), self.history(folders["kiss"]))
        self.assertEqual(len(self.history(folders["kiss"])), 9)
        # And the recordings are the same, and come to the same.
        decoded = {name: subprocess.run([PROGRAM, "--folder", folders[name], "decode", "--format", "json", recording],
                                        env=self.environment, capture_output=True, text=True, check=True).stdout
                   for name, recording in recordings.items()}
        for name, text in decoded.items():
            self.assertEqual([json.loads(line) for line in text.splitlines()],
                             [one for one in read[name] if one["type"] == "reading"])


if __name__ == "__main__":
    sys.exit(unittest.main(verbosity=2))
