"""The packages of a build, and how they are installed for a test."""

import atexit
import functools
import os
import pathlib
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(os.environ["QIRAN_BUILD"])
VERSION = os.environ["QIRAN_VERSION"]


def call(*command, **options):
    done = subprocess.run([str(word) for word in command], capture_output=True, text=True, stdin=subprocess.DEVNULL,
                          timeout=120, **options)
    if done.returncode != 0:
        raise AssertionError(f"{command} ended with {done.returncode}:\n{done.stdout}{done.stderr}")
    return done.stdout


@functools.cache
def made():
    """The folder in which the packages lie, made once for all tests."""
    folder = tempfile.TemporaryDirectory(prefix="qiran packages ")
    atexit.register(folder.cleanup)
    out = pathlib.Path(folder.name)
    call("cpack", "--config", BUILD / "CPackConfig.cmake", "-B", out)
    return out


class PackagesTest(unittest.TestCase):
    """The packages, and a home to start what they bring in."""

    @classmethod
    def setUpClass(cls):
        cls.out = made()
        cls.archive = next(cls.out.glob("*.tar.gz"))
        cls.debian = next(cls.out.glob("qirandecode_*.deb"))
        cls.commands = next(cls.out.glob("qirandecode-cli_*.deb"))

    def setUp(self):
        scratch = tempfile.TemporaryDirectory(prefix="qiran home ")
        self.addCleanup(scratch.cleanup)
        self.scratch = pathlib.Path(scratch.name)
        self.home = self.scratch / "home"
        self.home.mkdir()
        self.environment = {"HOME": str(self.home), "PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8",
                            "QT_QPA_PLATFORM": "offscreen", "XDG_RUNTIME_DIR": str(self.scratch)}

    def install(self):
        """The packages put into a root of their own, with the package manager's own records."""
        root = self.scratch / "root"
        (root / "var/lib/dpkg/info").mkdir(parents=True)
        (root / "etc").mkdir()
        (root / "var/lib/dpkg/updates").mkdir()
        (root / "var/lib/dpkg/status").touch()
        (root / "var/lib/dpkg/available").touch()
        self.dpkg(root, "--install", self.commands, self.debian)
        return root

    def install_without_blanks(self):
        """The same where no name of a folder has a blank, which the words of a unit would not survive."""
        plain = tempfile.TemporaryDirectory(prefix="qiran-root-")
        self.addCleanup(plain.cleanup)
        self.scratch = pathlib.Path(plain.name)
        return self.install()

    @staticmethod
    def dpkg(root, *action):
        call(*([] if os.geteuid() == 0 else ["fakeroot"]), "dpkg", f"--root={root}", "--force-not-root",
             "--force-depends", "--force-bad-path", "--force-script-chrootless", "--log=/dev/null", *action,
             env=os.environ | {"LC_ALL": "C.UTF-8"})
