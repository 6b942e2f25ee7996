#!/usr/bin/env python3
"""What is installed: the portable archive, the Debian package, and the files that tell a desktop about the program."""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path[:0] = [str(ROOT / "tools"), str(ROOT / "tests/cli")]

import kiss  # noqa: E402
import rig  # noqa: E402
import sids  # noqa: E402
from installed import BUILD, PackagesTest, call, dpkg, install  # noqa: E402

VERSION = os.environ["QIRAN_VERSION"]


def needed_packages(depends):
    """All packages of this machine that come with these dependencies, as "a (>= 1), b | c" names them."""
    form = "${Package}\t${Provides}\t${Pre-Depends}, ${Depends}\n"
    packages = [line.split("\t") for line in call("dpkg-query", "--show", "--showformat", form).splitlines()]
    names = lambda text: [word.split()[0].split(":")[0] for word in re.split("[,|]", text) if word.strip()]  # noqa: E731
    needs, providers = {}, {}
    for package, provides, wants in packages:
        needs[package] = names(wants)
        for name in [package, *names(provides)]:
            providers.setdefault(name, []).append(package)
    found, waiting = set(), names(depends)
    while waiting:
        new = set(providers.get(waiting.pop(), ())) - found
        found |= new
        waiting += [name for package in new for name in needs[package]]
    return found


def files_of(folder):
    return {str(path.relative_to(folder)) for path in folder.rglob("*") if not path.is_dir() or path.is_symlink()}


