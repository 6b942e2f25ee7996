#!/usr/bin/env python3
"""The program as built for its users carries every protection that the tool chain offers."""

import json
import pathlib
import re
import subprocess
import sys
import unittest

PROGRAM = ""


def readelf(*options):
    return subprocess.run(["readelf", "--wide", *options, PROGRAM], capture_output=True, text=True, check=True).stdout


class Hardening(unittest.TestCase):
    def test_it_is_position_independent(self):
        self.assertRegex(readelf("--file-header"), r"Type:\s+DYN \(Position-Independent Executable file\)")
        self.assertRegex(readelf("--dynamic"), r"FLAGS_1.*\bPIE\b")

    def test_every_symbol_is_bound_before_it_starts(self):
        self.assertRegex(readelf("--dynamic"), r"\((FLAGS\).*\bBIND_NOW|FLAGS_1\).*\bNOW)\b")

    def test_its_relocations_are_read_only(self):
        self.assertIn("GNU_RELRO", readelf("--program-headers"))

    def test_its_stack_is_not_executable_and_no_segment_both_writable_and_executable(self):
        headers = readelf("--program-headers")
        self.assertRegex(headers, r"GNU_STACK\s.*\sRW\s")
        for line in headers.splitlines():
            if line.strip().startswith("LOAD"):
                self.assertNotRegex(line, r"\sRWE\s")

    def test_its_stack_frames_are_guarded(self):
        self.assertIn("__stack_chk_fail", readelf("--dyn-syms"))

    def test_calls_of_the_c_library_are_checked(self):
        # A program whose calls the compiler could all check has none of the library's checking calls.
        build = pathlib.Path(PROGRAM).resolve().parents[1]
        compiled = [entry["command"] for entry in json.loads((build / "compile_commands.json").read_text())
                    if "/src/" in entry["file"] and build not in pathlib.Path(entry["file"]).parents]
        self.assertTrue(compiled)
        for command in compiled:
            self.assertIn("-D_FORTIFY_SOURCE=2", command)

    def test_it_names_no_folder_to_load_libraries_from(self):
        self.assertNotRegex(readelf("--dynamic"), r"\((RPATH|RUNPATH)\)")


if __name__ == "__main__":
    PROGRAM = sys.argv.pop(1)
    unittest.main(verbosity=2)
