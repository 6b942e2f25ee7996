#!/usr/bin/python3
"""Passes and positions of the command line against Skyfield (and the SGP4 under it), and its calendar against
python3-icalendar.

UT1 is made equal to UTC (delta T 69.184 s), as the program takes it. Times are printed to the second, so half a second
is allowed and what a horizon crossed slowly adds; angles are good to 0.01 degrees as the printed second stands, but for
the azimuths at a printed rise or set, which belong to the true one."""

import datetime
import json
import os
import pty
import signal
import subprocess
import sys
import unittest

try:
    import icalendar
    from skyfield.api import EarthSatellite, load, wgs84
    from skyfield.searchlib import find_discrete, find_maxima
except ImportError as missing:
    print(f"Debian's package is not installed: {missing}")
    sys.exit(77)

from command import NAME, CommandTest, records, rows

UTC = datetime.timezone.utc
SCALE = load.timescale(delta_t=69.184)
SPEED_OF_LIGHT = 299792.458
PLACES = ((51.5, -0.125), (60.17, 24.94), (-33.9, 151.25), (5.0, -179.99), (78.2, 15.6))


def time(text):
    return datetime.datetime.fromisoformat(text.replace("Z", "+00:00"))


def seconds(text, t):
    """How much later the printed time is."""
    return (time(text) - t.utc_datetime()).total_seconds()


def angle(one, two):
    return abs((one - two + 180) % 360 - 180)


def with_checksum(line):
    """A line 2 of elements with the checksum that it should have; any other line as it is."""
    if not line.startswith("2 "):
        return line
    return line[:68] + str(sum(int(c) if c.isdigit() else c == "-" for c in line[:68]) % 10)


def with_sum(line):
    """Any line of elements with the checksum that it should have."""
    return line[:68] + str(sum(int(c) if c.isdigit() else c == "-" for c in line[:68]) % 10)


class SkyTest(CommandTest):
    def setUp(self):
        super().setUp()
        lines = (self.folder / "Keps/example.txt").read_text().splitlines()
        self.satellites = {name: EarthSatellite(one, two, name, SCALE)
                           for name, one, two in (("QIRAN", *lines[1:3]), ("ISS", *lines[4:6]))}

    def passes(self, *words):
        return records(self.call("passes", "--format", "json", *words))


