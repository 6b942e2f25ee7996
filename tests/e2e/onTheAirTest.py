#!/usr/bin/env python3
"""A user at the keys sends a line, both beacons and a line through two digipeaters, and sees them come back."""

import re
import subprocess
import sys
import unittest

from direwolf_air import DirewolfAir
from station import MAIN_WINDOW, SIMULATOR, StationTest, rig

CALLSIGN = "N0CALL-7"
STATION = {
    ("SETUP", "CALLSIGN"): CALLSIGN, ("SETUP", "LATITUDE"): "5130.00N", ("SETUP", "LONGITUDE"): "00007.50W",
    ("SETUP", "LOCATOR"): "IO91WM", ("SETUP", "COMMENT"): "On the air",
}


def enter_station(program):
    """Fills in the station's information from the main window, by keys alone."""
    program.activate(MAIN_WINDOW)
    program.key("alt+o", "t")
    dialog = program.activate("Station Information")
    for field in (CALLSIGN.lower(), "51.30N", "000.07.50W", "On the air"):
        program.key("ctrl+a")
        program.type(field)
        program.key("Tab")
    program.key("alt+o")
    program.wait_until_gone(dialog)


def send_everything(program):
    """From the terminal: a line, both beacons, and a line through two digipeaters."""
    program.activate(MAIN_WINDOW)
    program.key("alt+t")
    program.activate("Terminal")
    program.key("alt+v", "ctrl+a", "BackSpace", "alt+r")
    program.type("Hello to all on the ground")
    program.key("Return")
    program.key("alt+a")
    program.key("alt+l")
    program.key("alt+v", "ctrl+a")
    program.type("qiran-1 wide2-2")
    program.key("alt+r")
    program.type("Through two digipeaters")
    program.key("Return")


class OnTheAir(StationTest):
    def test_what_a_user_sends_is_transmitted_and_comes_back_in_cyan_and_in_the_log(self):
        with DirewolfAir() as engine:
            program = self.start(engine.port, {key: "" for key in STATION})
            program.wait_for_text("*** AGW-Connected to - localhost")
            enter_station(program)
            settings = rig.read_settings(program.folder / rig.SETTINGS_FILE)
            self.assertEqual({key: settings[key] for key in STATION}, STATION)
            send_everything(program)
            sent = {
                "Hello to all on the ground": "CQ",
                "!5130.00N/00007.50W-On the air": "APQ36Q",
                ">IO91WM/- On the air": "APQ36Q",
                "Through two digipeaters": "CQ,QIRAN-1,WIDE2-2",
            }
            packets = {}
            for text, path in sent.items():
                found = program.wait_for_line(
                    rf"^\d\d:\d\d:\d\dT ({CALLSIGN}>{re.escape(path)}) Port=1 <UI [^>]*>:\r\n{re.escape(text)}\r$")
                packets[text] = f"{found.group(1)}:{text}"
            report = program.end()
            log = program.log().decode("cp1252")

        self.assert_log_is_what_the_pane_shows(log, report)
        for text in sent:
            self.assertIn(text, report.monitor)
        # The engine's greeting stands above, in green; all that follows was sent from here.
        picture = program.pictures / "frmTerm.png"
        self.assertLessEqual(self.rows(picture, "#00FF00").stop, self.rows(picture, "#00FFFF").start)
        position = self.decode_aprs(packets["!5130.00N/00007.50W-On the air"])
        self.assertRegex(position, r"N 51 30\.0000, W 000 07\.5000")
        self.assertRegex(self.decode_aprs(packets[">IO91WM/- On the air"]), r"Grid square = IO91WM")

    def test_the_engine_gets_the_frames_to_the_byte(self):
        with rig.Simulator(SIMULATOR) as engine:
            program = self.start(engine.port, STATION | {("SETUP", "COMMENT"): "Grüße, 5 €", ("TERMINAL", "PORT"): "2"})
            program.wait_for_text("*** AGW-Connected to - localhost")
            send_everything(program)
            plain = rig.wait_for(lambda: len(engine.frames("M")) == 3 and engine.frames("M"), "three frames without a path")
            routed = rig.wait_for(lambda: engine.frames("V"), "a frame with a path")
            program.wait_for_text("Through two digipeaters")
            report = program.end()
        self.assert_log_is_what_the_pane_shows(program.log().decode("cp1252"), report)

        def header(kind, to, length):
            return (bytes([1, 0, 0, 0, ord(kind), 0, 0xF0, 0]) + CALLSIGN.encode().ljust(10, b"\0")
                    + to.encode().ljust(10, b"\0") + length.to_bytes(4, "little") + bytes(4))

        expected = [("CQ", b"Hello to all on the ground\r"), ("APQ36Q", b"!5130.00N/00007.50W-Gr\xfc\xdfe, 5 \x80\r"),
                    ("APQ36Q", b">IO91WM/- Gr\xfc\xdfe, 5 \x80\r")]
        self.assertEqual(plain, [(header("M", to, len(data)), data) for to, data in expected])
        path = b"\x02" + b"QIRAN-1".ljust(10, b"\0") + b"WIDE2-2".ljust(10, b"\0")
        data = path + b"Through two digipeaters\r"
        self.assertEqual(routed, [(header("V", "CQ", len(data)), data)])

    def assert_log_is_what_the_pane_shows(self, log, report):
        """Byte for byte; the pane ends its lines in LF where the log has CR LF."""
        self.assertEqual(log.replace("\r\n", "\n"), report.terminal)
        self.assertEqual((log.count("\r"), log.count("\n")), (log.count("\r\n"),) * 2)

    def rows(self, picture, colour):
        """The rows of pixels of a picture that the colour spans."""
        box = subprocess.run(["convert", picture, "-fill", "black", "+opaque", colour, "-fill", "white", "-opaque", colour,
                              "-format", "%[fx:maxima] %@", "info:"], capture_output=True, text=True, check=True).stdout
        brightest, height, top = re.fullmatch(r"(\S+) \d+x(\d+)\+\d+\+(\d+)", box).groups()
        self.assertEqual(float(brightest), 1.0, f"nothing in {colour}")
        return range(int(top), int(top) + int(height))

    @staticmethod
    def decode_aprs(packet):
        return subprocess.run(["decode_aprs"], input=packet + "\n", capture_output=True, text=True, timeout=30).stdout


if __name__ == "__main__":
    sys.exit(unittest.main(verbosity=2))
