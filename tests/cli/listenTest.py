#!/usr/bin/env python3
"""The station without a window, beside a simulated packet engine; and what it prints, out of files."""

import datetime
import fcntl
import http.server
import os
import signal
import struct
import subprocess
import sys
import termios
import threading
import unittest

from command import NAME, ROOT, CommandTest, records, rows

sys.path += [str(ROOT / "tools"), str(ROOT / "tests/e2e")]

import calibration  # noqa: E402
import rig  # noqa: E402

SIMULATOR = os.environ["QIRAN_SIMULATOR"]
GRID_NAMES = {"gTlm0": "POWER", "gTlm1": "CURRENT", "gTlm2": "TEMP"}
RAW = (150, 147, 80, 170)


def expected_readings(folder, side, frame_type, raw):
    """What the four channels must come to: (grid, row, raw, value)."""
    table = calibration.formulae(folder / "formula.txt")
    for channel, value in enumerate(raw):
        grid, row = calibration.CHANNELS[side][frame_type][channel].split(" ", 1)
        a, b, c, d = table[side, frame_type, GRID_NAMES[grid], row.upper()]
        yield GRID_NAMES[grid], row, value, ((value ** 3.0 * a + value ** 2.0 * b) + c * value) + d


class StationTest(CommandTest):
    def setUp(self):
        super().setUp()
        self.engine = rig.Simulator(SIMULATOR)
        self.addCleanup(self.engine.__exit__)
        self.set_port(self.engine.port)

    def set_port(self, port):
        rig.write_settings(self.settings, {("AGWPE", "HOST_ADDRESS"): "127.0.0.1", ("AGWPE", "HOST_PORT"): str(port)})

    def listen(self, *options, **how):
        """A running station; its lines are read by `line` and `until`."""
        process = self.start("listen", *options, stdout=subprocess.PIPE, stderr=subprocess.PIPE, **how)
        self.addCleanup(self.close, process)
        return process

    @staticmethod
    def close(process):
        rig.end(process)
        for stream in (process.stdout, process.stderr):
            stream.close()

    def until(self, process, condition):
        """Reads records until one is wanted; answers all of them."""
        read = []
        while not read or not condition(read[-1]):
            line = process.stdout.readline()
            if not line:
                self.fail(f"it ended: {process.stderr.read().decode()}\n{read}")
            read += records(line.decode())
        return read

    def connected(self, process):
        """Reads on until the station hears what the engine hears."""
        self.until(process, lambda one: one["type"] == "status" and one["text"].startswith("*** Port1"))

    def end(self, process, number=signal.SIGTERM):
        process.send_signal(number)
        out, errors = process.communicate(timeout=30)
        self.assertEqual(process.returncode, 0, errors)
        return out.decode(), errors.decode()


