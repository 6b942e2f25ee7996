#!/usr/bin/env python3
"""Kills the program, and a process that only saves, at random moments, and looks at what is left behind.

Usage: killTest.py SAVING_CHILD PROGRAM. QIRAN_LOOPS in the environment is how many moments of each kind are tried
instead of 10, and QIRAN_SEED what chance starts from.
"""

import os
import pathlib
import random
import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))
import rig  # noqa: E402
from elements import ElementServer, stored  # noqa: E402
from engine import Engine, log_text  # noqa: E402

CHILD, PROGRAM = sys.argv[1:3]
MOMENTS = int(os.environ.get("QIRAN_LOOPS", 10))
SEED = int(os.environ.get("QIRAN_SEED", 1))
KEYS = 40
IMPORTED = 10**8  # frames that come in are numbered from here on
FRAMES = 5000
KILLS_OF_A_FILE = 25  # then another one is begun: each kill has its whole file read
FETCHED = {stored(number) for number in range(26)}
# What a kill may leave in the program folder while it downloads; the help names them all.
DOWNLOAD_FILES = r"(QiranDecode\.INI(\.\w{6})?|Keps\.lock|Keps|Keps/amateur\.txt|tempkeps\.\$\$\$|Keps/TEMPKEPS\.\$\$\$)"
ELEMENTS = {(letter.encode() * 68 + b"\r\n") * 3000 for letter in "ABCDEFGHIJKLMNOPQRSTUVWXYZ"}


