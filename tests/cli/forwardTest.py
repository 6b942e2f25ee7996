#!/usr/bin/env python3
"""Frames that are sent on: from a TNC through the station without a window to a server that takes SiDS requests."""

import json
import re
import signal
import subprocess
import sys
import unittest

from command import NAME, ROOT, CommandTest, records, rows

sys.path += [str(ROOT / "tools"), str(ROOT / "tests/e2e")]

import calibration  # noqa: E402
import certificates  # noqa: E402
import kiss  # noqa: E402
import rig  # noqa: E402
import sids  # noqa: E402
from sids import Answer  # noqa: E402

FIRST = 1795274923120  # 2026-11-21T15:28:43.120Z


def telemetry(number, source="QIRAN-3"):
    """A frame of the satellite; bytes that AGWPE's text, KISS and forms have a meaning for are among them."""
    line = calibration.line(number, 3, (150, 147, 80, 170)).encode()
    return kiss.ax25(source, "APRS", line + b"\r\0\xc0\xdb&=+% \xff")


class ForwardingTest(CommandTest):
    def setUp(self):
        super().setUp()
        self.tnc = kiss.Tnc()
        self.addCleanup(self.tnc.stop)
        self.server = sids.SidsServer()
        self.addCleanup(self.server.stop)
        self.set({("KISS", "USE"): "TRUE", ("KISS", "HOST_ADDRESS"): "127.0.0.1", ("KISS", "HOST_PORT"): str(self.tnc.port),
                  ("FORWARD", "URL"): self.server.url})

    def set(self, values):
        rig.write_settings(self.settings, values)

    def switch_on(self):
        self.set({("FORWARD", "USE"): "TRUE"})

    def listen(self, **options):
        """A running station, connected to the TNC."""
        before = self.tnc.connected()
        with open(self.scratch / "output", "ab") as output, open(self.scratch / "errors", "ab") as errors:
            process = self.start("listen", "--format", "json", stdout=output, stderr=errors, **options)
        self.addCleanup(rig.end, process)
        rig.wait_for(lambda: self.tnc.connected() > before, "the station is connected", alive=process)
        return process

    def statuses(self):
        """What the station has said of forwarding."""
        told = [json.loads(line) for line in (self.scratch / "output").read_text().splitlines() if line.endswith("}")]
        return [one["text"].removeprefix("*** Forwarding - ") for one in told
                if one["type"] == "status" and one["text"].startswith("*** Forwarding")]

    def counts(self):
        """Frames by their state, as `forward status` tells them."""
        counts = {}
        for one in records(self.call("forward", "status", "--format", "json")):
            counts[one["state"]] = counts.get(one["state"], 0) + one["frames"]
        return counts

    def until_sent(self, number, process=None, seconds=60):
        rig.wait_for(lambda: len(self.server.taken) >= number, f"{number} frames at the server", seconds, alive=process)

    def taken(self):
        return [sids.frame(body) for body in self.server.taken]

    def end(self, process):
        process.send_signal(signal.SIGTERM)
        self.assertEqual(process.wait(30), 0)


