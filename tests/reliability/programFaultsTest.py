#!/usr/bin/env python3
"""The program among others: many starts at once, a folder that falls apart, an engine that vanishes.

Usage: programFaultsTest.py SAVING_CHILD PROGRAM. QIRAN_LONG=1 in the environment waits the real 30 seconds of a
retry and the two minutes after which a vanished engine is given up.
"""

import contextlib
import os
import pathlib
import shutil
import signal
import stat
import subprocess
import sys
import tempfile
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))
import rig  # noqa: E402
from engine import Engine, log_text  # noqa: E402

PROGRAM = sys.argv[2]
LONG = bool(os.environ.get("QIRAN_LONG"))
ALREADY = "QiranDecode is already running. "
NAMES = ("QiranDecode.INI", "formula.txt", "Keps", "LOGS", "world.gif", "qirandecode.HLP", "QiranDecode.lock")


def under_file_modes():
    """What to put before a command for which file modes are to count; None where they cannot be made to."""
    if os.geteuid() != 0:
        return ()
    rights = "-dac_override,-dac_read_search"
    prefix = ("setpriv", f"--bounding-set={rights}", f"--inh-caps={rights}")
    with tempfile.NamedTemporaryFile() as closed:
        os.chmod(closed.name, 0)
        try:
            kept = subprocess.run([*prefix, "cat", closed.name], capture_output=True).returncode == 1
        except FileNotFoundError:
            kept = False
    return prefix if kept else None


