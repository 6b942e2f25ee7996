#!/usr/bin/env python3
"""The station without a window by a KISS TNC, and what it records, read again."""

import json
import subprocess
import sys
import unittest

from command import ROOT, records
from listenTest import RAW, StationTest

sys.path += [str(ROOT / "tools"), str(ROOT / "tests/e2e")]

import calibration  # noqa: E402
import kiss  # noqa: E402
import rig  # noqa: E402


class KissTest(StationTest):
    """Beside a simulated engine also a TNC."""

    def setUp(self):
        super().setUp()
        self.tnc = kiss.Tnc()
        self.addCleanup(self.tnc.stop)
        self.recording = self.scratch / "pass.kiss"

    def listen_to_tnc(self, *options):
        process = self.listen("--format", "json", "--kiss", f"127.0.0.1:{self.tnc.port}", *options)
        self.until(process, lambda one: one.get("text") == "*** KISS-Connected to - 127.0.0.1")
        rig.wait_for(self.tnc.connected, "the TNC has the station", alive=process)
        return process

    def frames_until(self, process, text):
        return self.until(process, lambda one: one["type"] == "frame" and one.get("text", "").startswith(text))


class Kiss(KissTest):
    def test_a_tnc_is_heard_whatever_the_settings_say_and_they_stay(self):
        process = self.listen_to_tnc()
        self.tnc.send(kiss.ax25("QIRAN-3", "APRS", calibration.line(24, 3, RAW).encode()), kiss.ax25("N0CALL", "CQ", b"a\0b"))
        read = self.frames_until(process, "a\0b")
        self.assertEqual([one["type"] for one in read], ["frame"] + 4 * ["reading"] + ["frame"])
        self.assertEqual(read[0]["hex"], calibration.line(24, 3, RAW).encode().hex().upper())
        self.assertEqual(read[-1]["hex"], "610062")
        self.end(process)
        self.assertNotIn(b"KISS", self.settings.read_bytes())

    def test_bytes_that_are_no_frame_have_neither_callsigns_nor_a_text(self):
        process = self.listen_to_tnc()
        self.tnc.send(b"\x82\xa0\xff\0", kiss.ax25("N0CALL", "CQ", b""), kiss.ax25("N0CALL", "CQ", b"last"))
        read = [{key: value for key, value in one.items() if key != "utc"} for one in self.frames_until(process, "last")]
        self.end(process)
        self.assertEqual(read[0], {"type": "frame", "port": 1, "kind": "U"})
        self.assertEqual((read[1]["text"], read[1]["hex"]), ("", ""))

    def test_people_are_told_bytes_that_are_no_frame(self):
        process = self.listen("--kiss", f"127.0.0.1:{self.tnc.port}")
        rig.wait_for(self.tnc.connected, "the TNC has the station", alive=process)
        self.tnc.send(b"\x82\xa0\xff\0")
        process.stdout.readline()  # connected
        self.assertTrue(process.stdout.readline().endswith(b"Z  1:Not an AX.25 frame, 4 bytes 82 A0 FF 00\n"))
        self.end(process)

    def test_the_settings_choose_too(self):
        tnc = kiss.Tnc()
        rig.write_settings(self.settings, {("KISS", "USE"): "TRUE", ("KISS", "HOST_ADDRESS"): "127.0.0.1",
                                           ("KISS", "HOST_PORT"): str(tnc.port)})
        process = self.listen("--format", "json")
        self.until(process, lambda one: one.get("text") == "*** KISS-Connected to - 127.0.0.1")
        tnc.stop()
        read = self.until(process, lambda one: "automatically retry" in one.get("text", ""))
        self.assertEqual(read[-2]["text"], "*** KISS-Disconnected from - 127.0.0.1")
        self.end(process)

    def test_a_wrong_address_is_a_wrong_call(self):
        for wrong in ("8001", "shack:", "shack:0", "shack:65536", ":8001", "fe80::1:8001", "[]:1", "shack:80x"):
            with self.subTest(wrong=wrong):
                self.call("listen", "--kiss", wrong, code=2)
                self.assertIn("--kiss takes HOST:PORT such as localhost:8001", self.said)


