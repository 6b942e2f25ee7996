#!/usr/bin/env python3
"""Takes the disk away from every write of the program: a limit on file sizes, and a file system that is full.

Usage: fullDiskTest.py SAVING_CHILD PROGRAM. The full file system needs the right to mount one, and is skipped
without it.
"""

import contextlib
import os
import pathlib
import resource
import shutil
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))
import rig  # noqa: E402
from elements import ElementServer, stored  # noqa: E402
from engine import Engine, log_text  # noqa: E402

CHILD, PROGRAM = sys.argv[1:3]
LOST = "*** The settings cannot be saved in "


@contextlib.contextmanager
def small_disk(kilobytes):
    """A file system of this size; skips the test where it cannot be had."""
    place = pathlib.Path(tempfile.mkdtemp())
    options = ["-t", "tmpfs", "-o", f"size={kilobytes}k", "tmpfs", place]
    if subprocess.run(["mount", *options], stderr=subprocess.DEVNULL).returncode != 0:
        place.rmdir()
        raise unittest.SkipTest("this machine mounts no file system for us")
    try:
        yield place
    finally:
        subprocess.run(["umount", "-l", place], check=True)
        place.rmdir()


def fill(folder):
    """Leaves no byte of the file system."""
    with (folder / "filler").open("wb", buffering=0) as filler, contextlib.suppress(OSError):
        while True:
            filler.write(b"x" * 4096)


def limit_files(size):
    return lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (size, resource.RLIM_INFINITY))


class FullDiskTest(unittest.TestCase):
    def setUp(self):
        self.port = rig.free_port()

    def run_program(self, folder, report, before=None, limit=None):
        """Starts the program, feeds it two frames around `before`, and returns its report."""
        with Engine(self.port) as engine, rig.running(
                [PROGRAM, "--folder", folder, "--demo-report", report, "--demo-seconds", "4"],
                stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, preexec_fn=limit,
                # Qt loses the memory of a picture that it cannot write, and with the disk full it cannot.
                env=os.environ | {"ASAN_OPTIONS": "detect_leaks=0"}) as program:
            rig.wait_for(engine.monitoring, "it connects", alive=program)
            engine.heard(b"G0ABC", b"first frame")
            if before:
                rig.wait_for(lambda: b"first frame" in log_text(folder), "it is logged", alive=program)
                before()
            engine.heard(b"G0ABC", b"second frame")
            said = program.communicate(timeout=120)[0].decode()
            self.assertEqual(program.returncode, 0)
        return said

    def make_folder(self, folder):
        rig.make_program_folder(folder, self.port, settings={
            ("TERMINAL", "LOGGING"): "True", ("SETUP", "ONLY_SHOW_QIRAN"): "FALSE"})

    def test_a_limit_below_every_file_loses_nothing_and_is_said_once(self):
        folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, folder)
        self.make_folder(folder)
        before = (folder / rig.SETTINGS_FILE).read_bytes()
        said = self.run_program(folder, folder / "report", limit=limit_files(0))
        self.assertEqual((folder / rig.SETTINGS_FILE).read_bytes(), before)
        self.assertIn("second frame", said)
        self.assertEqual(said.count(LOST), 1, said)

    def test_a_limit_inside_the_log_keeps_what_was_logged(self):
        folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, folder)
        self.make_folder(folder)
        said = self.run_program(folder, folder / "report", limit=limit_files(60))
        self.assertIn("second frame", said)
        log = next((folder / "LOGS").glob("*.TXT")).read_bytes()
        self.assertEqual(len(log), 60)

    def test_a_disk_that_fills_while_it_runs_loses_nothing(self):
        with small_disk(8192) as disk, tempfile.TemporaryDirectory() as report:
            folder = disk / "program"
            self.make_folder(folder)
            settings = folder / rig.SETTINGS_FILE
            said = self.run_program(folder, report, before=lambda: fill(disk))
            self.assertIn("second frame", said)
            found = rig.read_settings(settings)
            self.assertEqual(found[("TERMINAL", "LOGGING")], "True")
            self.assertEqual(found[("AGWPE", "HOST_PORT")], str(self.port))
            self.assertIn(b"first frame", next((folder / "LOGS").glob("*.TXT")).read_bytes())

    def test_a_full_disk_at_the_start_does_not_stop_it(self):
        with small_disk(8192) as disk, tempfile.TemporaryDirectory() as report:
            folder = disk / "program"
            self.make_folder(folder)
            before = (folder / rig.SETTINGS_FILE).read_bytes()
            fill(disk)
            said = self.run_program(folder, report)
            self.assertIn("second frame", said)
            self.assertEqual(said.count(LOST), 1, said)
            self.assertEqual((folder / rig.SETTINGS_FILE).read_bytes(), before)

    def test_elements_stay_whole_wherever_the_room_ends(self):
        old = b"old elements\r\n" * 10
        outcomes = set()
        # Fetched and mended: twice the file, so the room ends in each of them.
        for kilobytes in range(64, 640, 16):
            with small_disk(kilobytes) as folder:
                (folder / "Keps").mkdir()
                (folder / "Keps" / "amateur.txt").write_bytes(old)
                said = subprocess.run([CHILD, folder, "once"], stdout=subprocess.PIPE, check=True).stdout.decode()
                stands = (folder / "Keps" / "amateur.txt").read_bytes()
                if "elements: " in said:
                    self.assertEqual(stands, old, f"{kilobytes} KiB")
                    outcomes.add("old")
                else:
                    self.assertEqual(len(stands), 210000, f"{kilobytes} KiB")
                    outcomes.add("new")
        self.assertIn("old", outcomes)
        self.assertIn("new", outcomes)

    def fetch(self, folder, server):
        """What a download says, and what stands afterwards in the folders that it writes to."""
        said = subprocess.run([CHILD, folder, "fetch", server.address, "once"], stdout=subprocess.PIPE,
                              check=True).stdout.decode()
        names = {path.name for path in folder.rglob("*")} - {rig.SETTINGS_FILE, "filler"}
        self.assertEqual(names, {"Keps", "amateur.txt"}, said)
        return said

    def test_a_disk_that_fills_during_a_download_keeps_the_old_file(self):
        old = b"old elements\r\n" * 10
        with small_disk(8192) as folder:
            (folder / "Keps").mkdir()
            elements = folder / "Keps" / "amateur.txt"
            elements.write_bytes(old)
            with ElementServer(midway=lambda: fill(folder)) as server:
                said = self.fetch(folder, server)
            self.assertIn("File 1 - The file could not be stored: ", said)
            self.assertEqual(elements.read_bytes(), old)
            (folder / "filler").unlink()
            with ElementServer() as server:
                said = self.fetch(folder, server)
            self.assertNotIn("could not be stored", said)
            self.assertEqual(elements.read_bytes(), stored(0))

    def test_a_download_stays_whole_wherever_the_room_ends(self):
        old = b"old elements\r\n" * 10
        outcomes = set()
        with ElementServer() as server:
            for kilobytes in range(32, 640, 32):
                with small_disk(kilobytes) as folder:
                    (folder / "Keps").mkdir()
                    elements = folder / "Keps" / "amateur.txt"
                    elements.write_bytes(old)
                    said = self.fetch(folder, server)
                    if "could not be stored" in said:
                        self.assertEqual(elements.read_bytes(), old, f"{kilobytes} KiB")
                        outcomes.add("old")
                    else:
                        self.assertEqual(elements.read_bytes(), stored(server.requests - 1), f"{kilobytes} KiB")
                        outcomes.add("new")
        self.assertEqual(outcomes, {"old", "new"})


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[3:], verbosity=2)
