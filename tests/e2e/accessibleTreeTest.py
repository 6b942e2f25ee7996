#!/usr/bin/env python3
"""What a screen reader is told of every window, through the accessibility bus, as Orca asks for it.

Run it by `dbus-run-session`, with Debian's own Python: the bus is private then, and python3-pyatspi is found. What was
read is left in the folder named by QIRAN_DUMPS, a file for each window.
"""

import contextlib
import os
import pathlib
import re
import subprocess
import sys
import unittest

import gi
import pyatspi
from gi.repository import GLib

from station import PROGRAM, Program, StationTest

import rig

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

MOST_ROWS = 80  # of a table, in a dump
# What a person can come to and use. A panel or filler is none of them.
ROLES = {"push button", "toggle button", "check box", "radio button", "combo box", "text", "password text", "entry",
         "table", "tree", "tree table", "list", "page tab list", "page tab", "menu bar", "menu item", "check menu item",
         "radio menu item", "menu", "link", "label", "document text", "document frame", "terminal", "image", "canvas",
         "chart", "slider", "spin button", "scroll pane", "split pane", "table cell", "list item", "tree item",
         "table column header", "table row header", "push button menu", "button", "toggle", "editbar", "drawing area"}
CELLS = {"table cell", "list item", "tree item", "table column header", "table row header"}


def states(node):
    """What the node is in at present, not when it was asked for last."""
    node.clear_cache()
    return {pyatspi.stateToString(state) for state in node.getState().getStates()}


def text_of(node):
    """The text that stands in a field; None where there is no field."""
    try:
        text = node.queryText()
    except NotImplementedError:
        return None
    return text.getText(0, text.characterCount)


class Control:
    """One node of the tree, as it is read once."""

    def __init__(self, node, depth, inside_menu):
        self.depth = depth
        self.node = node
        self.role = node.getRoleName()
        self.name = (node.name or "").strip()
        self.description = (node.description or "").strip()
        self.states = states(node)
        self.inside_menu = inside_menu
        self.text = text_of(node) if self.role in ("text", "password text", "entry") else None

    def is_control(self):
        return {"focusable", "showing"} <= self.states and self.role not in CELLS and not self.inside_menu

    def holds_tabs(self):
        """Whether it is the frame around pages, whose tabs are controls of their own."""
        return any(child is not None and child.getRoleName() == "page tab list" for child in self.node)

    def __str__(self):
        value = "" if self.text is None else f" = {self.text[:80]!r}"
        described = f" ({self.description})" if self.description else ""
        focusable = " *" if self.is_control() else ""
        return f"{'  ' * self.depth}{self.role} {self.name!r}{described}{value}{focusable}"


def read(node, depth=0, inside_menu=False):
    """The node and everything below it, as far as it can be seen."""
    control = Control(node, depth, inside_menu)
    yield control
    inside_menu = inside_menu or control.role in ("menu bar", "popup menu", "menu")
    for index in range(min(node.childCount, MOST_ROWS)):
        child = node.getChildAtIndex(index)
        if child is not None:
            yield from read(child, depth + 1, inside_menu)


def faults_of(controls):
    """What would leave a person who hears the window at a loss."""
    faults = []
    seen = {}
    for control in controls:
        if not control.is_control():
            continue
        if not control.name:
            faults.append(f"without a name: {control}")
        if control.role not in ROLES and not control.holds_tabs():
            faults.append(f"a role that says nothing: {control}")
        if "editable" in control.states and control.text is None and control.role not in ("combo box", "table", "tree"):
            faults.append(f"a field without a value: {control}")
        key = (control.role, control.name, control.description)
        if control.name and key in seen:
            faults.append(f"cannot be told from another: {control}")
        seen[key] = control
    return faults