class Passes(SkyTest):
    def expected(self, satellite, place, start, days):
        """(rise, culmination, set) of the passes that begin in these days, and the difference of the places."""
        difference = satellite - wgs84.latlon(*place)

        def up(t):
            return difference.at(t).altaz()[0].degrees > 0

        def altitude(t):
            return difference.at(t).altaz()[0].degrees

        up.step_days, altitude.step_days = 10 / 86400, 0.01
        begin = SCALE.from_datetime(start)
        crossings, states = find_discrete(begin, begin + days + 0.1, up, epsilon=1e-2 / 86400)
        tops, _ = find_maxima(begin, begin + days + 0.1, altitude, epsilon=0.02 / 86400)
        found = []
        for k in range(len(crossings) - 1):
            if states[k] and crossings[k] - begin < days:
                top = [t for t in tops if 0 < t - crossings[k] < crossings[k + 1] - crossings[k]]
                found.append((crossings[k], top[0], crossings[k + 1]))
        return found, difference

    def test_they_agree_with_skyfield(self):
        start = datetime.datetime(2026, 11, 21, 5, 30, tzinfo=UTC)
        compared = 0
        for name, satellite in self.satellites.items():
            for place in PLACES:
                with self.subTest(satellite=name, place=place):
                    expected, difference = self.expected(satellite, place, start, 2)
                    found = self.passes("--satellite", name, "--from", "2026-11-21T05:30Z", "--days", "2",
                                        "--count", "1000", "--at", f"{place[0]},{place[1]}")
                    self.assertEqual(len(found), len(expected))
                    compared += len(found)
                    for ours, (rise, top, end) in zip(found, expected):
                        high = difference.at(top).altaz()[0].degrees
                        late = 0.52 if high > 1 else 0.6
                        self.assertLess(abs(seconds(ours["rise"], rise)), late)
                        self.assertLess(abs(seconds(ours["set"], end)), late)
                        self.assertLess(abs(seconds(ours["culmination"], top)), 0.6)
                        self.assertLess(abs(ours["max_elevation"] - high), 0.02)
                        self.assertLess(angle(ours["rise_azimuth"], difference.at(rise).altaz()[1].degrees), 0.02)
                        self.assertLess(angle(ours["set_azimuth"], difference.at(end).altaz()[1].degrees), 0.02)
                        self.assertEqual(ours["duration_s"], (time(ours["set"]) - time(ours["rise"])).total_seconds())
        self.assertGreater(compared, 90)

    def test_every_format_has_the_same_passes(self):
        question = ("--from", "2026-11-21T00:00Z", "--days", "2")
        found = self.passes(*question)
        table = self.call("passes", "--format", "csv", *question)
        self.assertEqual([{key: str(value) for key, value in line.items()} for line in rows(table)],
                         [{key: f"{value:.2f}" if isinstance(value, float) else str(value)
                           for key, value in one.items() if key != "type"} for one in found])
        text = self.call("passes", *question)
        lines = [line for line in text.split("\r\n") if line.startswith("2026-Nov")]
        self.assertEqual(len(lines), len(found))
        for line, one in zip(lines, found):
            start = datetime.datetime.strptime(line[:20], "%Y-%b-%d %H:%M:%S").replace(tzinfo=UTC)
            self.assertLessEqual(abs((start - time(one["rise"])).total_seconds()), 1)

    def test_count_days_and_elevation_bound_what_is_listed(self):
        question = ("--from", "2026-11-21T00:00Z")
        everything = self.passes(*question, "--days", "7")
        self.assertEqual(self.passes(*question, "--days", "7", "--count", "3"), everything[:3])
        in_a_day = [one for one in everything if one["rise"] < "2026-11-22"]
        self.assertEqual(self.passes(*question, "--days", "1"), in_a_day)
        high = [one for one in everything if one["max_elevation"] >= 30]
        self.assertTrue(0 < len(high) < len(everything))
        self.assertEqual(self.passes(*question, "--days", "7", "--min-elevation", "30"), high)
        self.assertEqual(self.passes(*question, "--days", "7", "--min-elevation", "30", "--count", "2"), high[:2])

    def test_all_satellites_are_listed_for_a_day_in_order_of_time(self):
        found = self.passes("--satellite", "all", "--from", "2026-11-21T00:00Z")
        self.assertEqual({(one["satellite"], one["number"]) for one in found}, {("QIRAN", 90417), ("ISS", 25544)})
        self.assertEqual(found, sorted(found, key=lambda one: one["rise"]))
        self.assertTrue(all(one["rise"] < "2026-11-22" for one in found))
        text = self.call("passes", "--satellite", "all", "--from", "2026-11-21T00:00Z")
        self.assertEqual([line.split()[-1] for line in text.split("\r\n") if line.startswith("2026-")],
                         [one["satellite"] for one in found])

    def test_a_night_of_many_satellites_tells_its_progress_on_a_terminal_alone(self):
        lines = []
        for k in range(1200):
            number = 10000 + k
            lines += [f"OBJECT {number}", with_sum(f"1 {number}U 26001A   26324.50000000  .00000000  00000-0  10000-3 0  999"),
                      with_sum(f"2 {number}  97.6000 {k * 0.3:8.4f} 0010000  60.0000 {k * 7 % 360:8.4f} 14.30000000    1")]
        (self.folder / "Keps/many.txt").write_text("\n".join(lines) + "\n")
        question = ("passes", "--satellite", "all", "--from", "2026-11-21T00:00Z", "--min-elevation", "60")
        plain = self.call(*question)
        ours, theirs = pty.openpty()
        process = self.start(*question, stdout=subprocess.PIPE, stderr=theirs)
        printed = process.communicate(timeout=60)[0].decode()
        told = os.read(ours, 65536).decode()
        os.close(theirs)
        os.close(ours)
        self.assertEqual(printed, plain)
        self.assertEqual(told.split("\r")[1:], ["500 of 1202 satellites\x1b[K", "1000 of 1202 satellites\x1b[K", "\x1b[K"])
        starts = [line[:20] for line in plain.split("\r\n") if line.startswith("2026-")]
        self.assertGreater(len(starts), 300)
        self.assertEqual(starts, sorted(starts))

    def test_a_satellite_is_found_by_its_number_and_has_its_files_name(self):
        elements = (self.folder / "Keps/example.txt").read_text().replace("QIRAN\n", "CUBE, \"A\"\n")
        (self.folder / "Keps/example.txt").write_text(elements)
        self.call("config", "set", "SETUP/QIRAN_OBJ_NUM", "25544")
        self.assertEqual({one["satellite"] for one in self.passes("--satellite", "90417")}, {'CUBE, "A"'})
        self.assertEqual({(one["satellite"], one["number"]) for one in self.passes()}, {("QIRAN", 25544)})

    def test_local_time_changes_text_alone(self):
        question = ("passes", "--from", "2026-11-21T00:00Z", "--count", "1")
        zone = {"TZ": "Asia/Kolkata"}
        utc, local = self.call(*question), self.call(*question, "--local", environment=zone)
        read = [datetime.datetime.strptime(text.split("\r\n")[4][:20], "%Y-%b-%d %H:%M:%S") for text in (utc, local)]
        self.assertEqual(read[1] - read[0], datetime.timedelta(hours=5, minutes=30))
        self.assertTrue(local.startswith("'Start Time' is local time.\r\n"))
        self.call("config", "set", "SETUP/USE_LOCAL_TIME", "TRUE")
        self.assertEqual(self.call(*question, environment=zone), utc)
        for form in ("csv", "json"):
            self.assertEqual(self.call(*question, "--format", form, "--local", environment=zone),
                             self.call(*question, "--format", form))

    def test_what_is_missing_is_said_with_what_to_do(self):
        self.call("config", "set", "SETUP/LATITUDE", "")
        self.assertEqual(self.call("passes", code=1), "")
        self.assertIn("--at", self.said)
        self.assertEqual(self.call("passes", "--at", "60,25", "--satellite", "12345", code=1), "")
        self.assertIn("keps fetch", self.said)
        (self.folder / "Keps/example.txt").unlink()
        for asked in ("QIRAN", "all"):
            self.assertEqual(self.call("passes", "--at", "60,25", "--satellite", asked, code=1), "")
            self.assertIn("keps fetch", self.said)
        (self.folder / "Keps").rmdir()
        self.call("passes", "--at", "60,25", code=1)
        self.assertIn("keps fetch", self.said)

    def test_elements_that_give_no_position_are_named_with_the_reason(self):
        keps = self.folder / "Keps/example.txt"
        before = keps.read_text()
        broken = before.replace(" 14.574", " 17.900").splitlines()
        keps.write_text("".join(with_checksum(line) + "\n" for line in broken))
        self.call("passes", code=1)
        self.assertRegex(self.said, "QIRAN cannot be tracked - example.txt, line 2")
        self.assertEqual({one["satellite"] for one in self.passes("--satellite", "all")}, {"ISS"})
        self.assertIn("QIRAN", self.said)
        keps.write_text(before.replace("14.57400000  4126", "14.57400000  4127"))
        self.call("passes", code=1)
        self.assertIn("checksum", self.said)

    def test_elements_that_give_no_position_only_then_are_named_with_the_reason_too(self):
        keps = self.folder / "Keps/example.txt"
        lines = keps.read_text().splitlines()
        now = datetime.datetime.now(UTC)
        day = (now - datetime.datetime(now.year, 1, 1, tzinfo=UTC)) / datetime.timedelta(days=1) + 1
        lines[1] = with_sum(f"{lines[1][:18]}{now:%y}{day:012.8f}{lines[1][32:53]} 20000-0{lines[1][61:]}")
        lines[2] = with_sum(lines[2][:52] + "16.20000000" + lines[2][63:])
        keps.write_text("".join(line + "\n" for line in lines))
        asked = (now + datetime.timedelta(days=3)).strftime("%Y-%m-%dT%H:%MZ")
        self.call("passes", "--from", asked, code=1)
        self.assertIn("QIRAN cannot be tracked - example.txt, line 2: by these elements it has fallen", self.said)


