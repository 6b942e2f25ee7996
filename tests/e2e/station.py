"""The program at work under a display of its own, driven by keys, watched through its traffic log and its report."""

import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))

import rig  # noqa: E402

PROGRAM = os.environ.get("QIRAN_PROGRAM", "")
SIMULATOR = os.environ.get("QIRAN_SIMULATOR", "")
MAIN_WINDOW = r"QIRAN Telemetry Decoder    V[0-9.]+"


class Program:
    """The running program in its folder. Everything that its terminal shows is in its log at once."""

    def __init__(self, folder, environment, scratch, command=None):
        """`command`: what starts it instead of the built program, whose report it then does not print."""
        self.folder = folder
        self.environment = environment
        self.pictures = scratch / "pictures"
        self.pictures.mkdir(exist_ok=True)
        self._out = scratch / "stdout"
        self._errors = scratch / "stderr"
        with self._out.open("wb") as out, self._errors.open("wb") as errors:
            self.process = subprocess.Popen(
                command or [PROGRAM, "--folder", folder, "--demo-report", self.pictures, "--demo-seconds", "3000"],
                env=environment, stdin=subprocess.DEVNULL, stdout=out, stderr=errors)

    def log(self):
        """The bytes of the traffic logs, the days' files one after the other."""
        return b"".join(path.read_bytes() for path in sorted((self.folder / "LOGS").glob("*.TXT")))

    def wait_for_text(self, text, seconds=30, times=1):
        """Waits until the log holds the text, so many times."""
        wanted = text.encode("cp1252")
        try:
            rig.wait_for(lambda: self.log().count(wanted) >= times, f"the log holds {text!r} {times} times", seconds,
                         alive=self.process)
        except AssertionError as problem:
            raise AssertionError(f"{problem}\nThe log: {self.log().decode('cp1252')}\n{self.errors()}") from None

    def wait_for_line(self, pattern, seconds=30):
        """Waits until a line of the log matches, and answers the match."""
        expression = re.compile(pattern, re.MULTILINE)
        try:
            return rig.wait_for(lambda: expression.search(self.log().decode("cp1252")), f"a line like {pattern!r}",
                                seconds, alive=self.process)
        except AssertionError as problem:
            raise AssertionError(f"{problem}\nThe log: {self.log().decode('cp1252')}\n{self.errors()}") from None

    def errors(self):
        return self._errors.read_text(errors="replace")

    def end(self):
        """Asks the program to end; answers its report."""
        code = rig.end(self.process, 60)
        if code != 0:
            raise AssertionError(f"the program ended with {code}\n{self.errors()}")
        return rig.Report(self._out.read_text(encoding="utf-8", errors="replace"))

    # Keys

    def xdotool(self, *words):
        return subprocess.run(["xdotool", *map(str, words)], env=self.environment, capture_output=True, text=True,
                              stdin=subprocess.DEVNULL, timeout=60)

    def windows(self):
        """The numbers of this program's visible windows that have a caption, with these captions as people see them."""
        numbers = self.xdotool("search", "--all", "--onlyvisible", "--pid", self.process.pid, "--name", ".").stdout.split()
        return {number: self.xdotool("getwindowname", number).stdout.rstrip("\n") for number in numbers}

    def window(self, title, seconds=20):
        """Waits for a visible window of this program whose whole caption matches; answers its number."""
        def find():
            return next((number for number, caption in self.windows().items() if re.fullmatch(title, caption)), None)
        return rig.wait_for(find, f"a window named {title!r}", seconds, alive=self.process)

    def activate(self, title):
        """Brings a window to the front and waits until it has the keyboard."""
        window = self.window(title)

        def active():
            self.xdotool("windowactivate", window)
            return self.xdotool("getactivewindow").stdout.strip() == window
        rig.wait_for(active, f"{title!r} has the keyboard", alive=self.process)
        return window

    def wait_until_gone(self, window):
        rig.wait_for(lambda: window not in self.windows(), "the window has closed", alive=self.process)

    def key(self, *keys):
        self.xdotool("key", "--delay", "60", *keys)

    def type(self, text):
        self.xdotool("type", "--delay", "25", text)


class DesktopTest(unittest.TestCase):
    """A display, a window manager and a scratch folder for each test."""

    screen = "1600x1200x24"

    def setUp(self):
        scratch = tempfile.TemporaryDirectory(prefix="qiran station ")
        self.addCleanup(scratch.cleanup)
        self.scratch = pathlib.Path(scratch.name)
        display = rig.virtual_display(self.screen)
        environment = display.__enter__()
        self.addCleanup(display.__exit__, None, None, None)
        home = self.scratch / "home"
        home.mkdir(mode=0o700)
        self.environment = environment | {"HOME": str(home), "XDG_RUNTIME_DIR": str(home), "TZ": "UTC",
                                          "QT_ACCESSIBILITY": "0"}
        manager = rig.running(["openbox", "--sm-disable"], env=self.environment, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL)
        manager.__enter__()
        self.addCleanup(manager.__exit__, None, None, None)
        rig.wait_for(lambda: subprocess.run(["xdotool", "getactivewindow"], env=self.environment, capture_output=True,
                                            stdin=subprocess.DEVNULL).returncode in (0, 1)
                     and self.managed(), "the window manager works")

    def managed(self):
        answer = subprocess.run(["xdotool", "get_num_desktops"], env=self.environment, capture_output=True, text=True,
                                stdin=subprocess.DEVNULL)
        return answer.returncode == 0


class StationTest(DesktopTest):
    def start(self, port, settings=None):
        """Starts the program on a fresh folder whose engine is at `port` of this machine."""
        folder = rig.make_program_folder(
            self.scratch / "folder", port,
            settings={("TERMINAL", "LOGGING"): "True", ("SETUP", "ONLY_SHOW_QIRAN"): "FALSE"} | (settings or {}))
        program = Program(folder, self.environment, self.scratch)
        self.addCleanup(rig.end, program.process)
        return program