class Record(KissTest):
    def test_the_frames_of_a_tnc_are_read_again_by_import_and_decode(self):
        process = self.listen_to_tnc("--record", self.recording)
        lines = [calibration.line(number, number % 4, RAW) for number in range(1, 9)]
        self.tnc.send(*(kiss.ax25("QIRAN-3", "APRS", line.encode() + b"\r") for line in lines),
                      kiss.ax25("N0CALL", "CQ", b"last\xc0\xdb"))
        read = self.frames_until(process, "last")
        self.end(process)
        live = [one for one in read if one["type"] == "reading"]
        self.assertEqual(len(live), 32)
        self.assertEqual(records(self.call("decode", "--format", "json", self.recording)), live)
        history = (self.folder / "tlm.txt").read_bytes()
        self.assertIn("frames that are known already: 8\n", self.call("import", self.recording))
        (self.folder / "tlm.txt").unlink()
        self.assertIn("frames that come in: 8\n", self.call("import", self.recording))
        self.assertTrue((self.folder / "tlm.txt").read_bytes().startswith(history))  # and a header behind it

    def test_frames_of_an_engine_are_recorded_whole(self):
        process = self.listen("--format", "json", "--record", self.recording)
        self.connected(process)
        line = calibration.line(24, 3, RAW)
        self.engine.tell(f"heard QIRAN-3>APRS,WIDE2-2:{line}\\n", "heard N0CALL-9>APRS:a\\x00b")
        read = self.until(process, lambda one: one["type"] == "frame" and one["source"] == "N0CALL-9")
        self.assertEqual([one["type"] for one in read], ["frame"] + 4 * ["reading"] + ["frame"])  # each once
        self.assertEqual(read[-1]["hex"], "610062")
        self.end(process)
        self.assertEqual(records(self.call("decode", "--format", "json", self.recording)), read[1:5])
        self.assertIn(b"a\0b\xc0", self.recording.read_bytes())

    def test_a_recording_is_continued_and_a_torn_end_closed_off(self):
        whole = kiss.recorded(1795274923120, kiss.ax25("QIRAN-3", "APRS", calibration.line(1, 3, RAW).encode()))
        torn = kiss.recorded(1795274924000, kiss.ax25("QIRAN-3", "APRS", calibration.line(2, 3, RAW).encode()))[:-9]
        self.recording.write_bytes(whole + torn)
        process = self.listen_to_tnc("--record", self.recording)
        self.tnc.send(kiss.ax25("QIRAN-3", "APRS", calibration.line(3, 3, RAW).encode()))
        self.frames_until(process, "T#003")
        self.end(process)
        self.assertTrue(self.recording.read_bytes().startswith(whole + torn))
        decoded = records(self.call("decode", "--format", "json", self.recording))
        self.assertEqual([one["sequence"] for one in decoded], 4 * ["T#001"] + 4 * ["T#003"])
        self.assertIn("not understood: 1", self.said)

    def test_where_there_is_no_right_it_is_said_once_and_the_station_goes_on(self):
        process = self.listen("--format", "json", "--kiss", f"127.0.0.1:{self.tnc.port}",
                              "--record", self.scratch / "nowhere/pass.kiss")
        rig.wait_for(self.tnc.connected, "the TNC has the station", alive=process)
        self.tnc.send(kiss.ax25("N0CALL", "CQ", b"first"), kiss.ax25("N0CALL", "CQ", b"second"))
        read = self.frames_until(process, "second")
        self.assertEqual([one["text"] for one in read if one["type"] == "status" and "kept" in one["text"]],
                         ["*** What is heard cannot be kept in pass.kiss - No such file or directory"])
        self.end(process)

    def test_another_file_is_left_alone(self):
        self.recording.write_bytes(b"a letter")
        self.call("listen", "--record", self.recording, code=1)
        self.assertIn(f"{self.recording} is no recording", self.said)
        self.assertEqual(self.recording.read_bytes(), b"a letter")

    def test_a_recording_comes_through_standard_input_too(self):
        recording = b"".join(kiss.recorded(1795274923120 + number, kiss.ax25("QIRAN-3", "APRS", line.encode()))
                             for number, line in enumerate([calibration.line(1, 3, RAW), calibration.line(2, 0, RAW)]))
        process = self.start("decode", "--format", "json", stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        out, _ = process.communicate(recording, timeout=60)
        read = [json.loads(line) for line in out.splitlines()]
        self.assertEqual([one["utc"] for one in read], 4 * ["2026-11-21T15:28:43.120Z"] + 4 * ["2026-11-21T15:28:43.121Z"])


if __name__ == "__main__":
    sys.exit(unittest.main(verbosity=2))