class ProgramFaultsTest(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder, True)
        self.port = rig.free_port()
        self.program_folder = rig.make_program_folder(self.folder / "program", self.port, settings={
            ("TERMINAL", "LOGGING"): "True", ("SETUP", "ONLY_SHOW_QIRAN"): "FALSE",
            ("AGWPE", "LOGIN_ID"): "somebody", ("AGWPE", "PASSWORD"): "hush-hush"})

    def start(self, seconds=2, prefix=(), folder=None, **options):
        return rig.running(
            [*prefix, PROGRAM, "--folder", folder or self.program_folder, "--demo-report", self.folder / "report",
             "--demo-seconds", str(seconds)],
            stdout=subprocess.PIPE, stderr=subprocess.PIPE, **options)

    def finish(self, program):
        said, errors = (stream.decode() for stream in program.communicate(timeout=180))
        return said, errors

    def test_of_twenty_starts_at_once_one_runs_and_the_others_say_so(self):
        programs = [self.start(seconds=20 if LONG else 12) for _ in range(20)]
        running = [program.__enter__() for program in programs]
        try:
            rig.wait_for(lambda: sum(program.poll() is not None for program in running) >= 19, "the others end", 60)
            self.assertEqual(sum(program.poll() is None for program in running), 1)
            for program in running:
                if program.poll() is not None:
                    self.assertEqual(program.returncode, 1)
                    self.assertIn(ALREADY, program.stderr.read().decode())
        finally:
            for program in programs:
                program.__exit__(None, None, None)

    def test_it_ends_when_asked_twice_while_a_notice_of_the_start_stands_open(self):
        for name, latitude in (("both notices", '""'), ("that of missing elements alone", "5130.00N")):
            with self.subTest(name), Engine(self.port) as engine:
                folder = rig.make_program_folder(self.folder / name, self.port,
                                                  settings={("SETUP", "LATITUDE"): latitude})
                shutil.rmtree(folder / "Keps", ignore_errors=True)
                with rig.running([PROGRAM, "--folder", folder], stderr=subprocess.PIPE) as program:
                    # The notice's own loop runs the link.
                    rig.wait_for(engine.monitoring, "it connects", alive=program)
                    program.send_signal(signal.SIGTERM)
                    program.send_signal(signal.SIGHUP)
                    self.assertEqual(program.wait(timeout=60), 0)
                self.assertFalse((folder / "QiranDecode.lock").exists())

    def test_everything_it_makes_is_for_its_owner_alone(self):
        (self.program_folder / rig.SETTINGS_FILE).unlink()
        rig.write_settings(self.program_folder / rig.SETTINGS_FILE, {("AGWPE", "HOST_PORT"): self.port,
                                                                     ("TERMINAL", "LOGGING"): "True"})
        there = set(self.program_folder.rglob("*"))
        found = {}
        def look():
            for path in set(self.program_folder.rglob("*")) - there:
                found[path.name] = stat.S_IMODE(path.stat().st_mode)
            return engine.monitoring()
        with Engine(self.port) as engine, self.start(preexec_fn=lambda: os.umask(0)) as program:
            rig.wait_for(look, "it connects", alive=program)
            engine.heard(b"G0ABC", b"a frame")
            rig.wait_for(lambda: look() and b"a frame" in log_text(self.program_folder), "it is logged", alive=program)
            self.finish(program)
        self.assertIn("QiranDecode.lock", found)
        self.assertTrue(any(name.endswith(".TXT") for name in found), found)
        self.assertEqual({name: oct(mode) for name, mode in found.items() if mode & 0o077}, {})

    def test_the_password_goes_to_the_engine_and_nowhere_else(self):
        with Engine(self.port) as engine, self.start() as program:
            rig.wait_for(engine.monitoring, "it connects", alive=program)
            process = pathlib.Path("/proc", str(program.pid))
            shown = (process / "cmdline").read_bytes() + (process / "environ").read_bytes()
            said, errors = self.finish(program)
            self.assertIn(b"hush-hush", engine.received)
        self.assertNotIn(b"hush-hush", shown)
        self.assertNotIn("hush-hush", said + errors)
        for log in (self.program_folder / "LOGS").glob("*"):
            self.assertNotIn(b"hush-hush", log.read_bytes())

    def break_folder(self, name, fault):
        """A program folder of its own with one file broken."""
        folder = self.folder / f"{name} {fault}"
        shutil.copytree(self.program_folder, folder)
        path = folder / name
        if path.is_dir():
            shutil.rmtree(path)
        else:
            path.unlink(missing_ok=True)
        if fault == "a directory":
            path.mkdir()
        elif fault == "a file":
            path.write_bytes(b"")
        elif fault == "a dangling link":
            path.symlink_to("nowhere")
        elif fault == "a link to itself":
            path.symlink_to(name)
        elif fault == "garbage":
            path.write_bytes(bytes(range(256)) * 300)
        if path.is_file():
            os.utime(path, (1, 1))  # an empty lock of this moment is a start under way
        return folder

    def test_it_starts_or_says_why_whatever_is_missing_or_a_directory_or_garbage(self):
        for fault in ("missing", "a directory", "a file", "a dangling link", "a link to itself", "garbage"):
            with contextlib.ExitStack() as stack:
                programs = {name: stack.enter_context(self.start(seconds=1, folder=self.break_folder(name, fault)))
                            for name in NAMES}
                for name, program in programs.items():
                    with self.subTest(name=name, fault=fault):
                        said, errors = self.finish(program)
                        # A crash has a negative code; 1 is a start that said why not.
                        self.assertIn(program.returncode, (0, 1), errors)
                        if program.returncode == 1:
                            self.assertEqual(name, "formula.txt", errors)

    def close_to_all(self, path):
        """Takes all rights from a file or folder of the program, as its owner may; gives them back in the end."""
        if not path.exists():
            path.mkdir() if path.name == "LOGS" else path.write_bytes(b"")
        if path.is_file():
            os.utime(path, (1, 1))
        self.addCleanup(path.chmod, 0o700)
        path.chmod(0)

    def modes_that_count(self):
        prefix = under_file_modes()
        if prefix is None:
            self.skipTest("file modes do not count for this user")
        return prefix

    def test_it_starts_or_says_why_whatever_it_may_not_read(self):
        prefix = self.modes_that_count()
        with contextlib.ExitStack() as stack:
            programs = {}
            for name in (*NAMES, "."):
                folder = self.folder / f"closed {name}"
                shutil.copytree(self.program_folder, folder)
                self.close_to_all(folder / name)
                programs[name] = stack.enter_context(self.start(seconds=1, prefix=prefix, folder=folder))
            # A lock that may not be read is somebody else's for all one can know.
            reasons = {"formula.txt": "An error occurred loading the formulae.", ".": "formula.txt",
                       "QiranDecode.lock": ALREADY}
            for name, program in programs.items():
                with self.subTest(name=name):
                    said, errors = self.finish(program)
                    self.assertEqual(program.returncode, 1 if name in reasons else 0, errors)
                    self.assertIn(reasons.get(name, ""), errors)

    def test_in_a_folder_that_may_only_be_read_one_runs_and_saves_its_settings(self):
        prefix = self.modes_that_count()
        settings = self.program_folder / rig.SETTINGS_FILE
        self.assertNotIn(b"LEFT=", settings.read_bytes())
        self.addCleanup(self.program_folder.chmod, 0o700)
        self.program_folder.chmod(0o500)
        with Engine(self.port) as engine, self.start(seconds=60, prefix=prefix) as first:
            rig.wait_for(engine.monitoring, "it connects", alive=first)
            with self.start(prefix=prefix) as second:
                said, errors = self.finish(second)
            self.assertEqual(second.returncode, 1, errors)
            self.assertIn(ALREADY, errors)
            self.assertRegex(errors, rf"the folder {self.program_folder}/? is held by process {first.pid} \(.*QiranDecode")
            self.assertIn(b"LEFT=", settings.read_bytes())
            rig.end(first)
        self.assertFalse((self.program_folder / "QiranDecode.lock").exists())

    def test_it_goes_on_when_it_may_no_longer_read_anything(self):
        with Engine(self.port) as engine, self.start(seconds=4, prefix=self.modes_that_count()) as program:
            rig.wait_for(engine.monitoring, "it connects", alive=program)
            engine.heard(b"G0ABC", b"before")
            settings = (self.program_folder / rig.SETTINGS_FILE).read_bytes()
            for path in (*self.program_folder.iterdir(), self.program_folder):
                self.close_to_all(path)
            engine.heard(b"G0ABC", b"afterwards")
            said, errors = self.finish(program)
        self.assertEqual(program.returncode, 0, errors)
        self.assertIn("afterwards", said)
        self.assertEqual((self.program_folder / rig.SETTINGS_FILE).read_bytes(), settings)

    def test_it_goes_on_when_its_folder_falls_apart(self):
        with Engine(self.port) as engine, self.start(seconds=4) as program:
            rig.wait_for(engine.monitoring, "it connects", alive=program)
            engine.heard(b"G0ABC", b"before")
            for path in sorted(self.program_folder.iterdir()):
                if path.is_dir():
                    shutil.rmtree(path)
                    path.write_bytes(b"")
                else:
                    path.unlink()
                    path.mkdir()
            engine.heard(b"G0ABC", b"afterwards")
            said, errors = self.finish(program)
        self.assertEqual(program.returncode, 0, errors)
        self.assertIn("afterwards", said)

    def test_it_goes_on_when_its_folder_is_gone(self):
        with Engine(self.port) as engine, self.start(seconds=4) as program:
            rig.wait_for(engine.monitoring, "it connects", alive=program)
            shutil.rmtree(self.program_folder)
            engine.heard(b"G0ABC", b"afterwards")
            said, errors = self.finish(program)
        self.assertEqual(program.returncode, 0, errors)
        self.assertIn("afterwards", said)

    @unittest.skipUnless(LONG, "takes half a minute; set QIRAN_LONG=1")
    def test_it_is_connected_again_within_31_seconds_of_the_engines_return(self):
        with Engine(self.port) as engine, self.start(seconds=60) as program:
            rig.wait_for(engine.monitoring, "it connects", alive=program)
            engine.__exit__()
            with Engine(self.port) as again:
                back = time.monotonic()
                rig.wait_for(again.monitoring, "it connects again", 31, alive=program)
                print(f"connected again {time.monotonic() - back:.1f} s after the engine's return")
                self.assertEqual(again.connections, 1)

    @unittest.skipUnless(LONG, "takes three minutes; set QIRAN_LONG=1")
    def test_an_engine_that_vanishes_without_closing_is_given_up_and_found_again(self):
        name = f"qiran{os.getpid() % 10000}"
        def ip(*words, check=True):
            return subprocess.run(["ip", *words], check=check, stderr=subprocess.DEVNULL).returncode
        if shutil.which("ip") is None or ip("netns", "add", name, check=False) != 0:
            self.skipTest("this machine gives us no network namespace")
        self.addCleanup(ip, "netns", "del", name, check=False)
        ip("link", "add", f"{name}a", "type", "veth", "peer", "name", f"{name}b", "netns", name)
        ip("addr", "add", "10.213.77.1/30", "dev", f"{name}a")
        ip("link", "set", f"{name}a", "up")
        ip("-n", name, "addr", "add", "10.213.77.2/30", "dev", f"{name}b")
        ip("-n", name, "link", "set", f"{name}b", "up")
        rig.write_settings(self.program_folder / rig.SETTINGS_FILE, {("AGWPE", "HOST_ADDRESS"): "10.213.77.1"})
        with Engine(self.port, "10.213.77.1") as engine, \
                self.start(seconds=220, prefix=("ip", "netns", "exec", name)) as program:
            rig.wait_for(engine.monitoring, "it connects", alive=program)
            ip("link", "set", f"{name}a", "down")
            time.sleep(150)
            ip("link", "set", f"{name}a", "up")
            back = time.monotonic()
            rig.wait_for(lambda: engine.connections >= 2, "it connects again", 60, alive=program)
            print(f"connected again {time.monotonic() - back:.1f} s after the link's return")
            said, _ = self.finish(program)
            self.assertIn("*** AGW-Error with connection to 10.213.77.1", said)
            self.assertEqual(said.count("*** AGW-Disconnected from"), 1)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[3:], verbosity=2)