class Heard(Program):
    """The program as a user starts it, so that its boxes and its help are the true ones."""

    def __init__(self, folder, environment, scratch):  # pylint: disable=super-init-not-called
        self.folder = folder
        self.environment = environment
        self._errors = scratch / "stderr"
        with self._errors.open("wb") as errors:
            self.process = subprocess.Popen([PROGRAM, "--folder", folder], env=environment,
                                            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=errors)

    def tree(self):
        desktop = pyatspi.Registry.getDesktop(0)
        for index in range(desktop.childCount):
            application = desktop.getChildAtIndex(index)
            with contextlib.suppress(GLib.Error, AttributeError):
                if application.get_process_id() == self.process.pid:
                    return application
        return None

    def heard_window(self, title):
        """The window whose whole caption matches, once it can be seen; None before."""
        application = self.tree()
        for index in range(application.childCount if application else 0):
            window = application.getChildAtIndex(index)
            with contextlib.suppress(GLib.Error, AttributeError):
                if re.fullmatch(title, window.name) and "showing" in states(window):
                    return window
        return None

    def see(self, title):
        return rig.wait_for(lambda: self.heard_window(title), f"the bus tells of {title!r}", 60, alive=self.process)

    def press(self, window, name):
        """Presses the button of this name."""
        node = next(c.node for c in read(window) if c.name == name and "button" in c.role)
        with contextlib.suppress(GLib.Error):  # no answer comes while the window that opens is modal
            node.queryAction().doAction(0)


    def tab_to(self, window, name):
        """Presses Tab until the control of this name has the focus."""
        node = next(c.node for c in read(window) if c.name == name and c.is_control())
        for _ in range(40):
            if "focused" in states(node):
                return
            self.key("Tab")
        raise AssertionError(f"Tab does not come to {name!r}")


class AccessibleTree(StationTest):
    def setUp(self):
        super().setUp()
        Atspi.set_timeout(3000, 20000)
        self.environment |= {"QT_ACCESSIBILITY": "1", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"}
        self.faults = []
        self.seen = {}

    def hear(self, program, title):
        window = program.see(title)
        controls = list(read(window))
        self.seen[title] = controls
        self.faults += [f"{title}: {fault}" for fault in faults_of(controls)]
        if os.environ.get("QIRAN_DUMPS"):
            folder = pathlib.Path(os.environ["QIRAN_DUMPS"])
            folder.mkdir(parents=True, exist_ok=True)
            (folder / f"{window.name.split(chr(32) * 3)[0]}.txt").write_text("".join(f"{control}\n" for control in controls))
        return window

    def hear_and_close(self, program, title):
        window = self.hear(program, title)
        program.activate(title)
        program.key("Escape")
        rig.wait_for(lambda: program.heard_window(title) is None, f"{title!r} has closed", 30, alive=program.process)
        return window

    def test_every_control_of_every_window_has_name_role_and_value(self):
        folder = rig.make_program_folder(self.scratch / "folder", 1, settings={("SETUP", "CALLSIGN"): "N0CALL-7"})
        (folder / "tlm.txt").write_text(
            "utc,source,side,sequence,raw1,raw2,raw3,raw4,field5,field6,field7,field8\n"
            "2026-11-20T23:00:00.000Z,XQ9ZZ-1,A,T#1,10,20,30,40,0,0,00100000,0\n")
        program = Heard(folder, self.environment, self.scratch)
        self.addCleanup(rig.end, program.process)
        main_title = "QIRAN Telemetry Decoder +V.*"
        window = self.hear(program, main_title)

        for keys, title in (
                (("alt+t",), "Terminal"), (("alt+m",), "Current Location of .*"), (("alt+o", "t"), "Station Information"),
                (("alt+o", "a"), "AGWPE Setup"), (("alt+o", "c"), "QIRAN Callsigns"), (("alt+o", "d"), "Download Keps"),
                (("alt+h", "a"), "About QiranDecode"), (("alt+h", "h"), "QIRAN Telemetry Decoder Help")):
            program.activate(main_title)
            program.key(*keys)
            self.hear_and_close(program, title)
        for key, title in (("k", "KISS.*"), ("f", "Forwarding"), ("r", "Record Frames")):
            program.activate(main_title)
            program.tab_to(window, "Link")
            program.key("space")
            program.key(key)
            self.hear_and_close(program, title)
        program.activate(main_title)
        program.press(window, "Sky")
        self.hear_and_close(program, "The sky")
        program.press(window, "Pass Predictions")
        self.hear_and_close(program, "QIRAN.* Pass Predictions")
        program.press(window, "History")
        history = self.hear(program, "Telemetry history")
        program.press(history, "Import")
        self.hear_and_close(program, "Import into the history")

        self.assertEqual(len(self.seen), 16)
        values = {c.name: c.text for c in self.seen["AGWPE Setup"] if c.text is not None}
        self.assertEqual((values["Host address"], values["Port"]), ("localhost", "1"))
        self.assertEqual({c.role for c in self.seen["AGWPE Setup"] if c.name == "Password"} - {"label"},
                         {"password text"})
        values = {c.name: c.text for c in self.seen["Station Information"] if c.text is not None}
        self.assertEqual(values["Callsign"], "N0CALL-7")
        self.assertGreater(sum(c.is_control() for controls in self.seen.values() for c in controls), 100)
        self.assertEqual(self.faults, [], "\n" + "\n".join(self.faults))


if __name__ == "__main__":
    sys.exit(unittest.main(verbosity=2))
