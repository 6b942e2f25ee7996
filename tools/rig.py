"""What it takes to run the program beside an engine: a display of its own, free ports, processes that end in order.

Used by tools/demonstrate, the end-to-end tests and the packaging tests. Python's standard library only.
"""

import contextlib
import os
import pathlib
import random
import shutil
import signal
import socket
import subprocess
import threading
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
SETTINGS_FILE = "QiranDecode.INI"


def free_port():
    """A TCP port that nobody uses at this moment, of those that the program takes: it knows none above 32767."""
    while True:
        port = random.randrange(10000, 32768)
        with socket.socket() as probe:
            try:
                probe.bind(("", port))
                return port
            except OSError:
                continue


def wait_for(condition, what, seconds=30.0, alive=None):
    """Asks `condition` until its answer is true, and returns that. `alive` names a process whose end ends the wait."""
    end = time.monotonic() + seconds
    while True:
        answer = condition()
        if answer:
            return answer
        if alive is not None and alive.poll() is not None:
            answer = condition()
            if answer:
                return answer
            raise AssertionError(f"{what}: the process ended with {alive.returncode} first")
        if time.monotonic() > end:
            raise AssertionError(f"{what}: not within {seconds} s")
        time.sleep(0.02)


def accepts_connections(port):
    with socket.socket() as probe:
        probe.settimeout(1)
        return probe.connect_ex(("127.0.0.1", port)) == 0


def end(process, seconds=15.0):
    """Asks a process to end, and makes it end when it does not. Returns its exit code."""
    if process.poll() is None:
        process.send_signal(signal.SIGTERM)
        try:
            process.wait(seconds)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()
    return process.returncode


@contextlib.contextmanager
def running(command, **options):
    """A process that does not outlive the block."""
    process = subprocess.Popen([str(word) for word in command], stdin=options.pop("stdin", subprocess.DEVNULL), **options)
    try:
        yield process
    finally:
        end(process)
        for stream in (process.stdin, process.stdout, process.stderr):
            if stream is not None:
                with contextlib.suppress(OSError):
                    stream.close()


class Simulator:
    """The packet engine simulator, playing a script; what it says of the program is in `lines`."""

    def __init__(self, program, script=None, loop=False, port=None):
        command = [str(program), "--port", str(port or free_port())]
        if script:
            command += ["--script", str(script)]
        if loop:
            command += ["--loop"]
        self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, bufsize=1)
        self.lines = []
        told = self.process.stdout.readline().split()
        if len(told) != 2 or told[0] != "listening":
            end(self.process)
            raise RuntimeError("the packet engine simulator did not start")
        self.port = int(told[1])
        self._reader = threading.Thread(target=self._read, daemon=True)
        self._reader.start()

    def _read(self):
        for line in self.process.stdout:
            self.lines.append(line.rstrip("\n"))

    def tell(self, *commands):
        """Commands of its script language, carried out at once."""
        for command in commands:
            self.process.stdin.write(command + "\n")
        self.process.stdin.flush()

    def frames(self, kind):
        """What programs have sent so far of one kind: pairs of header and data, as bytes."""
        whole = [bytes.fromhex(line.split()[2]) for line in list(self.lines) if line.startswith("frame ")]
        return [(frame[:36], frame[36:]) for frame in whole if chr(frame[4]) == kind]

    def __enter__(self):
        return self

    def __exit__(self, *_):
        end(self.process)
        self._reader.join(5)
        with contextlib.suppress(OSError):
            self.process.stdin.close()
        self.process.stdout.close()