class KillTest(unittest.TestCase):
    def setUp(self):
        self.random = random.Random(SEED)
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder, True)

    def start_and_stop(self, port):
        """The next start works: the program comes up in the folder and connects."""
        with Engine(port) as engine, rig.running(
                [PROGRAM, "--folder", self.folder, "--demo-report", self.folder / "report", "--demo-seconds", "3600"],
                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) as program:
            rig.wait_for(engine.monitoring, "the next start connects", alive=program)

    def test_a_process_that_saves_leaves_every_file_whole(self):
        settings = self.folder / rig.SETTINGS_FILE
        rig.write_settings(settings, {("SETUP", f"KEY_{key}"): "-1" for key in range(KEYS)} | {("OTHER", "MINE"): "x"})
        kills = 0
        for moment in range(MOMENTS):
            shutil.rmtree(self.folder / "LOGS", ignore_errors=True)
            (self.folder / "Keps").mkdir(exist_ok=True)
            with subprocess.Popen([CHILD, self.folder], stdout=subprocess.PIPE) as child:
                time.sleep(self.random.uniform(0.005, 0.15))
                child.kill()
                said = child.stdout.read()
            kills += 1
            where = f"moment {moment}, seed {SEED}"
            found = rig.read_settings(settings)
            self.assertEqual(found.get(("OTHER", "MINE")), "x", where)
            for key in range(KEYS):
                self.assertRegex(found.get(("SETUP", f"KEY_{key}"), "absent"), r"^(-1|\d+)$", where)
            elements = self.folder / "Keps" / "amateur.txt"
            if elements.exists():
                self.assertIn(elements.read_bytes(), ELEMENTS, where)
            shown = [line for line in said.split(b"\n")[:-1] if line.isdigit()]
            logged = log_text(self.folder).split(b"\r\n")
            for number in shown:
                self.assertEqual(logged[int(number)], b"line " + number, where)
        print(f"{kills} kills while saving, seed {SEED}")

    def names(self):
        return {str(path.relative_to(self.folder)) for path in self.folder.rglob("*")}

    def test_a_process_that_downloads_leaves_the_old_file_or_the_new_one(self):
        (self.folder / "Keps").mkdir()
        elements = self.folder / "Keps" / "amateur.txt"
        elements.write_bytes(stored(0))
        with ElementServer() as server:
            for moment in range(MOMENTS):
                server.pause = 0.002 * (moment % 2)  # a slow one is killed while it sends, a fast one while it stores
                before = server.requests
                with subprocess.Popen([CHILD, self.folder, "fetch", server.address], stdout=subprocess.DEVNULL) as child:
                    rig.wait_for(lambda start=before: server.requests > start, "it asks", alive=child)
                    time.sleep(self.random.uniform(0.0, 0.1))
                    child.kill()
                where = f"moment {moment}, seed {SEED}"
                self.assertIn(elements.read_bytes(), FETCHED, where)
                for name in self.names():
                    self.assertRegex(name, f"^{DOWNLOAD_FILES}$", where)
            self.assertGreater(server.cut, 0, "no kill hit a file on its way")
            done = subprocess.run([CHILD, self.folder, "fetch", server.address, "once"], stdout=subprocess.PIPE, check=True)
            self.assertIn(b"The Keps have been downloaded.", done.stdout)
            self.assertEqual(elements.read_bytes(), stored(server.requests - 1))
            self.assertEqual({name for name in self.names() if not name.startswith("QiranDecode.INI")},
                             {"Keps", "Keps/amateur.txt"})
            print(f"{MOMENTS} kills while downloading, {server.cut} of them with a file on its way, seed {SEED}")

    def kill_while_it_hears(self, *mode):
        """Starts the child, lets it hear, kills it, and so on; answers how many frames have been heard."""
        heard = of_earlier_files = 0
        for moment in range(MOMENTS):
            if moment % KILLS_OF_A_FILE == 0:
                of_earlier_files += heard
                heard = 0
                for path in self.folder.glob("tlm*"):
                    path.unlink()
            with subprocess.Popen([CHILD, self.folder, mode[0], str(heard), *mode[1:]], stdout=subprocess.PIPE) as child:
                said = child.stdout.readline()  # it is about its work
                time.sleep(self.random.uniform(0.0, 0.15))
                child.kill()
                said += child.stdout.read()
            numbers = [int(line) for line in said.split(b"\n")[:-1]]
            self.assertEqual(numbers, list(range(heard, heard + len(numbers))), f"moment {moment}, seed {SEED}")
            heard = numbers[-1] + 1
            self.check_history(heard, moment % KILLS_OF_A_FILE + 1, f"moment {moment}, seed {SEED}")
        return of_earlier_files + heard

    def check_history(self, heard, kills, where):
        """Every frame that was said to be kept stands there, once; beside them there is one torn line for each kill, at
        most. One more frame, which was not said any more, may be there from each kill."""
        lines = (self.folder / "tlm.txt").read_bytes().split(b"\n")
        whole = [re.fullmatch(rb"[^,]*Z,QIRAN-3,B,T#(\d+),1,2,3,4,0,0,00111111,0", line) for line in lines]
        numbers = [int(match[1]) for match in whole if match]
        own = [number for number in numbers if number < IMPORTED]
        self.assertLessEqual(set(range(heard)), set(own), where)
        self.assertLessEqual(set(own), set(range(heard + 1)), where)
        self.assertLessEqual(len(own) - len(set(own)), kills, where)  # of a number said by nobody, used again
        foreign = [line for line, match in zip(lines, whole) if not match and line and not line.startswith(b"utc,")]
        self.assertLessEqual(len(foreign), kills, where)
        imported = [number for number in numbers if number >= IMPORTED]
        self.assertIn(imported, ([], list(range(IMPORTED, IMPORTED + FRAMES))), where)
        for name in self.names():
            self.assertIn(name, ("tlm.txt", "tlm.before-import.txt", "tlm.before-import.txt.new", "tlm.importing.txt"), where)

    def test_a_process_that_records_leaves_all_but_the_line_it_was_writing(self):
        heard = self.kill_while_it_hears("hear")
        print(f"{MOMENTS} kills while recording {heard} frames, seed {SEED}")

    def test_a_process_that_imports_leaves_all_of_it_or_nothing_and_what_it_heard(self):
        with tempfile.TemporaryDirectory() as elsewhere:
            other = pathlib.Path(elsewhere, "other.txt")
            other.write_text("utc,source,side,sequence,raw1,raw2,raw3,raw4,field5,field6,field7,field8\n" + "".join(
                f"2020-01-01T{i // 3600:02}:{i // 60 % 60:02}:{i % 60:02}.000Z,QIRAN-3,B,T#{IMPORTED + i},1,2,3,4,0,0,00111111,0\n"
                for i in range(FRAMES)), encoding="ascii")
            heard = self.kill_while_it_hears("import", other)
        print(f"{MOMENTS} kills while importing, {heard} frames heard meanwhile, seed {SEED}")

    def test_the_program_leaves_settings_and_log_whole_and_starts_again(self):
        port = rig.free_port()
        rig.make_program_folder(self.folder, port, settings={
            ("TERMINAL", "LOGGING"): "True", ("SETUP", "ONLY_SHOW_QIRAN"): "FALSE"})
        self.start_and_stop(port)
        keys = set(rig.read_settings(self.folder / rig.SETTINGS_FILE))
        for moment in range(MOMENTS):
            where = f"moment {moment}, seed {SEED}"
            shutil.rmtree(self.folder / "LOGS", ignore_errors=True)
            with Engine(port) as engine:
                program = subprocess.Popen(
                    [PROGRAM, "--folder", self.folder, "--demo-report", self.folder / "report"],
                    stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
                if moment % 2:  # while it logs; otherwise anywhere in its start
                    rig.wait_for(engine.monitoring, "it connects", alive=program)
                end = time.monotonic() + self.random.uniform(0.0, 0.4)
                sent = []
                while time.monotonic() < end:
                    if engine.monitoring():
                        engine.heard(b"G0ABC", b"number %d." % len(sent))
                        sent.append(time.monotonic())
                    time.sleep(0.001)
                program.kill()
                killed = time.monotonic()
                program.wait()
            self.assertLessEqual(keys, set(rig.read_settings(self.folder / rig.SETTINGS_FILE)), where)
            text = log_text(self.folder)
            numbers = [int(part.split(b".")[0]) for part in text.split(b"number ")[1:] if b"." in part]
            self.assertEqual(numbers, list(range(len(numbers))), where)
            # What had been on its way for longer than this was shown, even on a busy machine.
            due = sum(1 for at in sent if killed - at > 1.0)
            self.assertGreaterEqual(len(numbers), due, where)
        self.start_and_stop(port)
        print(f"{MOMENTS} kills of the program, seed {SEED}")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[3:], verbosity=2)