class Packages(PackagesTest):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory(prefix="qiran home ")
        self.addCleanup(scratch.cleanup)
        self.scratch = pathlib.Path(scratch.name)
        self.home = self.scratch / "home"
        self.home.mkdir()
        self.environment = {"HOME": str(self.home), "PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8",
                            "QT_QPA_PLATFORM": "offscreen", "XDG_RUNTIME_DIR": str(self.scratch)}

    def run_report(self, program, *options, **environment):
        """Lets the program start, show its windows and end; answers what it reported."""
        pictures = self.scratch / "pictures"
        pictures.mkdir(exist_ok=True)
        text = call(program, *options, "--demo-report", pictures, "--demo-seconds", "1",
                    env=self.environment | environment, cwd="/")
        self.assertTrue((pictures / "frmQIRAN.png").is_file(), "the main window left no picture")
        report = rig.Report(text)
        self.assertEqual(set(report.grids), {"gTlm0", "gTlm1", "gTlm2"})
        return report

    def install(self):
        return install(self.scratch / "root", self.commands, self.debian)

    def install_without_blanks(self):
        """The same where no name of a folder has a blank, which the words of a unit would not survive."""
        plain = tempfile.TemporaryDirectory(prefix="qiran-root-")
        self.addCleanup(plain.cleanup)
        self.scratch = pathlib.Path(plain.name)
        return self.install()

    # The portable archive

    def test_the_archive_is_one_folder_named_after_program_and_version(self):
        names = call("tar", "-tzf", self.archive).splitlines()
        tops = {name.removeprefix("./").split("/")[0] for name in names}
        self.assertEqual(len(tops), 1)
        self.assertTrue(tops.pop().startswith(f"QiranDecode-{VERSION}-"))

    def test_the_archive_unpacked_elsewhere_starts_and_keeps_its_files_in_its_folder(self):
        call("tar", "-xzf", self.archive, "-C", self.scratch)
        folder = next(self.scratch.glob("QiranDecode-*"))
        self.assertEqual(files_of(folder), {"QiranDecode", "qirandecode-cli", "world.gif", "qirandecode.HLP", "formula.example.txt",
                                            "channels.example.txt", "frequencies.example.txt", "horizon.example.txt",
                                            "LICENSE", "COPYING", "README.md"})
        shutil.copy(folder / "formula.example.txt", folder / "formula.txt")
        self.run_report(folder / "QiranDecode")
        self.assertTrue((folder / rig.SETTINGS_FILE).is_file())
        self.assertEqual(files_of(self.home), set())
        shown = call(folder / "qirandecode-cli", "config", "get", "AGWPE/HOST_PORT", env=self.environment, cwd="/")
        self.assertEqual(shown, rig.read_settings(folder / rig.SETTINGS_FILE)["AGWPE", "HOST_PORT"] + "\n")

    # The Debian packages

    def test_the_package_says_what_it_is_and_what_it_needs(self):
        fields = call("dpkg-deb", "--field", self.debian)
        self.assertIn(f"Version: {VERSION}-1\n", fields)
        self.assertIn("Package: qirandecode\n", fields)
        depends = next(line for line in fields.splitlines() if line.startswith("Depends: "))
        for library in ("libqt6widgets6", "libqt6network6", "libqt6printsupport6", "libqcustomplot2.1-qt6", "libc6"):
            self.assertIn(library, depends)

    def test_the_windowed_program_is_under_the_gpl_as_a_whole_and_the_command_line_is_not(self):
        root = self.install()
        documents = root / "usr/share/doc"
        copyright = (documents / "qirandecode/copyright").read_text()
        self.assertIn("License: Expat and GPL-3+", copyright)
        self.assertEqual((documents / "qirandecode-cli/copyright").read_text(), (ROOT / "packaging/copyright-cli").read_text())
        linked = call("ldd", BUILD / "QiranDecode/qirandecode-cli")
        self.assertNotIn("QCustomPlot", linked)
        self.assertIn("QCustomPlot", call("ldd", BUILD / "QiranDecode/QiranDecode"))
        metainfo = (root / "usr/share/metainfo/org.qirandecode.QiranDecode.metainfo.xml").read_text()
        self.assertIn("<project_license>GPL-3.0-or-later</project_license>", metainfo)

    def test_the_command_line_is_a_package_that_needs_no_window_library(self):
        fields = call("dpkg-deb", "--field", self.commands)
        self.assertIn(f"Version: {VERSION}-1\n", fields)
        self.assertIn("Package: qirandecode-cli\n", fields)
        found = needed_packages(call("dpkg-deb", "--field", self.commands, "Depends").strip())
        self.assertIn("libqt6network6", found)
        self.assertIn("ca-certificates", found)
        self.assertEqual({name for name in found if re.search("qt6gui|qt6widgets|qt6print|libx11|libgl1|xcb", name)}, set())
        self.assertIn(f"qirandecode-cli (= {VERSION}-1)", call("dpkg-deb", "--field", self.debian, "Depends"))

    def test_the_command_line_alone_reads_without_making_a_folder_and_makes_it_when_something_is_kept(self):
        root = self.install()
        dpkg(root, "--remove", "qirandecode")
        program = root / "usr/bin/qirandecode-cli"
        folder = self.home / ".local/share/QiranDecode"
        self.assertIn(VERSION, call(program, "--version", env=self.environment))
        for words in (["config", "list"], ["passes"]):
            done = subprocess.run([program, *words], env=self.environment, capture_output=True, text=True,
                                  stdin=subprocess.DEVNULL)
            self.assertEqual(done.returncode, 1)
            self.assertIn(f"qirandecode-cli: there is no program folder {folder} yet", done.stderr)
        self.assertFalse(folder.exists())
        call(program, "config", "set", "SETUP/CALLSIGN", "N0CALL", env=self.environment)
        self.assertEqual(call(program, "config", "get", "SETUP/CALLSIGN", env=self.environment), "N0CALL\n")
        self.assertEqual(folder.stat().st_mode & 0o777, 0o700)
        self.assertTrue((folder / "formula.example.txt").is_file())

    def test_the_package_brings_everything_that_the_program_loads_while_it_runs(self):
        found = needed_packages(call("dpkg-deb", "--field", self.debian, "Depends").strip())
        self.assertIn("libqt6widgets6", found)
        plugins = pathlib.Path(call("qmake6", "-query", "QT_INSTALL_PLUGINS").strip())
        for file in (plugins / "platforms/libqxcb.so", plugins / "imageformats/libqgif.so",
                     plugins / "printsupport/libcupsprintersupport.so", plugins / "tls/libqopensslbackend.so",
                     pathlib.Path("/usr/sbin/update-ca-certificates")):
            owner = call("dpkg-query", "--search", file).split(":")[0]
            self.assertIn(owner, found, file)

    def test_the_package_holds_plain_files_owned_by_root_that_nobody_else_may_write(self):
        for line in (call("dpkg-deb", "--contents", self.debian) + call("dpkg-deb", "--contents", self.commands)).splitlines():
            mode, owner = line.split()[:2]
            self.assertEqual(owner, "root/root", line)
            self.assertIn(mode[0], "-d", line)
            self.assertEqual((mode[5], mode[8]), ("-", "-"), line)
            self.assertNotIn("s", mode, line)

    def test_installed_it_starts_in_a_folder_of_the_users_own_and_removed_it_leaves_that_folder_alone(self):
        root = self.install()
        launcher = root / "usr/bin/qirandecode"
        folder = self.home / ".local/share/QiranDecode"
        self.assertIn(VERSION, call(launcher, "--version", env=self.environment))
        self.assertFalse(folder.exists(), "asking for the version makes no folder")

        folder.mkdir(parents=True)
        shutil.copy(root / "usr/share/qirandecode/formula.example.txt", folder / "formula.txt")
        self.run_report(launcher)
        self.assertTrue((folder / rig.SETTINGS_FILE).is_file())
        self.assertTrue((folder / "world.gif").is_symlink())
        mine = {name: (folder / name).read_bytes() for name in ("formula.txt", rig.SETTINGS_FILE)}

        dpkg(root, "--purge", "qirandecode", "qirandecode-cli")
        # The service's user stays, as Debian asks.
        self.assertEqual({name for name in files_of(root) if not name.startswith(("var/lib/dpkg/", "etc/"))}, set())
        self.assertFalse((root / "usr/lib/qirandecode").exists())
        for name, content in mine.items():
            self.assertEqual((folder / name).read_bytes(), content)

    def test_a_first_start_without_formulae_says_where_to_put_them_and_where_an_example_is(self):
        root = self.install()
        done = subprocess.run([root / "usr/bin/qirandecode", "--demo-report", self.scratch, "--demo-seconds", "1"],
                              env=self.environment, capture_output=True, text=True, stdin=subprocess.DEVNULL, timeout=60)
        folder = self.home / ".local/share/QiranDecode"
        self.assertEqual(folder.stat().st_mode & 0o777, 0o700)
        self.assertNotEqual(done.returncode, 0)
        self.assertIn(str(folder / "formula.txt"), done.stderr)
        self.assertIn("formula.example.txt", done.stderr)

    def test_an_upgrade_leaves_what_the_user_put_into_the_folder(self):
        root = self.install()
        folder = self.home / ".local/share/QiranDecode"
        folder.mkdir(parents=True)
        shutil.copy(root / "usr/share/qirandecode/formula.example.txt", folder / "formula.txt")
        (folder / "world.gif").write_bytes(b"a picture of the user's own")
        (folder / "qirandecode.HLP").symlink_to(self.scratch / "an older place")
        self.run_report(root / "usr/bin/qirandecode")
        dpkg(root, "--install", self.debian)
        self.run_report(root / "usr/bin/qirandecode")
        self.assertEqual((folder / "world.gif").read_bytes(), b"a picture of the user's own")
        self.assertEqual((folder / "qirandecode.HLP").resolve(), (root / "usr/share/qirandecode/qirandecode.HLP").resolve())

    def test_the_folder_lies_under_the_data_home_that_the_user_has_chosen(self):
        root = self.install()
        chosen = self.scratch / "data home"
        (chosen / "QiranDecode").mkdir(parents=True)
        shutil.copy(root / "usr/share/qirandecode/formula.example.txt", chosen / "QiranDecode/formula.txt")
        self.run_report(root / "usr/bin/qirandecode", XDG_DATA_HOME=str(chosen))
        self.assertTrue((chosen / "QiranDecode" / rig.SETTINGS_FILE).is_file())
        self.assertEqual(files_of(self.home), set())

    def test_debians_own_inspector_finds_no_fault_but_the_address_that_nobody_can_write_to(self):
        done = subprocess.run(["lintian", *sorted(self.out.glob("*.deb"))], capture_output=True, text=True,
                              stdin=subprocess.DEVNULL, timeout=120)
        faults = [line for line in done.stdout.splitlines() if line.startswith(("E:", "W:"))]
        self.assertEqual([line for line in faults if "qirandecode@localhost" not in line], [], done.stderr)
        for package in self.out.glob("*.deb"):
            self.assertNotIn("&", call("dpkg-deb", "--field", package, "Description"))

    # The service

    def test_the_service_has_a_user_and_a_folder_of_its_own(self):
        root = self.install()
        user = next(line.split(":") for line in (root / "etc/passwd").read_text().splitlines()
                    if line.startswith("qirandecode:"))
        self.assertEqual(user[5:], ["/var/lib/qirandecode", "/usr/sbin/nologin"])
        self.assertLess(int(user[2]), 1000)
        folder = (root / "var/lib/qirandecode").stat()
        self.assertEqual(folder.st_mode & 0o777, 0o700)
        if os.geteuid() == 0:
            self.assertEqual((folder.st_uid, folder.st_gid), (int(user[2]), int(user[3])))

    def unit(self, root):
        """The service's unit, as if the root were the machine's."""
        text = (root / "usr/lib/systemd/system/qirandecode-listen.service").read_text()
        place = self.scratch / "qirandecode-listen.service"
        place.write_text(re.sub("(?<=[= ])(/usr/bin|/var/lib)/", rf"{root}\1/", text))
        return place

    def test_the_services_unit_is_valid_and_leaves_little_to_who_breaks_in(self):
        unit = self.unit(self.install_without_blanks())
        self.assertEqual(call("systemd-analyze", "verify", "--man=no", unit), "")
        told = call("systemd-analyze", "security", "--offline=true", "--no-pager", unit)
        exposure = re.search(r"Overall exposure level for \S+: ([\d.]+)", told)
        self.assertLessEqual(float(exposure.group(1)), 2.5, told)

    def test_the_services_command_line_keeps_and_sends_on_what_is_heard(self):
        root = self.install_without_blanks()
        folder = root / "var/lib/qirandecode"
        command = re.search("^ExecStart=(.*)$", self.unit(root).read_text(), re.MULTILINE).group(1).split()
        self.assertIn("--fetch-keps", command)
        shutil.copy(root / "usr/share/qirandecode/formula.example.txt", folder / "formula.txt")
        tnc, server = kiss.Tnc(), sids.SidsServer()
        self.addCleanup(tnc.stop)
        self.addCleanup(server.stop)
        rig.write_settings(folder / rig.SETTINGS_FILE, {
            ("SETUP", "CALLSIGN"): "N0CALL", ("SETUP", "LATITUDE"): "5130.00N", ("SETUP", "LONGITUDE"): "00007.50W",
            ("KEPS", "FILE_1"): "127.0.0.1:9/none.txt", ("KISS", "USE"): "TRUE", ("KISS", "HOST_ADDRESS"): "127.0.0.1",
            ("KISS", "HOST_PORT"): str(tnc.port), ("FORWARD", "USE"): "TRUE", ("FORWARD", "URL"): server.url})
        frame = kiss.ax25("QIRAN-3", "APRS", b"T#024,150,147,80,170,0,0,00111111,0")
        with rig.running(command, env={"PATH": os.environ["PATH"]}, cwd="/", stderr=subprocess.DEVNULL) as process:
            rig.wait_for(tnc.connected, "it is connected", alive=process)
            tnc.send(frame)
            rig.wait_for(lambda: server.taken, "the frame is at the server", alive=process)
        self.assertEqual(process.returncode, 0)
        self.assertEqual(sids.frame(server.taken[0]), frame)
        self.assertIn(",QIRAN-3,B,T#024,", (folder / "tlm.txt").read_text())

    # What the desktop is told

    def test_the_desktop_file_the_metainfo_and_the_manual_page_are_valid(self):
        root = self.install()
        share = root / "usr/share"
        call("desktop-file-validate", share / "applications/qirandecode.desktop")
        call("appstreamcli", "validate", "--no-net", share / "metainfo/org.qirandecode.QiranDecode.metainfo.xml")
        for name in ("qirandecode", "qirandecode-cli"):
            page = subprocess.run(["man", "--warnings", "-E", "UTF-8", "-l", "-Tutf8", "-Z",
                                   share / f"man/man1/{name}.1.gz"], capture_output=True, text=True, check=True)
            self.assertEqual(page.stderr, "")
        call("bash", "-n", share / "bash-completion/completions/qirandecode-cli")
        for size in (16, 22, 24, 32, 48, 64, 128, 256):
            picture = (share / f"icons/hicolor/{size}x{size}/apps/qirandecode.png").read_bytes()
            self.assertEqual(int.from_bytes(picture[16:20], "big"), size)
            self.assertEqual(int.from_bytes(picture[20:24], "big"), size)


if __name__ == "__main__":
    unittest.main()
