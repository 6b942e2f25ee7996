#!/usr/bin/env python3
"""A real packet engine, Dire Wolf, that hears 1200 baud audio without a sound card.

As a module: DirewolfAir, whose engine can be started, given messages to hear, ended and started again.
As a program it prints "listening PORT" and takes commands on standard input, a line each, answering each with "done":

    kiss                           before "done" a line with the port of the engine's KISS interface
    play SOURCE>DEST[,PATH]:text   the engine hears this frame (several lines queue up)
    stop                           the engine ends
    start                          the engine starts again on the same port
    quit                           the end, as is the end of standard input
"""

import collections
import pathlib
import shutil
import subprocess
import sys
import tempfile
import threading
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))
import rig  # noqa: E402

RATE = 44100
SAMPLE_BYTES = 2
BLOCK_SECONDS = 0.05
WAV_HEADER = 44

CONFIGURATION = """\
ADEVICE stdin null
ARATE {rate}
CHANNEL 0
MYCALL N0CALL
MODEM 1200
AGWPORT {port}
KISSPORT {kiss_port}
"""


def missing():
    """The names of the programs that this needs and the machine lacks."""
    return [name for name in ("direwolf", "gen_packets") if shutil.which(name) is None]


def audio_of(messages):
    """The 16-bit mono samples of the messages ("SOURCE>DEST,PATH:text"), one after the other."""
    with tempfile.TemporaryDirectory() as folder:
        text, wav = pathlib.Path(folder, "messages.txt"), pathlib.Path(folder, "heard.wav")
        text.write_bytes("".join(message + "\n" for message in messages).encode("cp1252"))
        subprocess.run(["gen_packets", "-r", str(RATE), "-o", wav, text], check=True, stdin=subprocess.DEVNULL,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        return wav.read_bytes()[WAV_HEADER:]


class DirewolfAir:
    """The engine and the air around it: silence, and whatever is played into it, in real time."""

    def __init__(self, port=None, log=None):
        """`port`: the AGW port, a free one unless given. `log`: a file for what the engine prints."""
        self.port = port or rig.free_port()
        self.kiss_port = rig.free_port()
        self._folder = tempfile.TemporaryDirectory()
        self._log = pathlib.Path(log or pathlib.Path(self._folder.name, "direwolf.log"))
        self._waiting = collections.deque()
        self._engine = None
        self._feeder = None
        self._ending = threading.Event()

    def __enter__(self):
        self.start()
        return self

    def __exit__(self, *_):
        self.stop()
        self._folder.cleanup()

    def start(self):
        """Starts the engine and waits until it accepts programs."""
        configuration = pathlib.Path(self._folder.name, "dw.conf")
        configuration.write_text(CONFIGURATION.format(rate=RATE, port=self.port, kiss_port=self.kiss_port), encoding="ascii")
        with self._log.open("ab") as log:
            self._engine = subprocess.Popen(
                ["direwolf", "-c", configuration, "-t", "0", "-r", str(RATE), "-D", "1"],
                stdin=subprocess.PIPE, stdout=log, stderr=subprocess.STDOUT, cwd=self._folder.name)
        self._ending.clear()
        self._feeder = threading.Thread(target=self._feed, args=(self._engine,), daemon=True)
        self._feeder.start()
        rig.wait_for(lambda: rig.accepts_connections(self.port), "Dire Wolf listens", alive=self._engine)

    def play(self, messages):
        """Lets the engine hear the messages, half a second of silence before and after."""
        silence = bytes(RATE * SAMPLE_BYTES // 2)
        self._waiting.append(silence + audio_of(messages) + silence)

    def stop(self):
        """Ends the engine as the end of its audio does."""
        if self._engine is None:
            return
        self._ending.set()
        self._feeder.join()
        try:
            self._engine.wait(5)
        except subprocess.TimeoutExpired:
            rig.end(self._engine)
        self._engine = None

    def output(self):
        """What the engine has printed."""
        return self._log.read_text(encoding="utf-8", errors="replace")

    def _feed(self, engine):
        size = int(RATE * BLOCK_SECONDS) * SAMPLE_BYTES
        due = time.monotonic()
        playing = b""
        try:
            while not self._ending.is_set():
                if not playing and self._waiting:
                    playing = self._waiting.popleft()
                block, playing = playing[:size], playing[size:]
                engine.stdin.write(block.ljust(size, b"\0"))
                engine.stdin.flush()
                due += BLOCK_SECONDS
                time.sleep(max(0.0, due - time.monotonic()))
        except OSError:
            pass  # the engine went first
        try:
            engine.stdin.close()
        except OSError:
            pass


def main():
    if missing():
        print("missing " + " ".join(missing()), flush=True)
        return 77
    with DirewolfAir() as air:
        print(f"listening {air.port}", flush=True)
        for line in sys.stdin:
            command, _, rest = line.rstrip("\n").partition(" ")
            if command == "kiss":
                print(air.kiss_port, flush=True)
            elif command == "play":
                air.play([rest])
            elif command == "stop":
                air.stop()
            elif command == "start":
                air.start()
            elif command == "quit":
                break
            else:
                print(f"not understood: {line.rstrip()}", flush=True)
                continue
            print("done", flush=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
