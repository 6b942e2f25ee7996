#!/usr/bin/env python3
"""A week of a receiver without a screen, its silences skipped: the frames of all passes of seven days, an engine and a
server that come and go, and a station that keeps and records what it hears and sends it on.

Usage: weekTest.py COMMANDS. Each pass has one frame; two where QIRAN_LOOPS is 50 or more, and with QIRAN_LONG one every
ten seconds of it. QIRAN_SEED is what chance starts from.
"""

import json
import os
import pathlib
import random
import re
import signal
import subprocess
import sys
import tempfile
import time
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path[:0] = [str(ROOT / "tools"), str(ROOT / "tests/cli")]

import kiss  # noqa: E402
import rig  # noqa: E402
import sids  # noqa: E402
from sids import Answer  # noqa: E402

PROGRAM = sys.argv.pop(1)
IS_WHOLE = bool(os.environ.get("QIRAN_LONG"))
IS_LONGER = int(os.environ.get("QIRAN_LOOPS", 0)) >= 50
SEED = int(os.environ.get("QIRAN_SEED", 1))
FIRST_DAY = "2026-11-21T00:00Z"
MOST_MEMORY = 24 * 1024  # KiB
MOST_GROWTH = 1024


def memory_of(process):
    """The process's share of the machine's memory, and what of that is of no file, KiB. The share of what it has in common
    with other programs changes with these."""
    text = pathlib.Path(f"/proc/{process.pid}/smaps_rollup").read_text()
    return tuple(int(re.search(rf"^{name}:\s+(\d+) kB", text, re.MULTILINE).group(1)) for name in ("Pss", "Pss_Anon"))


def telemetry(number):
    """A frame of the satellite that no other one is like."""
    line = f"T#{number % 1000:03d},{number // 1000 % 256},147,80,170,0,0,00{number % 4:02b}1111,0"
    return kiss.ax25("QIRAN-3", "APRS", line.encode() + b"\r"), line.split(",")[:5]


