#!/usr/bin/env python3
"""The first hour: from the installed package on an empty account to frames in the grids, with nothing but what the
program says and offers. QIRAN_SCREENSHOTS names a folder for a picture of each step."""

import functools
import http.server
import os
import pathlib
import re
import subprocess
import sys
import threading
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path[:0] = [str(ROOT / "tools"), str(ROOT / "tests/e2e")]

import calibration  # noqa: E402
import rig  # noqa: E402
from direwolf_air import DirewolfAir  # noqa: E402
from packages import PackagesTest  # noqa: E402
from station import DesktopTest, Program  # noqa: E402

MAIN = r"QIRAN Telemetry Decoder +V.*"
MESSAGE = r"QIRAN Telemetry Decoder"
KEPS = ROOT / "data/demo/Keps/example.txt"
RAW = {("A", 0): (142, 108, 134, 67), ("A", 3): (168, 168, 106, 172), ("B", 1): (107, 133, 137, 95),
       ("B", 3): (169, 166, 101, 168)}
SIDES = {"A": "XQ9ZZ-1", "B": "QIRAN-3"}


class ElementServer:
    """The address of a server of the files in a folder."""

    class Handler(http.server.SimpleHTTPRequestHandler):
        def log_message(self, *_):
            pass

    def __init__(self, folder):
        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), functools.partial(self.Handler, directory=folder))
        self.address = f"127.0.0.1:{self.server.server_port}"
        threading.Thread(target=self.server.serve_forever, daemon=True).start()

    def stop(self):
        self.server.shutdown()
        self.server.server_close()


