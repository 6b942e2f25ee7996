"""The service that a package brings: its user, its unit, the package's scripts, and the page that leads to it."""

import os
import pathlib
import re
import shutil
import subprocess
import sys

from packages import ROOT, VERSION, PackagesTest, call

sys.path[:0] = [str(ROOT / "tools"), str(ROOT / "tests/cli")]

import kiss  # noqa: E402
import mounts  # noqa: E402
import rig  # noqa: E402
import sids  # noqa: E402


class Service(PackagesTest):
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

    def test_the_service_is_off_until_somebody_enables_it_and_forgotten_when_the_package_is_purged(self):
        root = self.install()
        unit, link = "qirandecode-listen.service", "systemd/{}.target.wants/qirandecode-listen.service"
        systemctl = lambda *words: subprocess.run(["systemctl", f"--root={root}", *words, unit],  # noqa: E731
                                                  capture_output=True, text=True).stdout.strip()
        self.assertEqual(systemctl("is-enabled"), "disabled")
        self.assertEqual(systemctl("is-enabled", "--global"), "disabled")
        systemctl("enable")
        systemctl("enable", "--global")
        self.assertEqual(systemctl("is-enabled"), "enabled")
        self.assertEqual(systemctl("is-enabled", "--global"), "enabled")
        system, users = (root / "etc" / link.format(level) for level in ("system/multi-user", "user/default"))
        self.assertTrue(system.is_symlink() and users.is_symlink())
        self.dpkg(root, "--install", self.commands)
        self.assertEqual(systemctl("is-enabled"), "enabled")
        self.dpkg(root, "--purge", "qirandecode", "qirandecode-cli")
        self.assertFalse(system.is_symlink() or users.is_symlink())

    def test_where_the_service_runs_an_upgrade_restarts_it_and_a_removal_ends_it(self):
        scripts, tools, log = self.scratch / "scripts", self.scratch / "tools", self.scratch / "log"
        call("dpkg-deb", "--control", self.commands, scripts)
        tools.mkdir()
        for name in ("systemctl", "deb-systemd-invoke", "systemd-sysusers", "systemd-tmpfiles"):
            (tools / name).write_text(f'#!/bin/sh\necho "{name} $*" >> \'{log}\'\n')
            (tools / name).chmod(0o755)
        prefix = mounts.prefix("mount -t tmpfs tmpfs /run && mkdir -p /run/systemd/system")
        def told(script, *words):
            log.write_text("")
            call(*prefix, scripts / script, *words, env={"PATH": f"{tools}:/usr/bin:/bin"})
            return log.read_text().splitlines()
        made = ["systemd-sysusers qirandecode.conf", "systemd-tmpfiles --create qirandecode.conf"]
        self.assertEqual(told("prerm", "upgrade", VERSION), [])
        self.assertEqual(told("postrm", "upgrade", VERSION), ["systemctl daemon-reload"])
        self.assertEqual(told("postinst", "configure", VERSION), [
            *made, "systemctl daemon-reload", "deb-systemd-invoke try-restart qirandecode-listen.service"])
        self.assertEqual(told("prerm", "remove"), ["deb-systemd-invoke stop qirandecode-listen.service"])
        self.assertEqual(told("postrm", "remove"), ["systemctl daemon-reload"])

    def page(self, root):
        """The commands of the page about a receiver, as if the root were the machine's and one had to ask nobody."""
        blocks = re.findall("```sh\n(.*?)```", (ROOT / "docs/RECEIVER.md").read_text(), re.DOTALL)
        tools = self.scratch / "tools"
        tools.mkdir()
        for name, text in {
                "sudo": '[ "$1" != -u ] || shift 2\nexec "$@"',
                "apt": f'echo "$*" > {tools}/apt-was-asked',
                "systemctl": f'exec /usr/bin/systemctl --root={root} "$1" "$3"',  # without --now
                "install": 'shift 2\nexec /usr/bin/install "$@"',                # whoever installs owns it
        }.items():
            (tools / name).write_text(f"#!/bin/sh\n{text}\n")
            (tools / name).chmod(0o755)
        path = f"{tools}:{root}/usr/bin:{os.environ['PATH']}"
        return [(re.sub("(?<= )/(?=etc/|var/|usr/)", f"{root}/", block), {"PATH": path, "LC_ALL": "C.UTF-8"})
                for block in blocks]

    def test_the_page_about_a_receiver_leads_to_frames_in_eight_commands(self):
        root = self.install_without_blanks()
        folder = root / "var/lib/qirandecode"
        here = self.scratch / "here"
        here.mkdir()
        shutil.copy(ROOT / "data/demo/formula.txt", here)
        engine = pathlib.Path("/usr/lib/systemd/system/direwolf.service")
        if not engine.exists():
            self.skipTest("direwolf is not installed")
        shutil.copy(engine, root / "usr/lib/systemd/system")
        wanted = "etc/systemd/system/multi-user.target.wants"
        commands = self.page(root)
        self.assertEqual(len(commands), 8)
        do = lambda number: call("bash", "-euc", commands[number - 1][0], env=commands[number - 1][1], cwd=here)  # noqa: E731
        do(1)
        self.assertEqual((self.scratch / "tools/apt-was-asked").read_text(), "install direwolf ./qirandecode-cli_*.deb\n")
        do(2)
        self.assertIn("KISSPORT 8001\n", (root / "etc/direwolf.conf").read_text())
        do(3)
        self.assertTrue((root / wanted / "direwolf.service").is_symlink())
        do(4)
        self.assertEqual((folder / "formula.txt").stat().st_mode & 0o777, 0o600)
        do(5)
        settings = call(root / "usr/bin/qirandecode-cli", "--folder", folder, "forward", "status")
        self.assertIn("waiting", settings)
        tnc, server = kiss.Tnc(), sids.SidsServer()
        self.addCleanup(tnc.stop)
        self.addCleanup(server.stop)
        # What stands for the world: the engine's port and the servers are the test's own.
        rig.write_settings(folder / rig.SETTINGS_FILE, {
            ("KISS", "HOST_ADDRESS"): "127.0.0.1", ("KISS", "HOST_PORT"): str(tnc.port),
            ("KEPS", "FILE_1"): "127.0.0.1:9/none.txt", ("FORWARD", "URL"): server.url})
        words, environment = commands[5]
        with rig.running(["bash", "-euc", f"exec {words.replace('sudo -u qirandecode', '').strip()}"], env=environment,
                         cwd=here, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) as process:
            rig.wait_for(tnc.connected, "it is connected", alive=process)
            tnc.send(kiss.ax25("QIRAN-3", "APRS", b"T#024,150,147,80,170,0,0,00111111,0"))
            rig.wait_for(lambda: server.taken, "the frame is at the server", alive=process)
        do(7)
        self.assertTrue((root / wanted / "qirandecode-listen.service").is_symlink())
        self.assertIn("T#024", do(8))