class Forwarding(ForwardingTest):
    def test_it_is_off_until_it_is_switched_on_by_a_setting(self):
        process = self.listen()
        self.tnc.send(telemetry(1))
        rig.wait_for(lambda: b"T#001" in (self.scratch / "output").read_bytes(), "the frame is heard", alive=process)
        self.call("forward", "status")
        self.assertIn(NAME + "nothing is sent: 'config set FORWARD/USE TRUE' switches it on", self.said)
        self.end(process)
        self.assertEqual(self.server.bodies, [])
        self.assertEqual(list(self.folder.glob("Forward*")), [])
        self.call("config", "set", "FORWARD/USE", "TRUE")
        process = self.listen()
        self.tnc.send(telemetry(2), telemetry(3, "N0CALL-7"), telemetry(4, "XQ9ZZ-1"))
        self.until_sent(2, process)
        self.end(process)
        self.assertEqual(self.taken(), [telemetry(2), telemetry(4, "XQ9ZZ-1")])
        fields = sids.fields(self.server.bodies[0])
        self.assertRegex(fields.pop("timestamp"), r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z$")
        self.assertRegex(fields.pop("version"), r"^QiranDecode-\d+\.\d+\.\d+$")
        self.assertEqual(fields, {"noradID": "90417", "source": "N0CALL", "frame": telemetry(2).hex().upper(),
                                  "locator": "longLat", "longitude": "0.13W", "latitude": "51.50N"})
        self.assertEqual(self.counts(), {"waiting": 0, "sent": 2, "discarded": 0, "dropped": 0})
        self.assertEqual(self.said, "")

    def test_a_dry_run_writes_to_the_status_lines_only(self):
        self.switch_on()
        self.set({("FORWARD", "DRY_RUN"): "TRUE"})
        process = self.listen()
        self.tnc.send(telemetry(1))
        rig.wait_for(self.statuses, "a status line", alive=process)
        self.assertRegex(self.statuses()[0], "^dry run, nothing is sent to 127.0.0.1: noradID=90417&source=N0CALL&")
        self.end(process)
        self.call("forward", "status")
        self.assertIn("FORWARD/DRY_RUN", self.said)
        self.assertEqual(self.server.bodies, [])

    def test_what_a_server_does_not_take_now_is_repeated_byte_for_byte_and_nothing_overtakes_it(self):
        self.switch_on()
        self.server.script = [Answer(), Answer(503, "busy"), Answer(429, headers={"Retry-After": "1"}), Answer(408),
                              Answer(cut=True), Answer(after=1.5)]
        process = self.listen()
        self.tnc.send(*(telemetry(number) for number in range(6)))
        self.until_sent(6, process, 120)
        self.assertEqual(self.taken(), [telemetry(number) for number in range(6)])
        bodies = self.server.bodies
        self.assertEqual(bodies[1:6], [bodies[1]] * 5)
        self.assertEqual(len(bodies), 10)
        self.assertEqual(self.server.at_once, 1)
        self.assertEqual(self.statuses(), ["127.0.0.1 cannot take frames now: 503 Service Unavailable: busy",
                                           "127.0.0.1 answers again"])
        self.end(process)

    def test_what_a_server_refuses_is_parked_with_its_words_and_retried_or_discarded_by_the_user(self):
        self.switch_on()
        self.server.script = [Answer(400, "noradID is unknown"), Answer(), Answer(400, "noradID is unknown"), Answer(403)]
        process = self.listen()
        self.tnc.send(*(telemetry(number) for number in range(5)))
        self.until_sent(2, process)
        rig.wait_for(lambda: self.counts() == {"waiting": 0, "refused": 3, "sent": 2, "discarded": 0, "dropped": 0},
                     "all is answered", alive=process)
        told = [one for one in records(self.call("forward", "status", "--format", "json")) if one["state"] == "refused"]
        self.assertEqual([(one["frames"], one["words"]) for one in told],
                         [(2, "400 Bad Request: noradID is unknown"), (1, "403 Forbidden")])
        self.assertEqual(told[0]["oldest"], sids.fields(self.server.bodies[0])["timestamp"])
        lines = rows(self.call("forward", "status", "--format", "csv"))
        self.assertEqual([line["state"] for line in lines], ["waiting", "refused", "refused", "sent", "discarded", "dropped"])
        self.assertIn("noradID is unknown", self.call("forward", "status"))
        # While the station runs it does what is asked, soon.
        self.server.script = [Answer(), Answer(400, "still not"), Answer()]
        self.assertIn("left to the station", self.call("forward", "retry"))
        rig.wait_for(lambda: len(self.server.bodies) == 8, "all are tried again", 10, alive=process)
        self.assertEqual(self.server.bodies[5:], [self.server.bodies[i] for i in (0, 2, 3)])
        rig.wait_for(lambda: self.counts().get("refused") == 1, "one is parked again", alive=process)
        self.call("forward", "discard")
        rig.wait_for(lambda: self.counts() == {"waiting": 0, "sent": 4, "discarded": 1, "dropped": 0}, "it is discarded", 2,
                     alive=process)
        self.end(process)

    def https(self, authority, **of_certificate):
        """A server by https, to which frames are sent from now on."""
        server = sids.SidsServer(authority.context(**of_certificate))
        self.addCleanup(server.stop)
        self.set({("FORWARD", "URL"): server.url, ("FORWARD", "TOKEN"): "secret"})
        return server

    def test_a_server_that_proves_who_it_is_gets_frames_and_token_by_https(self):
        authority = certificates.Authority(self.scratch / "authority")
        trusting = authority.trusting()
        self.switch_on()
        server = self.https(authority)
        process = self.listen(prefix=trusting)
        self.tnc.send(telemetry(1))
        rig.wait_for(lambda: server.taken, "the frame is at the server", alive=process)
        self.end(process)
        self.assertEqual(sids.frame(server.taken[0]), telemetry(1))
        self.assertEqual(server.headers[0]["Authorization"], "Token secret")
        self.assertEqual(self.statuses(), [])

    def test_a_server_with_the_wrong_name_or_an_old_certificate_gets_nothing(self):
        authority = certificates.Authority(self.scratch / "authority")
        trusting = authority.trusting()
        self.switch_on()
        recording = self.scratch / "pass.kiss"
        recording.write_bytes(kiss.recorded(FIRST, telemetry(1)))
        self.call("forward", "queue", recording)
        for certificate, reason in (({"address": "DNS:elsewhere.example"}, "host name did not match"),
                                    ({"address": "IP:127.0.0.2"}, "host name did not match"),
                                    ({"days": -1}, "expired")):
            with self.subTest(certificate):
                server = self.https(authority, **certificate)
                (self.scratch / "output").unlink(missing_ok=True)
                process = self.listen(prefix=trusting)
                rig.wait_for(self.statuses, "a status line", alive=process)
                self.assertRegex(self.statuses()[0], f"^127.0.0.1 cannot take frames now: .*{reason}")
                self.end(process)
                self.assertEqual(server.bodies, [])

    def test_a_server_for_whom_nobody_vouches_gets_nothing(self):
        wrong = self.https(certificates.Authority(self.scratch / "authority"))
        self.switch_on()
        process = self.listen()
        self.tnc.send(telemetry(1))
        rig.wait_for(self.statuses, "a status line", alive=process)
        self.assertRegex(self.statuses()[0], "^127.0.0.1 cannot take frames now: .*certificate")
        self.end(process)
        self.assertEqual(wrong.bodies, [])
        self.assertEqual(self.counts()["waiting"], 1)
        self.set({("FORWARD", "URL"): self.server.url})
        process = self.listen()
        self.until_sent(1, process)
        self.assertEqual(self.server.headers[0]["Authorization"], "Token secret")
        self.end(process)
        for text in ((self.scratch / "output").read_text(), (self.scratch / "errors").read_text()):
            self.assertNotIn("secret", text)

    def test_the_frames_of_a_pass_arrive_although_the_server_was_down_for_half_of_it(self):
        self.switch_on()
        process = self.listen()
        frames = [telemetry(number) for number in range(24)]
        self.tnc.send(*frames[:6])
        self.until_sent(3, process)
        self.server.stop()
        self.tnc.send(*frames[6:18])
        rig.wait_for(self.statuses, "the loss is said", alive=process)
        self.assertRegex(self.statuses()[0], "^127.0.0.1 cannot take frames now: Connection refused")
        process.kill()  # and a power cut on top
        process.wait()
        process = self.listen()
        self.server.start()
        self.tnc.send(*frames[18:])
        self.until_sent(24, process, 120)
        self.end(process)
        # What was under way when it was killed may have come twice, then byte for byte.
        once = list(dict.fromkeys(self.server.bodies))
        self.assertEqual([sids.frame(body) for body in once], frames)
        self.assertEqual(self.counts()["waiting"], 0)

    def test_a_frame_whose_answer_never_came_is_sent_again_as_it_was(self):
        self.switch_on()
        self.server.script = [Answer(after=3600)]
        process = self.listen()
        self.tnc.send(telemetry(1), telemetry(2))
        rig.wait_for(lambda: self.server.bodies, "the first request", alive=process)
        self.end(process)
        process = self.listen()
        self.until_sent(2, process)
        self.end(process)
        self.assertEqual(self.server.bodies[1], self.server.bodies[0])
        self.assertEqual(self.taken(), [telemetry(1), telemetry(2)])


class CatchUp(ForwardingTest):
    def record(self, *frames):
        path = self.scratch / "pass.kiss"
        path.write_bytes(b"".join(frames))
        return path

    def test_a_recording_is_queued_once_and_sent_by_the_next_station(self):
        self.switch_on()
        path = self.record(*(kiss.recorded(FIRST + 1000 * number, telemetry(number)) for number in range(3)),
                           kiss.recorded(FIRST, kiss.ax25("N0CALL-7", "APRS", b"others")), kiss.framed(telemetry(9)))
        self.assertEqual(self.call("forward", "queue", path), "frames queued: 3\n")
        self.assertEqual(self.said, NAME + "frames of others: 1\n" + NAME +
                         "frames that cannot be sent, without a time for example: 1\n")
        self.assertEqual(self.call("forward", "queue", path, path), "frames queued: 0\n")
        self.assertEqual(self.counts()["waiting"], 3)
        process = self.listen()
        self.until_sent(3, process)
        self.assertEqual([sids.fields(body)["timestamp"] for body in self.server.bodies],
                         [f"2026-11-21T15:28:{43 + number}.120Z" for number in range(3)])
        # What was sent is not queued again, by the running station either.
        more = self.record(kiss.recorded(FIRST, telemetry(0)), kiss.recorded(FIRST + 9000, telemetry(9)))
        self.assertIn(f"left to the station that runs in {self.folder}", self.call("forward", "queue", more))
        self.until_sent(4, process, 5)
        self.end(process)
        self.assertEqual(self.taken(), [telemetry(number) for number in (0, 1, 2, 9)])

    def test_requests_at_once_wait_for_one_another(self):
        process = self.listen()
        paths = []
        for number in range(6):
            paths.append(self.scratch / f"{number}.kiss")
            paths[-1].write_bytes(kiss.recorded(FIRST + number, telemetry(number)))
        processes = [self.start("forward", "queue", path, stdout=subprocess.DEVNULL) for path in paths]
        self.assertEqual([one.wait(30) for one in processes], [0] * 6)
        rig.wait_for(lambda: self.counts()["waiting"] == 6, "all are queued", 5, alive=process)
        self.end(process)

    def test_what_is_missing_is_said_first_and_nothing_is_queued(self):
        path = self.record(kiss.recorded(FIRST, telemetry(1)))
        self.set({("SETUP", "CALLSIGN"): "", ("SETUP", "LATITUDE"): ""})
        self.call("forward", "queue", path, code=1)
        self.assertEqual(self.said, NAME + "nothing can be sent; missing: callsign, position\n")
        self.call("forward", "status")
        self.assertIn("missing: callsign, position", self.said)
        self.assertEqual(list(self.folder.glob("Forward*")), [])

    def test_what_is_no_recording_is_said_and_nothing_of_the_others_is_queued(self):
        path = self.record(kiss.recorded(FIRST, telemetry(1)))
        text = self.scratch / "text"
        text.write_text(f"QIRAN-3>APRS:{calibration.line(1, 3, (1, 2, 3, 4))}\n")
        for wrong, reason in ((text, "it is no KISS recording"), (self.scratch, ""), (self.scratch / "none", "")):
            self.call("forward", "queue", path, wrong, code=1)
            self.assertRegex(self.said, re.escape(f"{NAME}{wrong} cannot be read: {reason}"))
        self.call("forward", "queue", code=2)
        self.assertEqual(list(self.folder.glob("Forward*")), [])

    def test_a_full_queue_drops_the_oldest_and_counts_them(self):
        self.set({("FORWARD", "KEEP_AT_MOST"): "4"})
        for first in (0, 3):
            self.call("forward", "queue", self.record(*(kiss.recorded(FIRST + number, telemetry(number))
                                                        for number in range(first, first + 3))))
        self.assertEqual(self.counts(), {"waiting": 4, "sent": 0, "discarded": 0, "dropped": 2})
        self.call("forward", "queue", self.record(*(kiss.recorded(FIRST + number, telemetry(number)) for number in range(9))))
        self.assertIn("frames beyond FORWARD/KEEP_AT_MOST, the oldest: 5", self.said)

    def test_status_writes_nothing_and_names_damaged_lines(self):
        (self.folder / "ForwardQueue.txt").write_text("what is this?\n1 queued nonsense\n")
        before = self.contents()
        self.call("forward", "status")
        self.assertIn("lines of ForwardQueue.txt that cannot be read: 2", self.said)
        self.assertEqual(self.contents(), before)


if __name__ == "__main__":
    unittest.main()
