#!/usr/bin/python3
"""Opens a history of 1,000,000 frames beside Python's csv module over the same file, in this one run, and measures
what a frame of its curves costs.

    history.py BUILD_DIR/bench/history/HistoryBench [FRAMES]

Figures are processor time and the growth of resident memory. Ends with 1 when a limit is missed: half a second and
64 MiB for 1,000,000 frames, 16 ms for a frame of six curves of 100,000 readings.
"""
import csv
import datetime
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import time

HEADER = "utc,source,side,sequence,raw1,raw2,raw3,raw4,field5,field6,field7,field8"
MOST_MILLISECONDS = 500.0  # for a million frames
MOST_MIB = 64.0
MOST_FRAME_MILLISECONDS = 16.0


def write_history(path, frames):
    """Twenty years of passes: both sides and all frame types, raw values whole and with a decimal."""
    begun = datetime.datetime(2026, 11, 21)
    with path.open("w", newline="") as file:
        file.write(HEADER + "\n")
        for number in range(frames):
            # Some dozen frames a pass, a frame every ten seconds, four passes a day.
            at = begun + datetime.timedelta(hours=6 * (number // 34), seconds=10 * (number % 34), milliseconds=number % 997)
            source, side = ("XQ9ZZ-1", "A") if number % 2 else ("QIRAN-3", "B")
            kind = number // 2 % 4
            file.write(f"{at:%Y-%m-%dT%H:%M:%S}.{at.microsecond // 1000:03}Z,{source},{side},T#{number % 1000:03},"
                       f"{number % 256},{100 + number % 99}.5,{number * 7 % 256},{number * 13 % 256},0,0,"
                       f"00{kind // 2}{kind % 2}1111,0\n")


def python_csv(path):
    """Milliseconds to split the lines, and to split them and take what the history takes of them."""
    begun = time.process_time()
    with path.open(newline="") as file:
        for _ in csv.reader(file):
            pass
    split = time.process_time()
    times, raws = [], []
    with path.open(newline="") as file:
        rows = csv.reader(file)
        next(rows)
        for row in rows:
            times.append(datetime.datetime.fromisoformat(row[0][:-1]))
            raws.append(tuple(map(float, row[4:8])))
    return (split - begun) * 1e3, (time.process_time() - split) * 1e3


def main():
    program = sys.argv[1]
    frames = int(sys.argv[2]) if len(sys.argv) > 2 else 1_000_000
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder, "tlm.txt")
        write_history(path, frames)
        size = path.stat().st_size / 2**20
        ours = json.loads(subprocess.run([program, path], check=True, capture_output=True, text=True).stdout)
        split, taken = python_csv(path)
    if ours["frames"] != frames + 1 or ours["foreign"] != 0:
        print(f"read {ours['frames']} frames and {ours['foreign']} foreign lines of {frames} frames")
        return 1
    print(f"{frames} frames, {size:.1f} MiB; processor time and growth of memory\n")
    print("| what | QiranDecode | Python's csv module | beside it |")
    print("|---|---|---|---|")
    print(f"| open | {ours['open_ms']:.0f} ms, {ours['open_mib']:.1f} MiB | {split:.0f} ms to split, {taken:.0f} ms to take "
          f"times and raw values | 1/{split / ours['open_ms']:.1f}, 1/{taken / ours['open_ms']:.1f} |")
    print(f"| {ours['readings']} readings of six channels | {ours['readings_ms']:.1f} ms | | |")
    print(f"| what the grids showed in six cells | {ours['shown_ms']:.3f} ms | | |")
    print(f"| follow one line more | {ours['follow_ms']:.3f} ms | | |")
    plotted = json.loads(subprocess.run([pathlib.Path(program).with_name("PlotBench")], check=True, capture_output=True,
                                        text=True, env=os.environ | {"QT_QPA_PLATFORM": "offscreen"}).stdout)
    print(f"| a frame of six curves of 100,000 readings: all in view, moved, zoomed | {plotted['whole_ms']:.1f} ms, "
          f"{plotted['pan_ms']:.1f} ms, {plotted['zoom_ms']:.1f} ms | | |")
    share = frames / 1e6
    missed = [text for text, value, limit in (("open", ours["open_ms"], MOST_MILLISECONDS * share),
                                              ("memory", ours["open_mib"], MOST_MIB * max(share, 0.1)),
                                              *((name, value, MOST_FRAME_MILLISECONDS) for name, value in plotted.items()))
              if value > limit]
    for text in missed:
        print(f"missed: {text}")
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
