#!/usr/bin/env python3
"""The recipes of docs/RECIPES.md, typed as they stand there."""

import http.server
import os
import re
import shutil
import signal
import subprocess
import threading
import unittest

from command import PROGRAM, ROOT, records
from listenTest import RAW, StationTest, calibration, expected_readings, rig

RECIPES = (ROOT / "docs/RECIPES.md").read_text()


def recipe(first_words, language="sh"):
    """The block of the document that begins like this."""
    blocks = re.findall(rf"```{language}\n(.*?)```", RECIPES, re.DOTALL)
    return next(block.strip() for block in blocks if block.startswith(first_words))


def needs(*programs):
    missing = [program for program in programs if shutil.which(program, path=os.environ["PATH"] + ":/usr/sbin") is None]
    return unittest.skipIf(missing, f"not installed: {', '.join(missing)}")


class RecipeTest(StationTest):
    def setUp(self):
        super().setUp()
        # "qirandecode-cli" is the one that was built, in the test's folder.
        tools = self.scratch / "bin"
        tools.mkdir()
        (tools / "qirandecode-cli").write_text(f'#!/bin/sh\nexec "{PROGRAM}" --folder "{self.folder}" "$@"\n')
        (tools / "qirandecode-cli").chmod(0o755)
        self.environment["PATH"] = f"{tools}:{os.environ['PATH']}:/usr/sbin"

    def type(self, command, **options):
        """A command as the user's shell runs it; ended, with all that it started, at the test's end."""
        process = subprocess.Popen(["bash", "-o", "pipefail", "-c", command], env=self.environment, cwd=self.scratch,
                                   stdin=subprocess.DEVNULL, stderr=subprocess.PIPE, start_new_session=True, **options)
        self.addCleanup(self.stop, process)
        return process

    @staticmethod
    def stop(process):
        try:
            os.killpg(process.pid, signal.SIGTERM)
        except ProcessLookupError:
            pass
        process.wait(30)
        for stream in (process.stdout, process.stderr):
            if stream:
                stream.close()

    def hear(self, number, process):
        rig.wait_for(lambda: self.engine.frames("m"), "the station listens", alive=process)
        self.engine.tell("await", f"heard QIRAN-3>APRS:{calibration.line(number, 3, RAW)}\\n")


@needs("mosquitto", "mosquitto_pub", "mosquitto_sub")
class Broker(RecipeTest):
    def setUp(self):
        super().setUp()
        self.port = rig.free_port()
        settings = self.scratch / ".config"
        settings.mkdir()
        # Where both clients look for their options.
        (settings / "mosquitto_pub").write_text(f"-p {self.port}\n")
        (settings / "mosquitto_sub").write_text(f"-p {self.port}\n-W 60\n")
        self.start_broker()

    def start_broker(self):
        self.broker = subprocess.Popen(["mosquitto", "-p", str(self.port)], env=self.environment, stdout=subprocess.DEVNULL,
                                       stderr=subprocess.DEVNULL)
        self.addCleanup(rig.end, self.broker)
        rig.wait_for(lambda: rig.accepts_connections(self.port), "the broker listens", alive=self.broker)

    def subscribe(self, topic):
        command = recipe("mosquitto_sub").replace("qiran/records", topic)
        process = self.type(f"stdbuf -oL {command} -d", stdout=subprocess.PIPE)
        while b"Subscribed" not in process.stdout.readline():
            self.assertIsNone(process.poll())
        return process

    def until(self, subscriber, condition):
        """The records that come, up to one that is wanted."""
        read = []
        while not read or not condition(read[-1]):
            line = subscriber.stdout.readline().decode()
            self.assertTrue(line, "the subscriber ended")
            if line.startswith("{"):
                read += records(line)
        return read

    def test_every_record_reaches_the_subscribers(self):
        subscriber = self.subscribe("qiran/records")
        station = self.type(recipe("qirandecode-cli listen --format json | mosquitto_pub"))
        self.hear(24, station)
        read = self.until(subscriber, lambda one: one["type"] == "reading" and one["channel"] == 4)
        readings = [one for one in read if one["type"] == "reading"]
        self.assertEqual([(one["grid"], one["row"], one["raw"]) for one in readings],
                         [wanted[:3] for wanted in expected_readings(self.folder, "B", 3, RAW)])
        self.assertEqual(next(one for one in read if one["type"] == "frame")["source"], "QIRAN-3")
        self.assertIn("*** AGW-Connected to - 127.0.0.1", [one.get("text") for one in read])

    def test_a_broker_that_was_away_is_told_what_comes_next(self):
        station = self.type(recipe("qirandecode-cli listen --format json | mosquitto_pub"))
        rig.wait_for(lambda: self.engine.frames("m"), "the station listens", alive=station)
        rig.end(self.broker)
        self.start_broker()
        subscriber = self.subscribe("qiran/records")
        rig.wait_for(lambda: self.said_again(subscriber, station), "the next frames arrive", 60, alive=station)

    def said_again(self, subscriber, station):
        os.set_blocking(subscriber.stdout.fileno(), False)
        self.hear(25, station)
        return b"T#025" in (subscriber.stdout.read() or b"")

    @needs("jq")
    def test_a_topic_of_readings_holds_nothing_else(self):
        subscriber = self.subscribe("qiran/readings")
        station = self.type(recipe("qirandecode-cli listen --format json | jq --unbuffered -c"))
        self.hear(24, station)
        read = self.until(subscriber, lambda one: one["channel"] == 4)
        self.assertEqual([one["type"] for one in read], ["reading"] * 4)


class Database(http.server.BaseHTTPRequestHandler):
    written = []

    def do_POST(self):  # noqa: N802
        type(self).written.append((self.path, self.rfile.read(int(self.headers["Content-Length"])).decode()))
        self.send_response(204)
        self.end_headers()

    def log_message(self, *_):
        pass


@needs("jq", "curl")
class TimeSeries(RecipeTest):
    def setUp(self):
        super().setUp()
        Database.written = []
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Database)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        self.port = server.server_port
        (self.scratch / "readings.jq").write_text(recipe("select", "jq"))

    def recipe(self, first_words):
        return recipe(first_words).replace("localhost:8086", f"127.0.0.1:{self.port}")

    def test_readings_are_points_and_the_history_gives_the_same_points(self):
        station = self.type(self.recipe("qirandecode-cli listen --format json | jq --unbuffered -r"))
        self.hear(24, station)
        rig.wait_for(lambda: len(Database.written) == 4, "four points", alive=station)
        self.stop(station)
        live = [body.strip() for _, body in Database.written]
        self.assertEqual({path for path, _ in Database.written}, {"/write?db=qiran&precision=ms"})
        wanted = list(expected_readings(self.folder, "B", 3, RAW))
        for line, (grid, row, raw, value) in zip(live, wanted, strict=True):
            name = row.replace(" ", "\\ ")
            found = re.fullmatch(rf"qiran,side=B,grid={grid},row={re.escape(name)} raw={raw},value=(\S+) (\d{{13}})", line)
            self.assertIsNotNone(found, line)
            self.assertAlmostEqual(float(found.group(1)), value, places=9)
        Database.written.clear()
        self.assertEqual(self.type(self.recipe("qirandecode-cli history")).wait(30), 0)
        self.assertEqual(Database.written[0][1].splitlines(), live)


if __name__ == "__main__":
    unittest.main()
