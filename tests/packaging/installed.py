"""The packages made from a build, and a root of its own to install them into."""

import os
import pathlib
import subprocess
import tempfile
import unittest

BUILD = pathlib.Path(os.environ["QIRAN_BUILD"])


def call(*command, **options):
    done = subprocess.run([str(word) for word in command], capture_output=True, text=True, stdin=subprocess.DEVNULL,
                          timeout=120, **options)
    if done.returncode != 0:
        raise AssertionError(f"{command} ended with {done.returncode}:\n{done.stdout}{done.stderr}")
    return done.stdout


def dpkg(root, *action):
    call(*([] if os.geteuid() == 0 else ["fakeroot"]), "dpkg", f"--root={root}", "--force-not-root",
         "--force-depends", "--force-bad-path", "--force-script-chrootless", "--log=/dev/null", *action,
         env=os.environ | {"LC_ALL": "C.UTF-8"})


def install(root, *packages):
    """Puts packages into a root of their own, with the package manager's own records."""
    (root / "var/lib/dpkg/info").mkdir(parents=True)
    (root / "etc").mkdir()
    (root / "var/lib/dpkg/updates").mkdir()
    (root / "var/lib/dpkg/status").touch()
    (root / "var/lib/dpkg/available").touch()
    dpkg(root, "--install", *packages)
    return root


class PackagesTest(unittest.TestCase):
    """What cpack makes of the build, once for all tests of a class: the archive and both Debian packages."""

    generators = "TGZ;DEB"

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.made = tempfile.TemporaryDirectory(prefix="qiran packages ")
        cls.out = pathlib.Path(cls.made.name)
        call("cpack", "--config", BUILD / "CPackConfig.cmake", "-G", cls.generators, "-B", cls.out)
        cls.archive = next(cls.out.glob("*.tar.gz"), None)
        cls.debian = next(cls.out.glob("qirandecode_*.deb"))
        cls.commands = next(cls.out.glob("qirandecode-cli_*.deb"))

    @classmethod
    def tearDownClass(cls):
        cls.made.cleanup()
        super().tearDownClass()