@contextlib.contextmanager
def virtual_display(size="1600x1200x24", picture_folder=None):
    """An X server without a screen, on a display number that it finds itself; yields the environment for its clients.

    What it shows stands in `picture_folder`/Xvfb_screen0, when that is given, as an X window dump that changes with it.
    """
    theirs, ours = os.pipe()
    server = subprocess.Popen(
        ["Xvfb", "-displayfd", str(ours), "-screen", "0", size, "-nolisten", "tcp", "-noreset",
         *(["-fbdir", str(picture_folder)] if picture_folder else [])],
        stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, pass_fds=(ours,))
    os.close(ours)
    try:
        with os.fdopen(theirs) as told:
            number = told.readline().strip()
        if not number:
            raise RuntimeError("Xvfb did not start")
        environment = {name: value for name, value in os.environ.items()
                       if name not in ("WAYLAND_DISPLAY", "XAUTHORITY", "QT_QPA_PLATFORM")}
        yield environment | {"DISPLAY": f":{number}", "QT_QPA_PLATFORM": "xcb", "LC_ALL": "C.UTF-8"}
    finally:
        end(server)


def has_display():
    """Whether windows can be shown to somebody."""
    if os.environ.get("WAYLAND_DISPLAY"):
        return True
    display = os.environ.get("DISPLAY", "")
    if not display:
        return False
    if display.startswith(":"):
        return pathlib.Path(f"/tmp/.X11-unix/X{display[1:].split('.')[0]}").exists()
    return True


def make_program_folder(folder, port, data=ROOT / "data", settings=None):
    """A fresh program folder from the demonstration's files, its settings naming an engine on `port` of this machine.

    `settings` overrides single values: {("SETUP", "CALLSIGN"): "N0CALL"}.
    """
    folder = pathlib.Path(folder)
    if folder.exists():
        shutil.rmtree(folder)
    shutil.copytree(data / "demo", folder, ignore=shutil.ignore_patterns("README*", "*.pesim"))
    for shipped in ("world.gif", "qirandecode.HLP"):
        if (data / shipped).is_file():
            shutil.copy(data / shipped, folder)
    values = {("AGWPE", "HOST_ADDRESS"): "localhost", ("AGWPE", "HOST_PORT"): str(port)} | (settings or {})
    write_settings(folder / SETTINGS_FILE, values)
    return folder


def write_settings(path, values):
    """Sets values in a settings file, line by line; a section or key that is missing is added."""
    lines = path.read_bytes().decode("cp1252").splitlines() if path.is_file() else []
    for (section, key), value in values.items():
        head = f"[{section}]".upper()
        at = next((i for i, line in enumerate(lines) if line.strip().upper() == head), None)
        if at is None:
            lines += [f"[{section}]"]
            at = len(lines) - 1
        stop = next((i for i in range(at + 1, len(lines)) if lines[i].startswith("[")), len(lines))
        for i in range(at + 1, stop):
            if lines[i].split("=")[0].strip().upper() == key.upper():
                lines[i] = f"{key}={value}"
                break
        else:
            lines.insert(at + 1, f"{key}={value}")
    path.write_bytes("".join(line + "\r\n" for line in lines).encode("cp1252"))


def read_settings(path):
    """All values of a settings file: {(section, key): value}, names in upper case."""
    values, section = {}, ""
    for line in path.read_bytes().decode("cp1252").splitlines():
        if line.startswith("["):
            section = line.strip("[] ").upper()
        elif "=" in line:
            key, value = line.split("=", 1)
            values.setdefault((section, key.strip().upper()), value.strip())
    return values


class Report:
    """What the program printed at the end of a run with --demo-report."""

    HEADS = {"POWER": "gTlm0", "CURRENT": "gTlm1", "TEMPS": "gTlm2"}

    def __init__(self, text):
        self.grids = {}
        texts = {"Monitor:": [], "Terminal:": []}
        into = None
        for line in text.splitlines():
            cells = (line[:10].strip(), line[11:21].strip(), line[22:32].strip())
            if line in texts:
                into = texts[line]
            elif cells[0] in self.HEADS and cells[1:] == ("A", "B"):
                into = self.grids[self.HEADS[cells[0]]] = {}
            elif isinstance(into, list):
                into.append(line)
            elif into is not None and cells[0]:
                into[cells[0]] = cells[1:]
        self.monitor = "\n".join(texts["Monitor:"])
        self.terminal = "\n".join(texts["Terminal:"])
