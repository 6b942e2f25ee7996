"""The command line in a program folder of a test's own."""

import csv
import io
import json
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
PROGRAM = os.environ["QIRAN_CLI"]
NAME = "qirandecode-cli: "


def records(text):
    """The objects of a JSON output, a line each."""
    return [json.loads(line) for line in text.splitlines()]


def rows(text):
    """The lines of a CSV output, each by its columns' names."""
    return list(csv.DictReader(io.StringIO(text, newline="")))


class CommandTest(unittest.TestCase):
    """A folder with the demonstration's settings, formulae and elements for each test."""

    def setUp(self):
        scratch = tempfile.TemporaryDirectory(prefix="qiran cli ")
        self.addCleanup(scratch.cleanup)
        self.scratch = pathlib.Path(scratch.name)
        self.folder = self.scratch / "folder"
        shutil.copytree(ROOT / "data/demo", self.folder, ignore=shutil.ignore_patterns("README*", "*.pesim"))
        self.settings = self.folder / "QiranDecode.INI"
        self.environment = {"LC_ALL": "C.UTF-8", "TZ": "UTC", "PATH": os.environ["PATH"], "HOME": str(self.scratch),
                            "LSAN_OPTIONS": os.environ.get("LSAN_OPTIONS", "")}

    def start(self, *words, **options):
        """A process; the folder is named unless `words` do. `prefix`: what runs the command."""
        folder = [] if "--folder" in words else ["--folder", self.folder]
        environment = self.environment | options.pop("environment", {})
        prefix = options.pop("prefix", ())
        return subprocess.Popen([str(word) for word in (*prefix, PROGRAM, *folder, *words)], env=environment,
                                stdin=options.pop("stdin", subprocess.DEVNULL), **options)

    def call(self, *words, code=0, typed=None, **options):
        """Runs a command to its end; answers its output. What it says stands in `self.said`."""
        process = self.start(*words, stdin=subprocess.DEVNULL if typed is None else subprocess.PIPE,
                             stdout=subprocess.PIPE, stderr=subprocess.PIPE, **options)
        out, errors = process.communicate(None if typed is None else typed.encode(), timeout=60)
        self.said = errors.decode()
        for line in self.said.splitlines():
            self.assertTrue(line.startswith(NAME), self.said)
        self.assertEqual(process.returncode, code, self.said)
        return out.decode()

    def contents(self, folder=None):
        """All that stands in the folder: names, bytes, and when each was last changed."""
        folder = folder or self.folder
        return {str(path.relative_to(folder)): (path.read_bytes() if path.is_file() else None, path.stat().st_mtime_ns)
                for path in [folder, *folder.rglob("*")]}