class Listen(StationTest):
    def test_frames_and_readings_are_records_as_they_come(self):
        process = self.listen("--format", "json")
        self.connected(process)
        line = calibration.line(24, 3, RAW)
        before = datetime.datetime.now(datetime.timezone.utc)
        self.engine.tell("port 1", f"heard QIRAN-3>APRS,WIDE2-2:{line}\\n")
        read = self.until(process, lambda one: one["type"] == "reading" and one["channel"] == 4)
        frame = read[0]
        self.assertEqual(list(frame), [key for key in ("type", "utc", "port", "kind", "source", "destination", "path", "pid",
                                                       "text", "hex") if key in frame])
        self.assertEqual((frame["type"], frame["port"], frame["kind"], frame["source"], frame["destination"], frame["path"]),
                         ("frame", 1, "U", "QIRAN-3", "APRS", ["WIDE2-2"]))
        self.assertEqual(frame["text"].rstrip("\r\n"), line)
        self.assertRegex(frame["utc"], r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z$")
        heard = datetime.datetime.fromisoformat(frame["utc"].replace("Z", "+00:00"))
        self.assertLess(abs((heard - before).total_seconds()), 20)
        readings = read[1:]
        self.assertEqual([(one["grid"], one["row"], one["raw"]) for one in readings],
                         [wanted[:3] for wanted in expected_readings(self.folder, "B", 3, RAW)])
        for channel, (one, wanted) in enumerate(zip(readings, expected_readings(self.folder, "B", 3, RAW)), start=1):
            self.assertEqual((one["utc"], one["source"], one["side"], one["sequence"], one["frame_type"], one["channel"]),
                             (frame["utc"], "QIRAN-3", "B", "T#024", 3, channel))
            self.assertAlmostEqual(one["value"], wanted[3], places=9)
        out, errors = self.end(process)
        self.assertEqual(errors, "")

    def test_other_stations_are_frames_and_no_readings(self):
        process = self.listen("--format", "json")
        self.connected(process)
        self.engine.tell(f"heard N0CALL-9>APRS:{calibration.line(1, 0, RAW)}\\n", "heard N0CALL>CQ,QIRAN-1*:last\\n")
        read = self.until(process, lambda one: one.get("text", "").startswith("last"))
        self.assertEqual([one["type"] for one in read], ["frame", "frame"])

    def test_text_is_for_people_and_obeys_no_control_character(self):
        process = self.listen()
        while b"*** Port1" not in process.stdout.readline():
            pass
        self.engine.tell("heard N0CALL>APRS:red\\x1b[31m\\n", f"heard QIRAN-3>APRS:{calibration.line(7, 3, RAW)}\\n")
        lines = [process.stdout.readline().decode() for _ in range(3)]
        self.assertRegex(lines[0], r"^\S+Z  N0CALL>APRS: red<0x1b>\[31m")
        self.assertRegex(lines[1], r"^\S+Z  QIRAN-3>APRS: T#007,")
        self.assertRegex(lines[2], r"^\S+Z  QIRAN-3 B POWER Batt A = \d+\.\d+\n$")

    def test_quiet_prints_nothing_and_logs(self):
        process = self.listen("--quiet")
        self.engine.tell("await", f"heard QIRAN-3>APRS:{calibration.line(7, 3, RAW)}\\n")
        rig.wait_for(lambda: any(b"T#007" in path.read_bytes() for path in self.folder.glob("LOGS/*.TXT")),
                     "the log holds the frame", alive=process)
        self.assertEqual(self.end(process), ("", ""))

    def test_a_loss_is_said_and_the_end_is_orderly(self):
        for number in (signal.SIGTERM, signal.SIGINT):
            with self.subTest(number=number):
                process = self.listen("--format", "json")
                self.connected(process)
                self.engine.tell("drop")
                read = self.until(process, lambda one: "automatically retry" in one.get("text", ""))
                self.assertTrue(any("AGW-Disconnected" in one["text"] for one in read))
                self.end(process, number)
                self.assertFalse((self.folder / "QiranDecode.lock").exists())

    def test_it_holds_the_folder_and_reading_commands_work_beside_it(self):
        process = self.listen("--format", "json")
        self.connected(process)
        self.call("listen", code=1)
        self.assertIn("already running", self.said)
        self.assertIn(str(process.pid), self.said)
        self.call("config", "set", "NOTICE/MINUTES", "7", code=1)
        for words in (["config", "list"], ["passes"], ["where"], ["keps", "list"], ["decode"]):
            self.call(*words)
        self.end(process)
        self.call("config", "set", "NOTICE/MINUTES", "7")

    def test_killed_and_started_again_it_runs(self):
        process = self.listen("--format", "json")
        self.connected(process)
        process.kill()
        process.wait()
        again = self.listen("--format", "json")
        self.connected(again)
        self.end(again)

    def test_a_reader_that_goes_away_ends_it(self):
        process = self.listen("--format", "json")
        self.connected(process)
        process.stdout.close()
        self.engine.tell("heard N0CALL>APRS:one\\n")
        self.assertEqual(process.wait(30), 0)
        self.assertEqual(process.stderr.read(), b"")

    def test_a_reader_that_stops_reading_does_not_keep_it_from_ending(self):
        process = self.listen("--format", "json")
        self.connected(process)
        self.engine.tell(*["heard N0CALL>APRS:" + "x" * 200 + "\\n"] * 2000)
        rig.wait_for(lambda: self.waiting(process) > 30000, "the pipe fills", alive=process)
        process.send_signal(signal.SIGTERM)
        self.assertEqual(process.wait(30), 0)

    @staticmethod
    def waiting(process):
        """How many bytes the pipe to us holds, of about 65,000 at most."""
        return struct.unpack("i", fcntl.ioctl(process.stdout.fileno(), termios.FIONREAD, b"\0" * 4))[0]

    def test_a_full_disk_ends_it_with_the_reason(self):
        with open("/dev/full", "wb") as full:
            process = self.start("listen", "--format", "json", stdout=full, stderr=subprocess.PIPE)
            self.addCleanup(rig.end, process)
            _, errors = process.communicate(timeout=60)
        self.assertEqual(process.returncode, 1)
        self.assertIn(b"No space left on device", errors)

    def test_what_is_missing_is_said(self):
        (self.folder / "formula.txt").rename(self.folder / "away")
        self.call("listen", code=1)
        self.assertIn(str(self.folder / "formula.txt"), self.said)
        (self.folder / "formula.txt").write_text("A,0,CURRENT,Q+,0,0,1,0\n")
        self.call("listen", code=1)
        self.assertRegex(self.said, "formula.txt, line 1: no such grid or row")
        (self.folder / "away").rename(self.folder / "formula.txt")
        (self.folder / "Keps/example.txt").unlink()
        rig.write_settings(self.settings, {("SETUP", "LATITUDE"): ""})
        process = self.listen("--format", "json")
        self.connected(process)
        _, errors = self.end(process)
        self.assertIn(NAME + "Pass predictions will not be not available", errors)
        self.assertIn(NAME + "No Keps found for QIRAN and ISS.", errors)


class Decode(CommandTest):
    LINE = calibration.line(24, 3, RAW)

    def decode(self, text, *words):
        return records(self.call("decode", "--format", "json", *words, typed=text))

    def test_every_kind_of_line_gives_the_same_readings(self):
        inputs = {f"QIRAN-3,{self.LINE}": None,
                  f"[0.3] QIRAN-3>APRS,WIDE2-2*:{self.LINE}": None,
                  f"2026-11-21 15:28:43 UTC QIRAN-3>APRS:{self.LINE}<0x0d>": "2026-11-21T15:28:43.000Z",
                  f"12:00:01R QIRAN-3>APRS Port=1 <UI Len=42>:\r\n{self.LINE}\r\n": None}
        wanted = list(expected_readings(self.folder, "B", 3, RAW))
        for text, utc in inputs.items():
            with self.subTest(text=text):
                found = self.decode(text + "\n")
                self.assertEqual(self.said, "")
                self.assertEqual([(one["grid"], one["row"], one["raw"]) for one in found], [one[:3] for one in wanted])
                for one, expected in zip(found, wanted):
                    self.assertAlmostEqual(one["value"], expected[3], places=9)
                    self.assertEqual((one.get("utc"), one["side"], one["sequence"]), (utc, "B", "T#024"))

    def test_files_are_read_in_their_order_and_what_is_not_understood_is_counted(self):
        for name, number in (("one", 1), ("two", 2)):
            (self.scratch / name).write_text(f"noise\nQIRAN-3,{calibration.line(number, 3, RAW)}\n")
        (self.scratch / "long").write_bytes(b"x" * 100000 + b"\n" + f"QIRAN-3,{self.LINE}".encode())
        found = rows(self.call("decode", "--format", "csv", self.scratch / "one", self.scratch / "two", self.scratch / "long"))
        self.assertEqual([one["sequence"] for one in found], [name for name in ("T#001", "T#002", "T#024") for _ in range(4)])
        self.assertEqual(self.said, NAME + "lines that were not understood: 3\n")
        self.call("decode", self.scratch / "none", self.scratch / "one", self.scratch, code=1)
        self.assertIn(f"{self.scratch / 'none'} cannot be read", self.said)
        self.assertIn(f"{self.scratch} cannot be read", self.said)

    def test_readings_are_shown_before_more_is_waited_for(self):
        process = self.start("decode", "--format", "json", stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        process.stdin.write(f"QIRAN-3,{self.LINE}\n".encode())
        process.stdin.flush()
        self.assertEqual(records(process.stdout.readline().decode())[0]["sequence"], "T#024")
        process.stdout.close()
        process.stdin.write(f"QIRAN-3,{self.LINE}\n".encode() * 4)
        process.stdin.flush()
        self.assertEqual(process.wait(30), 0)
        process.stdin.close()

    def test_it_writes_nothing_and_needs_formulae(self):
        before = self.contents()
        self.decode(f"QIRAN-3,{self.LINE}\n")
        self.call("decode", "--check")
        self.assertEqual(self.contents(), before)
        (self.folder / "formula.txt").unlink()
        self.call("decode", code=1)
        self.assertIn(str(self.folder / "formula.txt"), self.said)

    def test_units_stand_where_channels_are_described(self):
        (self.folder / "channels.txt").write_text("*,POWER,Batt A,V,,,,,\nB,power,p out,mW,,,,,\n")
        self.assertEqual([one.get("unit") for one in self.decode(f"QIRAN-3,{self.LINE}\n")], ["V", None, "mW", None])

    def test_check_names_every_wrong_line_of_the_formulae(self):
        self.assertEqual(self.call("decode", "--check"), "")
        (self.folder / "formula.txt").write_text("# a note\nAll of this is a note, too\nA,0,CURRENT,X+,0,0,1,0\n"
                                                 "A,0,CURRENT,Q+,0,0,1,0\nB,4,TEMP,X+,0,0,1,0\nA,0,CURRENT,X+,0,0,1\n"
                                                 "B,3,POWER,Batt A,0,0,one,0\n")
        self.assertEqual(self.call("decode", "--check", code=1).splitlines(),
                         ["formula.txt: line 4: no such grid or row", "formula.txt: line 5: the frame type is not 0 to 3",
                          "formula.txt: line 6: it has not eight fields", "formula.txt: line 7: 'one' is no number"])
        (self.folder / "formula.txt").write_text("")
        (self.folder / "channels.txt").write_text("*,POWER,Batt A,V,,,,,\nB,POWER,Batt Q,V,,,,,\n")
        self.assertRegex(self.call("decode", "--check", code=1), "^channels.txt: line 2: .*\n$")
        (self.folder / "horizon.txt").write_text("# the hill\n0,5\n90,x\n")
        (self.folder / "frequencies.txt").write_text("QIRAN,Downlink,145.825\nMIR,Beacon,145.55\n")
        self.assertRegex(self.call("decode", "--check", code=1),
                         "^channels.txt: line 2: .*\nhorizon.txt: line 3: .*\nfrequencies.txt: line 2: .*\n$")
        self.call("decode", "--check", self.scratch, code=2)


class ElementServer(http.server.BaseHTTPRequestHandler):
    """Answers what the test says: (status, bytes)."""

    answer = (200, b"")
    asked = []

    def do_GET(self):  # noqa: N802
        type(self).asked.append(self.path)
        status, body = type(self).answer
        self.send_response(status)
        self.send_header("Content-Type", "text/plain")
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *_):
        pass


class Keps(StationTest):
    def setUp(self):
        super().setUp()
        ElementServer.asked = []
        ElementServer.answer = (200, (self.folder / "Keps/example.txt").read_bytes())
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), ElementServer)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        rig.write_settings(self.settings, {("KEPS", "FILE_1"): f"127.0.0.1:{server.server_port}/amateur.txt"})
        self.before = self.settings.read_bytes()

    def test_fetch_stores_and_asks_no_more_for_two_hours_unless_forced(self):
        (self.folder / "Keps/example.txt").unlink()
        self.assertIn("fetched into amateur.txt", self.call("keps", "fetch"))
        self.assertEqual({one["file"] for one in records(self.call("keps", "list", "--format", "json"))}, {"amateur.txt"})
        self.assertIn("not asked again", self.call("keps", "fetch"))
        self.assertEqual(len(ElementServer.asked), 1)
        self.call("keps", "fetch", "--force")
        self.assertEqual(len(ElementServer.asked), 2)
        self.assertEqual(self.settings.read_bytes(), self.before)

    def test_a_refusal_is_said_and_the_old_file_stays(self):
        self.call("keps", "fetch")
        old = (self.folder / "Keps/amateur.txt").read_bytes()
        ElementServer.answer = (500, b"out of order")
        self.call("keps", "fetch", "--force", code=1)
        self.assertIn("refused", self.said)
        self.assertEqual((self.folder / "Keps/amateur.txt").read_bytes(), old)

    NOTHING_NEW = b"GP data has not updated since your last successful download of GROUP=amateur."

    def test_what_the_server_has_nothing_newer_of_is_current_already(self):
        self.call("keps", "fetch")
        old = (self.folder / "Keps/amateur.txt").read_bytes()
        ElementServer.answer = (403, self.NOTHING_NEW)
        self.assertIn("amateur.txt is current already - " + self.NOTHING_NEW.decode(), self.call("keps", "fetch", "--force"))
        self.assertEqual((self.folder / "Keps/amateur.txt").read_bytes(), old)
        self.assertIn("not asked again", self.call("keps", "fetch"))

    def test_any_other_refusal_ends_it(self):
        host = self.call("config", "get", "KEPS/FILE_1").split("/")[0]
        rig.write_settings(self.settings, {("KEPS", "FILE_2"): host + "/second.txt"})
        ElementServer.answer = (403, b"You have been shut out.")
        self.call("keps", "fetch", code=1)
        self.assertIn("403 Forbidden: You have been shut out.", self.said)
        self.assertIn("not asked after the refusal", self.said)
        self.assertEqual(ElementServer.asked, ["/amateur.txt"])

    def test_elements_come_as_messages_too(self):
        keys = "NORAD_CAT_ID,EPOCH,MEAN_MOTION,ECCENTRICITY,INCLINATION,RA_OF_ASC_NODE,ARG_OF_PERICENTER,MEAN_ANOMALY,BSTAR"
        ElementServer.answer = (200, f"{keys}\n123456789,2026-11-21T00:00:00,14.5,0,98,1,2,3,0\n".encode())
        self.call("keps", "fetch")
        self.assertIn(123456789, {one["number"] for one in records(self.call("keps", "list", "--format", "json"))})
        ElementServer.answer = (200, (keys + "\n").encode())
        self.call("keps", "fetch", "--force", code=1)
        self.assertIn("The file holds no elements", self.said)
        self.assertIn(123456789, {one["number"] for one in records(self.call("keps", "list", "--format", "json"))})

    def test_a_running_station_is_told_that_nothing_is_newer(self):
        (self.folder / "Keps/amateur.txt").write_bytes(b"old")
        (self.folder / "Keps/example.txt").unlink()
        ElementServer.answer = (403, self.NOTHING_NEW)
        process = self.listen("--format", "json", "--fetch-keps", "30")
        self.connected(process)
        rig.wait_for(lambda: ElementServer.asked, "the server was asked", alive=process)
        rig.wait_for((self.folder / "KepsFetched.txt").exists, "the answer was taken", alive=process)
        self.assertIn("amateur.txt is current already", self.end(process)[1])
        self.assertEqual((self.folder / "Keps/amateur.txt").read_bytes(), b"old")

    def test_without_an_address_it_says_what_to_set(self):
        rig.write_settings(self.settings, {("KEPS", "FILE_1"): ""})
        self.call("keps", "fetch", code=1)
        self.assertIn("KEPS/FILE_1", self.said)

    def test_it_waits_for_no_other_fetch(self):
        with (self.folder / "Keps.lock").open("wb") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            self.call("keps", "fetch", code=1)
        self.assertIn("fetched already", self.said)

    def test_a_running_station_fetches_what_is_too_old(self):
        (self.folder / "Keps/example.txt").unlink()
        process = self.listen("--format", "json", "--fetch-keps", "30")
        self.connected(process)
        rig.wait_for((self.folder / "Keps/amateur.txt").exists, "the elements are there", alive=process)
        _, errors = self.end(process)
        self.assertIn("fetched into amateur.txt", errors)
        again = self.listen("--format", "json", "--fetch-keps", "30")
        self.connected(again)
        self.assertEqual(self.end(again)[1], "")
        self.assertEqual(len(ElementServer.asked), 1)


if __name__ == "__main__":
    unittest.main()