class FirstHour(PackagesTest, DesktopTest):
    screen = "1366x768x24"

    def setUp(self):
        DesktopTest.setUp(self)
        self.root = self.install()
        self.folder = self.scratch / "home/.local/share/QiranDecode"
        self.environment["PATH"] = f"{self.root / 'usr/bin'}:{self.environment['PATH']}"
        self.steps = 0

    def start(self):
        """Starts the program as the desktop's menu does."""
        entry = (self.root / "usr/share/applications/qirandecode.desktop").read_text()
        command = re.search("^Exec=(.*)$", entry, re.MULTILINE).group(1).split()
        command[0] = self.root / "usr/bin" / command[0]
        program = Program(self.folder, self.environment, self.scratch, command)
        self.addCleanup(rig.end, program.process)
        return program

    def look(self, what):
        """Leaves a picture of the screen, for a person to look at."""
        self.steps += 1
        if "QIRAN_SCREENSHOTS" in os.environ:
            picture = pathlib.Path(os.environ["QIRAN_SCREENSHOTS"], f"first-hour-{self.steps:02}-{what}.png")
            subprocess.run(["import", "-window", "root", picture], env=self.environment, check=True)

    def answer(self, program, title, what):
        """Waits for a message, and presses Enter."""
        box = program.activate(title)
        self.look(what)
        program.key("Return")
        program.wait_until_gone(box)

    def leave(self, program):
        program.activate(MAIN)
        program.key("alt+x")
        self.assertEqual(program.process.wait(30), 0, program.errors())

    def paste(self, program, text):
        subprocess.run(["xclip", "-selection", "clipboard"], input=text, text=True, env=self.environment, check=True,
                       stdout=subprocess.DEVNULL)
        program.key("ctrl+v")

    def setting(self, section, key):
        return rig.read_settings(self.folder / rig.SETTINGS_FILE).get((section, key))

    def place(self):
        return self.setting("SETUP", "LEFT"), self.setting("SETUP", "TOP")

    def test_from_an_empty_account_to_frames_in_the_grids(self):
        # The first start says what is missing and where it belongs, and its help opens.
        program = self.start()
        program.activate("QiranDecode")
        self.look("no-formula")
        program.key("F1")
        program.activate(".* Help")
        self.look("help-on-formula")
        program.key("Escape")
        self.answer(program, "QiranDecode", "no-formula-again")
        self.assertNotEqual(program.process.wait(30), 0)
        self.assertIn(str(self.folder / "formula.txt"), program.errors())
        (self.folder / "formula.txt").write_bytes((self.folder / "formula.example.txt").read_bytes())

        # The second says what else is missing, and so does the guide. Started again the window is where it was.
        places = []
        for _ in range(2):
            program = self.start()
            self.answer(program, MESSAGE, "no-position")
            self.answer(program, MESSAGE, "no-elements")
            program.activate(MAIN)
            self.look("guide")
            self.leave(program)
            places.append(self.place())
        self.assertEqual(len(set(places)), 1, places)

        program = self.start()
        self.answer(program, MESSAGE, "no-position")
        self.answer(program, MESSAGE, "no-elements")
        with DirewolfAir() as engine:
            self.mend(program, engine)
            for number, (side, kind) in enumerate(RAW):
                engine.play([f"{SIDES[side]}>APRS:{calibration.line(number, kind, RAW[side, kind])}"])
            rig.wait_for(lambda: (self.folder / "tlm.txt").is_file()
                         and (self.folder / "tlm.txt").read_text().count("T#") == len(RAW), "four frames are kept", 40,
                         alive=program.process)
            main = program.activate(MAIN)
            program.xdotool("mousemove", "--window", main, 100, 70, "click", 1)
            self.look("frames-in-the-grids")
            program.key("ctrl+a", "ctrl+c")
            copied = subprocess.run(["xclip", "-selection", "clipboard", "-o"], env=self.environment, text=True,
                                    capture_output=True, stdin=subprocess.DEVNULL, timeout=30).stdout
            self.leave(program)
        table = calibration.formulae(self.folder / "formula.txt")
        power = {row: {} for row in ("Batt A", "Batt B", "P Out", "8V Reg")}
        for side in SIDES:
            for channel, raw in enumerate(RAW[side, 3]):
                _, row, text = calibration.shown(table, side, 3, channel, raw)
                power[row][side] = text
        self.assertEqual([line.split("\t") for line in copied.splitlines()],
                         [["POWER", "A", "B"]] + [[row, values["A"], values["B"]] for row, values in power.items()])

        # Nothing is missing any more: no message, no guide.
        program = self.start()
        program.activate(MAIN)
        self.assertEqual(len(program.windows()), 1)
        self.look("the-next-day")
        self.leave(program)

    def mend(self, program, engine):
        """What the guide's buttons open, one after the other, by their keys. The engine's dialog comes from the menu: on a
        machine with an engine on the usual port the guide has no button for it."""
        main = program.activate(MAIN)
        program.key("alt+o", "a")
        dialog = program.activate("AGWPE Setup")
        program.key("Tab")
        program.type(str(engine.port))
        self.look("engine")
        program.key("Return")
        program.wait_until_gone(dialog)
        rig.wait_for(lambda: "Attached to" in engine.output() or "Connected to" in engine.output(), "the engine has the program",
                     alive=program.process)

        program.activate(MAIN)
        program.key("alt+a")
        dialog = program.activate("Station Information")
        program.type("n0call")
        program.key("Tab")
        self.paste(program, "51.50000, -0.12000")  # as a map's page gives it
        program.xdotool("key", "--delay", "400", "alt+u", "Tab")  # a button pressed by its key works a moment later
        self.look("position")
        program.key("Return")
        program.wait_until_gone(dialog)
        self.assertEqual((self.setting("SETUP", "LATITUDE"), self.setting("SETUP", "LONGITUDE")), ("5130.00N", "00007.20W"))

        lines = KEPS.read_text().splitlines(keepends=True)
        served = self.scratch / "served"
        served.mkdir()
        (served / "amateur.txt").write_text("".join(lines[:3]))
        (served / "iss.txt").write_text("".join(lines[3:]))
        server = ElementServer(served)
        self.addCleanup(server.stop)
        program.activate(MAIN)
        program.key("alt+k")
        dialog = program.activate("Download Keps")
        program.type(f"http://{server.address}/amateur.txt")
        program.key("Tab")
        program.type(f"{server.address}/iss.txt")
        self.look("elements")
        program.key("Return")
        self.answer(program, MESSAGE, "downloaded")
        program.wait_until_gone(dialog)
        self.assertEqual(self.setting("GUIDE", "SHOW"), "FALSE")
        rig.wait_for(lambda: program.xdotool("getactivewindow").stdout.strip() == main, "the main window is active again",
                     alive=program.process)
        self.look("nothing-missing")


if __name__ == "__main__":
    sys.exit(unittest.main(verbosity=2))