class Calendar(SkyTest):
    def calendar(self, *words):
        text = self.call("passes", "--format", "ical", *words)
        for line in text.encode().split(b"\r\n"):
            self.assertLessEqual(len(line), 75)
            self.assertNotIn(b"\n", line)
        return icalendar.Calendar.from_ical(text)

    def test_each_pass_is_an_event_with_an_alarm(self):
        question = ("--from", "2026-11-21T00:00Z")
        calendar = self.calendar(*question)
        self.assertEqual(calendar["VERSION"], "2.0")
        self.assertIn("qirandecode-cli", calendar["PRODID"])
        events, found = calendar.walk("VEVENT"), self.passes(*question)
        self.assertEqual(len(events), len(found))
        for event, one in zip(events, found):
            self.assertEqual(event["DTSTART"].dt, time(one["rise"]))
            self.assertEqual(event["DTEND"].dt, time(one["set"]))
            self.assertEqual(event["DTSTAMP"].dt.tzinfo.utcoffset(None), datetime.timedelta(0))
            self.assertEqual(str(event["SUMMARY"]), f"QIRAN {one['max_elevation']:.0f}° (rise {one['rise_azimuth']:.0f}°, "
                                                    f"set {one['set_azimuth']:.0f}°)")
            alarm, = event.walk("VALARM")
            self.assertEqual(alarm["TRIGGER"].dt, datetime.timedelta(minutes=-5))
            self.assertEqual(alarm["ACTION"], "DISPLAY")
            self.assertEqual(str(alarm["DESCRIPTION"]), str(event["SUMMARY"]))
        self.assertEqual(len({str(event["UID"]) for event in events}), len(events))

    def test_a_pass_keeps_its_uid_whenever_it_is_asked_for_and_with_newer_elements(self):
        def uids(*words):
            return [str(event["UID"]) for event in self.calendar("--days", "3", *words).walk("VEVENT")]
        first = uids("--from", "2026-11-21T00:00Z")
        self.assertEqual(uids("--from", "2026-11-21T12:00Z")[:5], [uid for uid in first if uid in
                                                                  uids("--from", "2026-11-21T12:00Z")][:5])
        keps = self.folder / "Keps/example.txt"
        before = keps.read_text()
        newer = [with_checksum(line[:43] + f"{float(line[43:51]) + 0.05:8.4f}" + line[51:])  # some 0.8 s later
                 if line.startswith("2 ") else line for line in before.splitlines()]
        rises = [one["rise"] for one in self.passes("--days", "3", "--from", "2026-11-21T00:00Z")]
        keps.write_text("".join(line + "\n" for line in newer))
        self.assertNotEqual([one["rise"] for one in self.passes("--days", "3", "--from", "2026-11-21T00:00Z")], rises)
        self.assertEqual(uids("--from", "2026-11-21T00:00Z"), first)
        keps.write_text(before)
        self.assertFalse(set(first) & set(uids("--from", "2026-11-21T00:00Z", "--at", "48.1,11.5")))
        self.assertFalse(set(first) & set(uids("--from", "2026-11-21T00:00Z", "--satellite", "ISS")))

    def test_a_calendar_without_passes_is_one(self):
        calendar = self.calendar("--from", "2026-11-21T00:00Z", "--days", "1", "--min-elevation", "90")
        self.assertEqual(calendar.walk("VEVENT"), [])
        self.assertTrue(calendar.subcomponents)

    def test_names_are_escaped_and_long_lines_folded_between_characters(self):
        name = "A; B, C\\D " + "\xe4" * 50
        elements = (self.folder / "Keps/example.txt").read_text().replace("QIRAN\n", name + "\n")
        (self.folder / "Keps/example.txt").write_bytes(elements.encode("cp1252"))
        self.call("config", "set", "SETUP/QIRAN_OBJ_NUM", "1")
        event = self.calendar("--satellite", "90417", "--count", "1").walk("VEVENT")[0]
        self.assertTrue(str(event["SUMMARY"]).startswith(name), event["SUMMARY"])

    def test_the_alarm_comes_as_early_as_the_notice(self):
        self.call("config", "set", "NOTICE/MINUTES", "12")
        alarm = self.calendar("--count", "1").walk("VALARM")[0]
        self.assertEqual(alarm["TRIGGER"].dt, datetime.timedelta(minutes=-12))
        self.call("config", "set", "NOTICE/MINUTES", "0")
        self.assertEqual(self.calendar("--count", "1").walk("VALARM"), [])


