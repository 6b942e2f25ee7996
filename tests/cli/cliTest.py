#!/usr/bin/env python3
"""The command line as a process: what it is linked with, what it prints, what it leaves alone, how it ends."""

import fcntl
import os
import pathlib
import re
import signal
import subprocess
import unittest

from command import PROGRAM, CommandTest, records, rows

GENERATED = pathlib.Path(os.environ["QIRAN_GENERATED"])

READING = [
    ["config", "list"],
    ["config", "get", "SETUP/CALLSIGN"],
    ["config", "get", "CALLSIGNS/QIRAN"],
]


class Executable(CommandTest):
    def test_it_is_linked_with_no_window_library(self):
        dynamic = subprocess.run(["readelf", "--wide", "--dynamic", PROGRAM], capture_output=True, text=True, check=True)
        needed = set(re.findall(r"NEEDED.*\[(.*)\]", dynamic.stdout))
        self.assertIn("libQt6Core.so.6", needed)
        self.assertEqual({name for name in needed if name.startswith("libQt")} - {"libQt6Core.so.6", "libQt6Network.so.6"},
                         set())
        loaded = subprocess.run(["ldd", PROGRAM], capture_output=True, text=True, check=True).stdout
        for library in ("Gui", "Widgets", "PrintSupport", "libX11", "libxcb", "libGL", "libwayland"):
            self.assertNotIn(library, loaded)

    def test_help_and_version_are_printed_and_need_no_folder(self):
        self.assertRegex(self.call("--version"), r"^qirandecode-cli \d+\.\d+\.\d+\n$")
        self.assertIn("config list", self.call("--help"))
        self.assertIn("--format text|csv|json", self.call("config", "list", "--help"))

    def test_a_wrong_call_ends_with_2_and_one_line(self):
        for words in ([], ["nonsense"], ["config"], ["config", "get"], ["config", "get", "SETUP"], ["config", "list", "--loud"],
                      ["--folder", self.scratch / "none", "config", "list"], ["config", "get", "NO/SUCH"],
                      ["config", "set", "NO/SUCH", "1"], ["config", "set", "NOTICE/MINUTES"]):
            with self.subTest(words=words):
                self.assertEqual(self.call(*words, code=2), "")
                self.assertEqual(self.said.count("\n"), 1, self.said)

    def test_commands_that_read_write_nothing(self):
        empty = self.scratch / "empty"
        empty.mkdir()
        for folder in (self.folder, empty):
            before = self.contents(folder)
            for words in READING:
                with self.subTest(words=words, folder=folder.name):
                    self.call("--folder", folder, *words)
                    self.assertEqual(self.contents(folder), before)

    def test_no_locale_changes_what_is_printed_and_none_is_complained_about(self):
        usual = self.call("config", "list")
        for locale in ("C", "POSIX", "de_DE.UTF-8", "fi_FI", "ja_JP.eucJP", ""):
            with self.subTest(locale=locale):
                self.assertEqual(self.call("config", "list", environment={"LC_ALL": locale}), usual)
                self.assertEqual(self.said, "")

    def test_a_reader_that_goes_away_is_no_failure(self):
        ours, theirs = os.pipe()
        os.close(ours)
        process = self.start("config", "list", stdout=theirs, stderr=subprocess.PIPE)
        os.close(theirs)
        self.assertEqual(process.communicate(timeout=60)[1], b"")
        self.assertEqual(process.returncode, 0)

    def test_output_that_finds_no_room_is_a_failure_and_said(self):
        with open("/dev/full", "wb") as full:
            process = self.start("config", "list", stdout=full, stderr=subprocess.PIPE)
            self.assertIn(b"No space left on device", process.communicate(timeout=60)[1])
        self.assertEqual(process.returncode, 1)

    def test_a_reader_that_stops_reading_does_not_keep_it_from_ending(self):
        ours, theirs = os.pipe()
        fcntl.fcntl(theirs, fcntl.F_SETPIPE_SZ, 4096)
        os.write(theirs, b"x" * 4096)
        process = self.start("config", "list", stdout=theirs, stderr=subprocess.DEVNULL)
        process.send_signal(signal.SIGTERM)
        self.assertIn(process.wait(30), (0, -signal.SIGTERM))
        os.close(ours)
        os.close(theirs)

    def test_closed_standard_streams_do_no_harm(self):
        before = self.settings.read_bytes()
        for closed in ("<&- >&- 2>&-", ">&-", "2>&-", "<&-"):
            for words, code in ((["config", "list"], 1 if ">&-" in closed.split() else 0),
                                (["config", "set", "NOTICE/MINUTES", "9"], 0)):
                with self.subTest(closed=closed, words=words):
                    command = subprocess.run(["sh", "-c", f'exec "$@" {closed}', "sh", PROGRAM, "--folder", self.folder, *words],
                                             env=self.environment, timeout=30, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
                    self.assertEqual(command.returncode, code)
        self.assertEqual(self.settings.read_bytes(), before + b"[NOTICE]\r\nMINUTES=9\r\n")


class Config(CommandTest):
    def test_the_settings_file_is_the_windowed_programs(self):
        self.call("config", "set", "SETUP/CALLSIGN", "oh2abc-3")
        self.assertIn(b"CALLSIGN=OH2ABC-3\r\n", self.settings.read_bytes())
        self.assertEqual([path.name for path in self.folder.glob("*.INI")], ["QiranDecode.INI"])

    def test_a_setting_is_its_stored_value_or_its_default(self):
        self.assertEqual(self.call("config", "get", "setup/callsign"), "N0CALL\n")
        self.assertEqual(self.call("config", "get", "KISS/HOST_PORT"), "8001\n")
        self.assertEqual(records(self.call("config", "get", "KISS/HOST_PORT", "--format", "json")),
                         [{"type": "setting", "section": "KISS", "key": "HOST_PORT", "value": "8001", "default": "8001"}])

    def test_all_formats_list_the_same_settings(self):
        listed = {(r["section"], r["key"]): r["value"] for r in records(self.call("config", "list", "--format", "json"))}
        self.assertEqual(listed["SETUP", "CALLSIGN"], "N0CALL")
        self.assertEqual(listed["CALLSIGNS", "QIRAN-1"], "A")
        self.assertEqual(listed["CALLSIGNS", "QIRAN-3"], "B")
        self.assertNotIn(("SETUP", "LEFT"), listed)
        table = self.call("config", "list", "--format", "csv")
        self.assertEqual({(r["section"], r["key"]): r["value"] for r in rows(table)}, listed)
        self.assertTrue(table.startswith("section,key,value,default\r\n"))
        text = self.call("config", "list").splitlines()
        self.assertEqual(len(text), len(listed) + 1)
        self.assertEqual(text[0].split(), ["section", "key", "value", "default"])

    def test_a_value_keeps_its_blanks_and_quotes(self):
        for value in (" two  blanks ", '"quoted"', "ends with \"", "", "a=b;c", "[x]", "Grüße"):
            with self.subTest(value=value):
                self.call("config", "set", "SETUP/COMMENT", "--", value)
                self.assertEqual(self.call("config", "get", "SETUP/COMMENT"), value + "\n")

    def test_a_wrong_value_is_refused_with_what_is_allowed(self):
        before = self.contents()
        for name, value, allowed in (("AGWPE/HOST_PORT", "70000", "a whole number from 1 to 32767"),
                                     ("SETUP/USE_LOCAL_TIME", "maybe", "TRUE or FALSE"),
                                     ("SETUP/LATITUDE", "60.17", "6010.20N"),
                                     ("CALLSIGNS/QIRAN", "C", "A or B"),
                                     ("SETUP/COMMENT", "x" * 500, "499")):
            with self.subTest(name=name):
                self.call("config", "set", name, value, code=1)
                self.assertIn(allowed, self.said)
        self.assertEqual(self.contents(), before)

    def test_secrets_come_from_standard_input_and_are_never_shown(self):
        for name in ("AGWPE/PASSWORD", "FORWARD/TOKEN"):
            with self.subTest(name=name):
                self.call("config", "set", name, "sesame", code=2)
                self.assertNotIn("sesame", self.said)
                self.assertEqual(self.call("config", "get", name), "\n")
                self.call("config", "set", name, typed="open sesame\n")
                self.assertIn(f"{name.split('/')[1]}=open sesame\r\n".encode(), self.settings.read_bytes())
                for form in ("text", "csv", "json"):
                    shown = self.call("config", "get", name, "--format", form) + self.call("config", "list", "--format", form)
                    self.assertNotIn("sesame", shown)
                    self.assertIn("********", shown)
                self.call("config", "set", name, typed="")
                self.assertEqual(self.call("config", "get", name), "\n")

    def test_it_is_refused_while_a_station_runs_and_reading_is_not(self):
        with (self.folder / "QiranDecode.lock").open("wb") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            before = self.settings.read_bytes()
            self.call("config", "set", "NOTICE/MINUTES", "7", code=1)
            self.assertIn("running", self.said)
            self.assertEqual(self.settings.read_bytes(), before)
            self.assertEqual(self.call("config", "get", "NOTICE/MINUTES"), "5\n")
        self.call("config", "set", "NOTICE/MINUTES", "7")
        self.assertEqual(self.call("config", "get", "NOTICE/MINUTES"), "7\n")
        self.assertFalse((self.folder / "QiranDecode.lock").exists())

    def test_what_cannot_be_written_is_said(self):
        self.settings.unlink()
        self.settings.mkdir()
        self.call("config", "set", "NOTICE/MINUTES", "7", code=1)
        self.assertIn(str(self.settings), self.said)

    def test_callsigns_are_added_changed_and_removed(self):
        self.call("config", "set", "CALLSIGNS/qiran-3", "a")
        self.assertEqual(self.call("config", "get", "CALLSIGNS/QIRAN-3"), "A\n")
        self.assertEqual(self.call("config", "get", "CALLSIGNS/XQ9ZZ-15"), "A\n", "the others stay")
        self.call("config", "set", "CALLSIGNS/DP0ABC", "B")
        self.assertEqual(self.call("config", "get", "CALLSIGNS/DP0ABC"), "B\n")
        self.call("config", "set", "CALLSIGNS/DP0ABC", "")
        self.call("config", "get", "CALLSIGNS/DP0ABC", code=1)
        self.call("config", "set", "CALLSIGNS/DP0ABC", "", code=1)
        self.call("config", "set", "CALLSIGNS/NOT-A-CALL", "A", code=2)


class Generated(CommandTest):
    def test_the_manual_page_is_made_from_the_table_and_is_valid(self):
        page = GENERATED / "qirandecode-cli.1"
        self.assertEqual(page.read_text(), self.call("generate", "manual"))
        formatted = subprocess.run(["man", "--warnings", "-E", "UTF-8", "-l", page], capture_output=True, text=True,
                                   env=self.environment | {"MANWIDTH": "100"}, check=True)
        self.assertEqual(formatted.stderr, "")
        text = re.sub(r"\s+", " ", re.sub(r".\x08", "", formatted.stdout))
        commands = re.findall(r"^  (\w+(?: \w+)?)  ", self.call("--help").split("Options:")[0], re.MULTILINE)
        self.assertIn("config set", commands)
        for words in commands:
            self.assertIn(f"qirandecode-cli {words}", text)
            for option in re.findall(r"^  (--[\w-]+)", self.call(*words.split(), "--help"), re.MULTILINE):
                self.assertIn(option, text)
        for setting in records(self.call("config", "list", "--format", "json")):
            if setting["section"] != "CALLSIGNS":
                self.assertIn(f"{setting['section']}/{setting['key']}", text)

    def completions(self, *words):
        """What bash offers for the last of these words."""
        script = ('source "$1"; shift; COMP_WORDS=(qirandecode-cli "$@"); COMP_CWORD=$#; _qirandecode_cli; '
                  'printf "%s\\n" "${COMPREPLY[@]}"')
        done = subprocess.run(["bash", "-uc", script, "bash", GENERATED / "qirandecode-cli.bash", *words],
                              capture_output=True, text=True, cwd=self.folder, check=True)
        self.assertEqual(done.stderr, "")
        return done.stdout.split()

    def test_the_completion_offers_what_the_table_has(self):
        self.assertEqual((GENERATED / "qirandecode-cli.bash").read_text(), self.call("generate", "completion"))
        self.assertIn("config", self.completions(""))
        self.assertNotIn("generate", self.completions(""))
        self.assertEqual(self.completions("conf"), ["config"])
        self.assertEqual(self.completions("config", ""), ["list", "get", "set"])
        self.assertEqual(self.completions("--folder", "x", "config", "g"), ["get"])
        self.assertEqual(self.completions("config", "get", "KISS/HOST_P"), ["KISS/HOST_PORT"])
        self.assertEqual(self.completions("config", "list", "--fo"), ["--format", "--folder"])
        self.assertEqual(self.completions("config", "list", "--format", ""), ["text", "csv", "json"])
        self.assertIn("Keps", self.completions("--folder", ""))

    def test_the_completion_is_clean_shell(self):
        subprocess.run(["shellcheck", "--shell=bash", GENERATED / "qirandecode-cli.bash"], check=True)


if __name__ == "__main__":
    unittest.main()
