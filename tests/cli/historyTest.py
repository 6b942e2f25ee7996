#!/usr/bin/env python3
"""What a station keeps of the telemetry that it hears, and what is read of it afterwards."""

import unittest

from command import records, rows
from listenTest import RAW, StationTest, calibration, expected_readings


class History(StationTest):
    def hear(self, process, source, number, frame_type, raw):
        line = calibration.line(number, frame_type, raw)
        self.engine.tell("port 1", f"heard {source}>APRS:{line}\\n")
        return self.until(process, lambda one: one["type"] == "reading" and one["channel"] == 4)

    def test_what_listen_printed_is_kept_and_converted_again(self):
        process = self.listen("--format", "json")
        self.connected(process)
        printed = self.hear(process, "QIRAN-3", 24, 3, RAW) + self.hear(process, "XQ9ZZ-1", 25, 0, (1, 2, 3, 4))
        self.end(process)
        wanted = [one for one in printed if one["type"] == "reading"]
        self.assertEqual(len(wanted), 8)
        self.assertEqual(records(self.call("history", "--format", "json")), wanted)
        text = (self.folder / "tlm.txt").read_text(encoding="utf-8").splitlines()
        self.assertEqual(text[0], "utc,source,side,sequence,raw1,raw2,raw3,raw4,field5,field6,field7,field8")
        self.assertEqual(len(text), 3)
        # A better formula mends the past.
        with open(self.folder / "formula.txt", "a", encoding="ascii") as formulae:
            formulae.write("B,3,POWER,Batt A,0,0,0,99\r\n")
        values = [one["value"] for one in records(self.call("history", "--format", "json", "--channel", "power/batt a"))]
        self.assertEqual(values, [99])

    def test_it_is_asked_by_time_side_and_channel(self):
        (self.folder / "tlm.txt").write_text(
            "utc,source,side,sequence,raw1,raw2,raw3,raw4,field5,field6,field7,field8\n"
            "2026-11-20T10:00:00.000Z,XQ9ZZ-1,A,T#1,150,147,80,170,0,0,00111111,0\n"
            "what is this?\n"
            "2026-11-22T10:00:00.500Z,QIRAN-3,B,T#3,150,147,80,170,0,0,00111111,0\n"
            "2026-11-21T10:00:00.000Z,QIRAN-3,B,T#2,150,147,80,170,0,0,00111111,0\n", encoding="utf-8")
        before = self.contents()
        sequences = lambda *words: [row["sequence"] for row in rows(self.call("history", "--format", "csv", *words))]
        self.assertEqual(sequences("--channel", "POWER/P Out"), ["T#1", "T#2", "T#3"])  # by their times
        self.assertIn("passed over: 1", self.said)
        self.assertEqual(sequences("--side", "B"), ["T#2"] * 4 + ["T#3"] * 4)
        self.assertEqual(sequences("--from", "2026-11-21T00:00Z", "--to", "2026-11-22T10:00:00.499Z"), ["T#2"] * 4)
        expected = list(expected_readings(self.folder, "B", 3, RAW))
        found = [(row["grid"], row["row"], float(row["raw"]), float(row["value"]))
                 for row in rows(self.call("history", "--format", "csv", "--from", "2026-11-22"))]
        for one, other in zip(found, expected, strict=True):
            self.assertEqual(one[:3], other[:3])
            self.assertAlmostEqual(one[3], other[3], delta=1e-9 * max(1, abs(other[3])))
        self.call("history", "--channel", "POWER/Nothing", code=2)
        self.assertIn("no channel 'POWER/Nothing'", self.said)
        self.assertEqual(self.contents(), before)

    def test_without_a_history_there_is_nothing_to_print(self):
        self.assertEqual(self.call("history", "--format", "json"), "")
        self.assertEqual(self.call("events", "--format", "json"), "")

    def test_where_it_is_not_wanted_nothing_is_kept(self):
        self.call("config", "set", "HISTORY/KEEP", "FALSE")
        process = self.listen("--format", "json")
        self.connected(process)
        self.hear(process, "QIRAN-3", 24, 3, RAW)
        self.end(process)
        self.assertFalse((self.folder / "tlm.txt").exists())

    def test_a_crossing_is_an_event_printed_behind_its_readings_and_kept(self):
        (self.folder / "channels.txt").write_text("B,POWER,Batt A,V,,6,,,1\n", encoding="utf-8")
        process = self.listen("--format", "json")
        self.connected(process)
        self.hear(process, "QIRAN-3", 1, 3, RAW)
        self.engine.tell("port 1", "heard QIRAN-3>APRS:" + calibration.line(2, 3, (10, 147, 80, 170)) + "\\n")
        read = self.until(process, lambda one: one["type"] == "event")
        self.end(process)
        self.assertEqual([one["type"] for one in read], ["frame"] + ["reading"] * 4 + ["event"])
        event = read[-1]
        self.assertEqual(list(event), ["type", "utc", "side", "grid", "row", "value", "from", "to"])
        self.assertEqual((event["side"], event["grid"], event["row"], event["from"], event["to"]),
                         ("B", "POWER", "Batt A", "normal", "low warning"))
        self.assertEqual(event["value"], read[1]["value"])
        self.assertEqual(read[1]["unit"], "V")
        self.assertEqual(records(self.call("events", "--format", "json")), [event])
        self.assertEqual(self.call("events", "--format", "json", "--side", "A"), "")
        # The next run goes on from there: the value comes back once, and nothing is said of it before.
        process = self.listen("--format", "json")
        self.connected(process)
        self.hear(process, "QIRAN-3", 3, 3, (11, 147, 80, 170))
        self.engine.tell("port 1", "heard QIRAN-3>APRS:" + calibration.line(4, 3, RAW) + "\\n")
        read = self.until(process, lambda one: one["type"] == "event")
        self.end(process)
        self.assertEqual((read[-1]["from"], read[-1]["to"]), ("low warning", "normal"))

    def test_a_log_is_counted_taken_in_and_taken_back(self):
        (self.folder / "channels.txt").write_text("B,POWER,Batt A,V,,,,1,1\n", encoding="utf-8")
        log = self.scratch / "20261121.TXT"
        log.write_bytes(b"12:00:01R QIRAN-3>APRS Port=1 <UI Len=33 PF=0>:\r\nT#7,150,147,80,170,0,0,00111111,0\r\n\r\n"
                        b"12:00:05R N0CALL>CQ Port=1 <UI Len=5>:\r\nhello\r\n\r\n")
        files = lambda: {name: content for name, (content, _) in self.contents().items()}
        before = files()
        counted = self.call("import", "--dry-run", log)
        self.assertIn("frames that come in: 1", counted)
        self.assertIn("frames of others: 1", counted)
        self.assertEqual(files(), before)
        self.call("import", "--zone", "Europe/Berlin", log)
        found = records(self.call("history", "--format", "json"))
        self.assertEqual([one["utc"] for one in found], ["2026-11-21T11:00:01.000Z"] * 4)
        self.assertGreater(found[0]["value"], 1)  # and an event, had it been heard now
        self.assertEqual(self.call("events", "--format", "json"), "")
        self.assertIn("known already: 1", self.call("import", "--zone", "Europe/Berlin", log))
        self.call("import", "--undo")
        self.assertEqual(self.call("history", "--format", "json"), "")
        self.call("import", "--zone", "Nowhere/Else", log, code=2)
        self.call("import", code=2)
        self.call("import", self.scratch / "missing", code=1)

    def test_a_plain_recording_comes_in_at_the_time_that_is_named(self):
        address = lambda callsign, ssid, last: bytes(ord(letter) << 1 for letter in callsign.ljust(6)) + bytes(
            [0x60 | ssid << 1 | last])
        recording = self.scratch / "pass.kss"
        recording.write_bytes(b"\xc0\x00" + address("APRS", 0, 0) + address("QIRAN", 3, 1) + b"\x03\xf0"
                              + calibration.line(1, 3, RAW).encode() + b"\xc0")
        self.assertIn("frames that come in: 0", self.call("import", recording))
        self.call("import", "--time", "2026-11-21T15:00Z", recording)
        found = records(self.call("history", "--format", "json"))
        self.assertEqual([one["utc"] for one in found], ["2026-11-21T15:00:00.000Z"] * 4)
        self.call("import", "--time", "yesterday", recording, code=2)

    def test_no_import_while_a_station_runs(self):
        process = self.listen("--format", "json")
        self.connected(process)
        log = self.scratch / "20261121.TXT"
        log.write_bytes(b"")
        self.call("import", log, code=1)
        self.assertIn("is held by process", self.said)
        self.end(process)

    def test_wrong_lines_of_channels_are_said(self):
        (self.folder / "channels.txt").write_text("B,POWER,Batt A,V,,7,,,1\nB,POWER,Nothing,,,,,,\n", encoding="utf-8")
        process = self.listen("--format", "json")
        read = self.until(process, lambda one: "channels.txt" in one.get("text", ""))
        self.end(process)
        self.assertIn("line 2", read[-1]["text"])


if __name__ == "__main__":
    unittest.main()
