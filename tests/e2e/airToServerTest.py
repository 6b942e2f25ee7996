#!/usr/bin/env python3
"""From sound to a server: the frames of a pass, demodulated by Dire Wolf, arrive at a server that takes SiDS requests
although it was down for half of the pass; by either of the engine's ports, the same."""

import os
import pathlib
import sys
import tempfile
import unittest

import calibration
from direwolf_air import DirewolfAir

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path[:0] = [str(ROOT / "tools"), str(ROOT / "tests/cli")]

import rig  # noqa: E402
import sids  # noqa: E402

PROGRAM = os.environ.get("QIRAN_CLI", "")
FRAMES = 8


class AirToServer(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory(prefix="qiran server ")
        self.addCleanup(scratch.cleanup)
        self.scratch = pathlib.Path(scratch.name)
        self.server = sids.SidsServer()
        self.addCleanup(self.server.stop)
        self.lines = [calibration.line(number, 3, (150, 147, 80, 170)) for number in range(FRAMES)]

    def a_pass(self, name, settings):
        """Hears all frames, the server being away from the middle until the end; answers what came there."""
        self.server.bodies.clear()
        with DirewolfAir() as engine:
            folder = rig.make_program_folder(self.scratch / name, engine.port, settings=settings(engine) | {
                ("FORWARD", "USE"): "TRUE", ("FORWARD", "URL"): self.server.url})
            with open(self.scratch / f"{name}.txt", "wb") as output, rig.running(
                    [PROGRAM, "--folder", folder, "listen"], env={"HOME": str(self.scratch)}, stdout=output) as process:
                rig.wait_for(lambda: b"Connected to" in (self.scratch / f"{name}.txt").read_bytes(), "it is connected",
                             alive=process)
                half = FRAMES // 2
                self.play(engine, self.lines[:half])
                rig.wait_for(lambda: len(self.server.taken) == half, "the first half is there", 60, alive=process)
                self.server.stop()
                self.play(engine, self.lines[half:])
                heard = f"T#{FRAMES - 1:03d}".encode()
                rig.wait_for(lambda: heard in (folder / "tlm.txt").read_bytes(), "all is heard", 60, alive=process)
                self.assertEqual(len(self.server.taken), half)
                self.server.start()
                rig.wait_for(lambda: len(self.server.taken) == FRAMES, "all is there", 120, alive=process)
            self.assertEqual(process.returncode, 0)
        taken = [sids.fields(body) for body in self.server.taken]
        self.assertEqual(sorted(one["timestamp"] for one in taken), [one["timestamp"] for one in taken])
        self.server.taken.clear()
        return [bytes.fromhex(one["frame"]) for one in taken]

    def play(self, engine, lines):
        # Others are on the air, too.
        engine.play([message for line in lines for message in (f"QIRAN-3>APRS,WIDE2-2:{line}", "N0CALL-9>APRS:not the satellite")])

    def test_all_frames_of_a_pass_arrive_by_either_port(self):
        by_agwpe = self.a_pass("agwpe", lambda engine: {})
        by_kiss = self.a_pass("kiss", lambda engine: {
            ("KISS", "USE"): "TRUE", ("KISS", "HOST_ADDRESS"): "127.0.0.1", ("KISS", "HOST_PORT"): str(engine.kiss_port)})
        self.assertEqual([frame[23:] for frame in by_kiss], [line.encode() + b"\n" for line in self.lines])  # behind the addresses
        self.assertEqual(by_kiss, by_agwpe)


if __name__ == "__main__":
    sys.exit(unittest.main(verbosity=2))