class Where(SkyTest):
    def test_positions_agree_with_skyfield(self):
        for place in PLACES:
            found = records(self.call("where", "--satellite", "all", "--format", "json", "--frequency", "145.825",
                                      "--at", f"{place[0]},{place[1]}"))
            self.assertEqual({one["satellite"] for one in found}, {"QIRAN", "ISS"})
            for ours in found:
                with self.subTest(satellite=ours["satellite"], place=place):
                    self.compare(ours, place)

    def compare(self, ours, place):
        self.assertRegex(ours["utc"], r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ$")
        now = datetime.datetime.now(UTC)
        self.assertLess(abs((now - time(ours["utc"])).total_seconds()), 30)
        satellite, t = self.satellites[ours["satellite"]], SCALE.from_datetime(time(ours["utc"]))
        difference = satellite - wgs84.latlon(*place)
        point = wgs84.geographic_position_of(satellite.at(t))
        elevation, azimuth, distance = difference.at(t).altaz()
        half = 0.5 / 86400
        rate = difference.at(t + half).distance().km - difference.at(t - half).distance().km
        self.assertLess(abs(ours["latitude"] - point.latitude.degrees), 0.01)
        self.assertLess(angle(ours["longitude"], point.longitude.degrees), 0.01)
        self.assertLess(abs(ours["altitude_km"] - point.elevation.km), 0.2)
        self.assertLess(angle(ours["azimuth"], azimuth.degrees), 0.01)
        self.assertLess(abs(ours["elevation"] - elevation.degrees), 0.01)
        self.assertLess(abs(ours["range_km"] - distance.km), 0.2)
        self.assertLess(abs(ours["range_rate_km_s"] - rate), 0.002)
        self.assertLess(abs(ours["doppler_hz"] + rate / SPEED_OF_LIGHT * 145.825e6), 2)
        if ours["elevation"] > 0:
            self.assertEqual(ours["due"], ours["utc"])
        elif "due" in ours:
            until = (time(ours["due"]) - time(ours["utc"])).total_seconds()
            self.assertTrue(0 < until < 2 * 86400)
            self.assertLess(abs(difference.at(SCALE.from_datetime(time(ours["due"]))).altaz()[0].degrees), 0.1)

    def test_without_a_place_the_point_under_the_satellite_is_left(self):
        self.call("config", "set", "SETUP/LONGITUDE", "")
        ours, = records(self.call("where", "--format", "json"))
        self.assertEqual(list(ours), ["type", "utc", "satellite", "number", "latitude", "longitude", "altitude_km"])
        self.call("where", "--frequency", "145.8", code=1)
        self.assertIn("--at", self.said)

    def test_it_goes_on_until_it_is_asked_to_end(self):
        for number in (signal.SIGTERM, signal.SIGINT):
            process = self.start("where", "--every", "1", "--format", "csv", stdout=subprocess.PIPE, stderr=subprocess.PIPE)
            lines = [process.stdout.readline() for _ in range(4)]
            process.send_signal(number)
            _, errors = process.communicate(timeout=30)
            self.assertEqual((process.returncode, errors), (0, b""))
            self.assertEqual(lines[0].split(b",")[0], b"utc")
            self.assertEqual(len({line.split(b",")[0] for line in lines[1:]}), 3)

    def test_it_ends_when_nobody_reads_any_further(self):
        process = self.start("where", "--every", "1", stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        process.stdout.readline()
        process.stdout.close()
        self.assertEqual(process.wait(30), 0)
        self.assertEqual(process.stderr.read(), b"")
        process.stderr.close()


class KepsList(SkyTest):
    def test_it_names_every_set_with_its_age(self):
        found = records(self.call("keps", "list", "--format", "json"))
        self.assertEqual([(one["file"], one["format"], one["number"], one["name"], one["epoch"]) for one in found],
                         [("example.txt", "TLE", 90417, "QIRAN", "2026-11-21T00:00:00Z"),
                          ("example.txt", "TLE", 25544, "ISS (ZARYA)", "2026-11-21T00:00:00Z")])
        age = (datetime.datetime.now(UTC) - datetime.datetime(2026, 11, 21, tzinfo=UTC)).total_seconds() / 86400
        for one in found:
            self.assertLess(abs(one["age_days"] - age), 0.06)
        self.assertTrue(self.call("keps", "list", "--format", "csv").startswith("file,format,number,name,epoch,age_days\r\n"))
        self.assertEqual(len(self.call("keps", "list").splitlines()), 3)

    def test_damaged_sets_are_said_and_good_ones_listed(self):
        keps = self.folder / "Keps/example.txt"
        keps.write_text(keps.read_text().replace("14.57400000  4126", "14.57400000  4127"))
        self.assertEqual([one["number"] for one in records(self.call("keps", "list", "--format", "json"))], [25544])
        self.assertRegex(self.said, "example.txt, line 3, .*checksum")

    def test_without_a_folder_it_says_how_to_get_one(self):
        for path in (self.folder / "Keps").iterdir():
            path.unlink()
        self.assertEqual(len(self.call("keps", "list").splitlines()), 1)
        (self.folder / "Keps").rmdir()
        self.call("keps", "list", code=1)
        self.assertIn("keps fetch", self.said)


    def test_objects_of_several_files_and_old_ones_are_named(self):
        self.call("keps", "list")
        self.assertNotIn("count", self.said)
        lines = (self.folder / "Keps/example.txt").read_text().splitlines()
        (self.folder / "Keps/second.csv").write_text(as_csv([omm_of(lines[0:3], number="90417"), omm_of(lines[3:6])]))
        (self.folder / "Keps/third.json").write_text(json.dumps(omm_of(lines[3:6], number="123456789", name="OLD", epoch="2001-01-01T00:00:00.5")))
        found = records(self.call("keps", "list", "--format", "json"))
        self.assertEqual(sorted((one["format"], one["number"]) for one in found),
                         [("CSV", 25544), ("CSV", 90417), ("JSON", 123456789), ("TLE", 25544), ("TLE", 90417)])
        said = self.said.splitlines()
        self.assertIn(said[0].removeprefix(NAME),
                      [f"25544 ISS (ZARYA) and 1 more in {files}; the newest elements count"
                       for files in ("example.txt and in second.csv", "second.csv and in example.txt")])
        shipped = datetime.datetime(2026, 11, 21, tzinfo=UTC)
        are_old = datetime.datetime.now(UTC) - shipped > datetime.timedelta(days=14)
        self.assertEqual(said[1:], [NAME + "older than 14 days, so that passes may be wrong: " +
                                    ("25544 ISS (ZARYA) and 2 more" if are_old else "123456789 OLD")])

    def test_an_object_is_as_old_as_its_newest_elements(self):
        lines = (self.folder / "Keps/example.txt").read_text().splitlines()
        for name, days in (("young", 13.9), ("old", 14.1), ("older", 100)):
            epoch = (datetime.datetime.now(UTC) - datetime.timedelta(days=days)).replace(tzinfo=None)
            messages = [omm_of(lines[3:6], number=number, name=name.upper(), epoch=epoch.isoformat())
                        for number, files in (("800", ("young", "old")), ("801", ("old", "older"))) if name in files]
            (self.folder / f"Keps/{name}.csv").write_text(as_csv(messages))
        (self.folder / "Keps/example.txt").unlink()
        self.call("keps", "list")
        said = [line.removeprefix(NAME) for line in self.said.splitlines()]
        self.assertEqual(len(said), 3, said)
        self.assertTrue(said[0].startswith("80") and " in " in said[0] and said[0].endswith("; the newest elements count"))
        self.assertIn(said[2], [f"older than 14 days, so that passes may be wrong: 801 {name}" for name in ("OLD", "OLDER")])


def omm_of(lines, **changed):
    """The message that says the same as a set of three lines."""
    name, one, two = lines
    epoch = datetime.datetime(2000 + int(one[18:20]), 1, 1) + datetime.timedelta(days=float(one[20:32]) - 1)
    bstar = one[53:54].strip() + "." + one[54:59] + "E" + one[59:61]
    fields = {"OBJECT_NAME": name.strip(), "EPOCH": epoch.isoformat(timespec="microseconds"), "MEAN_MOTION": two[52:63].strip(),
              "ECCENTRICITY": "." + two[26:33], "INCLINATION": two[8:16].strip(), "RA_OF_ASC_NODE": two[17:25].strip(),
              "ARG_OF_PERICENTER": two[34:42].strip(), "MEAN_ANOMALY": two[43:51].strip(), "EPHEMERIS_TYPE": "0",
              "NORAD_CAT_ID": str(int(two[2:7])), "BSTAR": bstar}
    names = {"number": "NORAD_CAT_ID", "name": "OBJECT_NAME", "epoch": "EPOCH"}
    return fields | {names[key]: value for key, value in changed.items()}


def as_csv(messages):
    return "\n".join(",".join(line) for line in [messages[0], *(one.values() for one in messages)]) + "\n"


def as_xml(messages):
    return "<?xml version='1.0'?><ndm>" + "".join(
        "<omm><body>" + "".join(f"<{key}>{value}</{key}>" for key, value in one.items()) + "</body></omm>"
        for one in messages) + "</ndm>"


class Messages(SkyTest):
    def test_the_same_objects_have_the_same_passes_in_every_format(self):
        keps = self.folder / "Keps"
        lines = (keps / "example.txt").read_text().splitlines()
        messages = [omm_of(lines[0:3]), omm_of(lines[3:6])]
        asked = [["passes", "--satellite", which, "--days", "5", "--count", "99", "--from", "2026-11-22", "--format", form]
                 for which in ("QIRAN", "ISS", "25544") for form in ("text", "csv", "json")]
        expected = [self.call(*words) for words in asked]
        self.assertGreater(len(expected[0].splitlines()), 10)
        (keps / "example.txt").unlink()
        for name, text in (("a.txt", as_csv(messages)), ("b", json.dumps(messages)), ("c.tle", as_xml(messages))):
            (keps / name).write_text(text)
            self.assertEqual([self.call(*words) for words in asked], expected, name)
            (keps / name).unlink()

    def test_side_by_side_with_numbers_of_their_own_they_agree(self):
        keps = self.folder / "Keps"
        lines = (keps / "example.txt").read_text().splitlines()
        (keps / "beside.csv").write_text(as_csv([omm_of(lines[0:3], number="123456789"), omm_of(lines[3:6], number="100001")]))
        found = records(self.call("passes", "--satellite", "all", "--days", "3", "--from", "2026-11-22", "--format", "json"))
        of = {number: [{key: value for key, value in one.items() if key not in ("number", "satellite")}
                       for one in found if one["number"] == number] for number in (90417, 25544, 123456789, 100001)}
        self.assertTrue(of[90417] and of[25544])
        self.assertEqual(of[123456789], of[90417])
        self.assertEqual(of[100001], of[25544])

    def test_the_satellite_may_have_nine_digits(self):
        keps = self.folder / "Keps"
        lines = (keps / "example.txt").read_text().splitlines()
        (keps / "new.csv").write_text(as_csv([omm_of(lines[0:3], number="123456789")]))
        self.call("config", "set", "SETUP/QIRAN_OBJ_NUM", "123456789")
        self.assertEqual(records(self.call("where", "--format", "json"))[0]["number"], 123456789)


class Reading(SkyTest):
    def test_nothing_is_written(self):
        before = self.contents()
        for words in (["passes"], ["passes", "--satellite", "all", "--format", "ical"], ["where"], ["keps", "list"]):
            with self.subTest(words=words):
                self.call(*words)
                self.assertEqual(self.contents(), before)


if __name__ == "__main__":
    unittest.main()
