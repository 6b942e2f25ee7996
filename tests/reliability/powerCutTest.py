#!/usr/bin/env python3
"""Cuts the power at every moment of a recording, an import, a saving of settings and a download, and looks at what is
left.

Usage: powerCutTest.py POWER_CUT_CHILD WRITE_TRACE. What the child writes, and what it asks the disk to keep, is traced.
Of each moment of the trace, the disks are laid out that a power cut may leave then, the child reads them and writes on.
The kinds of writing stand in a table of the child: one more there is one more here.

The disk: what was synced is on it. Of the other writes to a file any may be missing, and the last may be there in part.
Names change in their order, and what the disk was not asked to keep of them may be missing from the end.
"""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

CHILD, TRACE = sys.argv[1:3]
IN_A_SECOND = 8  # pieces that the child writes: one every 120 ms
NAMES = ("give", "rename", "unlink", "link")


class Trace:
    """What a process did, change by change, and from which moment on each change is on the disk."""

    def __init__(self, text):
        self.operations = []    # (word, its arguments), files told apart
        self.kept_from = []     # for each, the moment from which no power cut takes it away, or never
        self.asked_at = []      # for each, the moment at which the disk was first asked to keep it, or never
        files, begun = {}, {}
        for line in text.splitlines():
            word, *rest = line.split(" ")
            if word == "synced":
                self.keep(*begun.pop(rest[0]))
                continue
            if word == "file":
                files[rest[0]] = f"{rest[0]} of {len(self.operations)}"
                continue
            if word in ("give", "size", "write", "sync"):
                rest[0] = files[rest[0]]
            if word.startswith("sync"):
                begun[rest[-1]] = (rest[0] if word == "sync" else None, len(self.operations))
                self.note(self.asked_at, *begun[rest[-1]])
            else:
                self.operations.append((word, rest))
                self.kept_from.append(None)
                self.asked_at.append(None)

    def keep(self, file, begin):
        """All that was done to the file (none: to names) before `begin` is on the disk from now on."""
        self.note(self.kept_from, file, begin)

    def note(self, moments, file, begin):
        for i in range(begin):
            word, rest = self.operations[i]
            if moments[i] is None and (word in NAMES if file is None else word not in NAMES and rest[0] == file):
                moments[i] = len(self.operations)

    def is_kept(self, operation, moment):
        return self.kept_from[operation] is not None and self.kept_from[operation] <= moment

    def kept_until(self, moment):
        """How many changes from the first one on are on the disk at this moment, whatever happens. A file that has no
        name any more does not count."""
        folder, is_sure = {}, True
        for i, (word, rest) in enumerate(self.operations[:moment]):
            if word in NAMES:
                self.change_names(folder, word, rest)
                is_sure = is_sure and self.is_kept(i, moment)
        counts = lambda word, rest: not is_sure or word in NAMES or rest[0] in folder.values()
        return next((i for i in range(moment) if not self.is_kept(i, moment) and counts(*self.operations[i])), moment)

    def disk(self, moment, names, missing=(), torn=None):
        """The files, by name: the first `names` changes of names, and the others but for the missing ones."""
        inodes, folder = {}, {}
        for i, (word, rest) in enumerate(self.operations[:moment]):
            if word in NAMES:
                if i < names:
                    self.change_names(folder, word, rest)
                continue
            if i in missing:
                continue
            content = inodes.setdefault(rest[0], bytearray())
            if word == "size":
                size = int(rest[1])
                content[:] = content[:size].ljust(size, b"\0")
            else:
                offset, data = int(rest[1]), bytes.fromhex(rest[2])
                data = data[:len(data) // 2] if i == torn else data
                content.extend(bytes(max(0, offset - len(content))))
                content[offset:offset + len(data)] = data
        return {name: bytes(inodes.get(file, b"")) for name, file in folder.items()}

    @staticmethod
    def change_names(folder, word, rest):
        if word == "give":
            folder[rest[1]] = rest[0]
        elif word == "unlink":
            folder.pop(rest[0], None)
        elif rest[0] in folder:
            folder[rest[1]] = folder[rest[0]]
            if word == "rename":
                del folder[rest[0]]

    def disks(self, moment):
        """Every disk that a power cut at this moment may leave, and what it is."""
        changes = range(moment)
        loose = [i for i in changes if self.operations[i][0] not in NAMES and not self.is_kept(i, moment)]
        renamed = [i for i in changes if self.operations[i][0] in NAMES]
        # The place behind the last change of names that is kept, and behind each of those that follow.
        sure = max((i + 1 for i in renamed if self.is_kept(i, moment)), default=0)
        for names in [sure] + [i + 1 for i in renamed if i + 1 > sure]:
            where = f"moment {moment}, names until {names}"
            yield self.disk(moment, names), where
            for i in loose:
                yield self.disk(moment, names, missing=(i,)), f"{where}, without {i}"
            if loose:
                yield self.disk(moment, names, missing=loose), f"{where}, without any of {loose}"
                yield self.disk(moment, names, torn=loose[-1]), f"{where}, with half of {loose[-1]}"


class PowerCutTest(unittest.TestCase):
    def traced(self, kind):
        with tempfile.TemporaryDirectory() as place:
            folder, notes = pathlib.Path(place, "folder").resolve(), pathlib.Path(place, "trace")
            folder.mkdir()
            subprocess.run([CHILD, "act", kind, folder], check=True, timeout=60, env=os.environ | {
                "LD_PRELOAD": TRACE, "QIRAN_TRACE": str(notes), "QIRAN_TRACE_ROOT": str(folder)})
            return Trace(notes.read_text())

    @staticmethod
    def show(kind, disks):
        """What the program finds on each disk, and what after it has written something more."""
        with tempfile.TemporaryDirectory() as place:
            folders = []
            for i, disk in enumerate(disks):
                folders.append(pathlib.Path(place, str(i)))
                folders[-1].mkdir()
                for name, content in disk.items():
                    (folders[-1] / name).parent.mkdir(exist_ok=True)
                    (folders[-1] / name).write_bytes(content)
            told = subprocess.run([CHILD, "show", kind], input="".join(f"{folder}\n" for folder in folders), check=True,
                                  timeout=300, capture_output=True, text=True).stdout.split("\n")
        split = lambda line: tuple(line.split("|")) if line else ()
        return [(split(told[2 * i]), split(told[2 * i + 1])) for i in range(len(folders))]

    def look(self, kind, change):
        trace = self.traced(kind)
        moments = range(len(trace.operations) + 1)
        key = lambda disk: tuple(sorted(disk.items()))
        cuts = {moment: [(key(disk), where) for disk, where in trace.disks(moment)] for moment in moments}
        whole = {moment: key(trace.disk(moment, moment)) for moment in moments}
        contents = list({disk: None for disks in cuts.values() for disk, _ in disks} | {disk: None for disk in whole.values()})
        found = dict(zip(contents, self.show(kind, [dict(disk) for disk in contents]), strict=True))
        for moment in moments:
            kept = trace.kept_until(moment)
            for disk, where in cuts[moment]:
                shown, more = found[disk]
                where = f"{kind}: {where}: {shown}, then {more}; {trace.operations[:moment]}"
                # One whole state of the files since the last that the disk was asked to keep, or of a file that only
                # grows, no less than that and no more than now.
                since = [found[whole[i]][0] for i in range(kept, moment + 1)]
                if change == "replaced":
                    self.assertIn(shown, since, where)
                else:
                    self.assertTrue(any(self.is_between(shown, since[0], one) for one in since), where)
                    self.assertEqual(more[:len(shown)], shown, where)
                    self.assertEqual(len(more), len(shown) + 1, where)
                self.assertNotEqual(more, shown, where)
        if change == "appended":
            self.look_at_delays(kind, trace)
            lost = trace.operations[trace.kept_until(moments[-1]):]
            self.assertEqual(lost, [], f"{kind}: what is not kept in the end")
        print(f"{kind}: {len(moments)} moments, {len(contents)} different disks")

    def look_at_delays(self, kind, trace):
        """The disk is asked to keep what was written before so many more pieces are written as take a second; if it has
        not ended with the ones before, then as soon as it has."""
        writes = [i for i, (word, _) in enumerate(trace.operations) if word == "write"]
        for i in writes:
            file = trace.operations[i][1][0]
            busy = [trace.kept_from[k] for k in writes if trace.operations[k][1][0] == file and k < i
                    and trace.asked_at[k] is not None and trace.kept_from[k] is not None
                    and trace.asked_at[k] <= i < trace.kept_from[k]]
            begin = max([i, *busy])
            since = [k for k in writes if trace.operations[k][1][0] == file and begin < k < (trace.asked_at[i] or 10**9)]
            self.assertLess(len(since), IN_A_SECOND, f"{kind}: {i} was put on the disk late")

    @staticmethod
    def is_between(shown, least, most):
        """All of the least, nothing but the most; of what came in at once, all or nothing."""
        together = {one for one in most if one.startswith("I")}
        return (set(least) - {one for one in least if one.startswith("I")} <= set(shown) <= set(most)
                and together & set(shown) in (set(), together) and len(set(shown)) == len(shown))

    def test_every_kind_of_writing(self):
        for line in subprocess.run([CHILD, "list"], check=True, capture_output=True, text=True).stdout.splitlines():
            kind, change = line.split()
            with self.subTest(kind):
                self.look(kind, change)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[3:], verbosity=2)