class Week(unittest.TestCase):
    def setUp(self):
        self.random = random.Random(SEED)
        scratch = tempfile.TemporaryDirectory(prefix="qiran week ")
        self.addCleanup(scratch.cleanup)
        self.tnc, self.server = kiss.Tnc(), sids.SidsServer()
        self.addCleanup(self.tnc.stop)
        self.addCleanup(self.server.stop)
        self.folder = rig.make_program_folder(pathlib.Path(scratch.name) / "folder", 1, settings={
            ("KISS", "USE"): "TRUE", ("KISS", "HOST_ADDRESS"): "127.0.0.1", ("KISS", "HOST_PORT"): str(self.tnc.port),
            ("FORWARD", "USE"): "TRUE", ("FORWARD", "URL"): self.server.url})
        self.recording = self.folder / "week.kiss"
        self.heard = []
        self.sent = []
        self.troubles = {"server gone": 0, "engine gone": 0, "answers of trouble": 0}

    def command(self, *words):
        return [str(word) for word in (PROGRAM, "--folder", self.folder, *words)]

    def passes(self):
        """Of the week: the day, from 0, and how many frames are heard."""
        told = subprocess.run(self.command("passes", "--from", FIRST_DAY, "--days", "7", "--format", "json"), check=True,
                              capture_output=True, text=True).stdout
        passes = [json.loads(line) for line in told.splitlines()]
        days = sorted({one["rise"][:10] for one in passes})
        self.assertGreaterEqual(len(days), 7)
        return [(days.index(one["rise"][:10]), max(1, one["duration_s"] // 10) if IS_WHOLE else 2 if IS_LONGER else 1)
                for one in passes]

    def connected(self, process):
        rig.wait_for(self.tnc.connected, "the station is connected", 60, alive=process)

    def lose_the_engine(self, process):
        self.troubles["engine gone"] += 1
        self.tnc.stop()
        self.tnc.start()
        self.connected(process)

    def trouble_the_server(self):
        chance = self.random.random()
        if chance < 0.2:
            self.troubles["server gone"] += 1
            self.server.stop()
        elif chance < 0.4:
            self.troubles["answers of trouble"] += 1
            self.server.script.append(self.random.choice([
                Answer(503, "out of order"), Answer(429, headers={"Retry-After": "1"}), Answer(408), Answer(cut=True),
                Answer(after=0.5)]))

    def hear(self, frames):
        for _ in range(frames):
            frame, fields = telemetry(len(self.sent))
            others = kiss.ax25(f"N{self.random.randrange(10)}CALL", "APRS", b">the band is not empty")
            self.tnc.send(others, frame, others)
            self.heard += [others, frame, others]
            self.sent.append((frame, fields))
            time.sleep(0.01)

    def test_nothing_is_lost_and_memory_stays_flat(self):
        passes = self.passes()
        # Half a minute passes before the station connects again.
        losses = set(self.random.sample(range(len(passes)), 8 if IS_WHOLE else 1))
        memory = []
        began = time.monotonic()
        with rig.running(self.command("listen", "--quiet", "--record", self.recording), stderr=subprocess.DEVNULL) as process:
            self.connected(process)
            for number, (day, frames) in enumerate(passes):
                if number in losses:
                    self.lose_the_engine(process)
                self.trouble_the_server()
                self.hear(frames)
                if IS_WHOLE or not self.server.is_up():
                    time.sleep(self.random.uniform(0, 20 if IS_WHOLE else 1))
                if not self.server.is_up():
                    self.server.start()
                if number + 1 == len(passes) or passes[number + 1][0] > day:
                    rig.wait_for(lambda: self.history() == [fields for _, fields in self.sent], "the history has all",
                                 alive=process)
                    rig.wait_for(lambda: self.counts()["waiting"] == 0, f"the server has all, seed {SEED}",
                                 3600 if IS_WHOLE else 100, alive=process)
                    memory.append(memory_of(process))
            seconds = time.monotonic() - began
            process.send_signal(signal.SIGTERM)
            self.assertEqual(process.wait(30), 0)
        self.look(passes, memory, seconds)

    def look(self, passes, memory, seconds):
        # Nothing overtook anything: what came twice came one behind the other, byte for byte.
        bodies = self.server.bodies
        arrived = [body for i, body in enumerate(bodies) if i == 0 or body != bodies[i - 1]]
        repeats = len(bodies) - len(arrived)
        self.assertEqual([sids.frame(body) for body in arrived], [frame for frame, _ in self.sent], f"seed {SEED}")
        self.assertEqual(self.server.at_once, 1)
        recorded = list(kiss.unframed(self.recording.read_bytes()))
        self.assertEqual([data for command, data in recorded if command == 0], self.heard)
        self.assertEqual(sum(command == 9 for command, _ in recorded), len(self.heard))
        self.assertEqual(self.counts(), {"waiting": 0, "sent": len(self.sent), "discarded": 0, "dropped": 0})
        troubles = ", ".join(f"{what} {times} times" for what, times in self.troubles.items())
        print(f"{len(passes)} passes, {len(self.sent)} frames, {seconds:.0f} s; {troubles}; {repeats} requests repeated; "
              f"memory (PSS, its own part) after each day {memory} KiB; seed {SEED}")
        if "QIRAN_MEMORY_UNKNOWN" not in os.environ:
            self.assertLess(max(whole for whole, _ in memory), MOST_MEMORY)
            self.assertLess(memory[-1][1] - memory[0][1], MOST_GROWTH)

    def history(self):
        lines = (self.folder / "tlm.txt").read_text(encoding="utf-8").splitlines()[1:]
        return [line.split(",")[3:8] for line in lines]

    def counts(self):
        told = subprocess.run(self.command("forward", "status", "--format", "json"), check=True, capture_output=True,
                              text=True).stdout
        return {one["state"]: one["frames"] for one in map(json.loads, told.splitlines())}


if __name__ == "__main__":
    unittest.main(verbosity=2)
