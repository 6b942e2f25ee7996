"""What the scripts that ask an oracle have in common."""

import os
import sys


def with_checksum(line):
    return line + str(sum(int(c) if c.isdigit() else c == "-" for c in line) % 10)


def element_lines(epoch, drag, orbit):
    """The two lines of an element set. `drag` as it is written there; `orbit`: inclination, node, eccentricity, perigee,
    anomaly (degrees) and revolutions a day."""
    inclination, node, e, perigee, anomaly, revs = orbit
    return (
        with_checksum(f"1 90417U 26001A   {epoch}  .00000000  00000-0  {drag} 0  999"),
        with_checksum(
            f"2 90417 {inclination:8.4f} {node:8.4f} {round(e * 1e7):07d} {perigee:8.4f} {anomaly:8.4f} {revs:11.8f}    1"
        ),
    )


def main(script, text, agree):
    """Writes `text()` beside the script, or with --compare makes it anew and compares; the first line, which names the
    oracle's version, does not count. `agree` tells whether two lines are the same within the tolerance. Answers the exit
    status."""
    path = os.path.join(os.path.dirname(os.path.abspath(script)), os.path.basename(script)[len("make_"):-len("py")] + "txt")
    if "--compare" not in sys.argv:
        with open(path, "w") as file:
            file.write(text())
        return 0
    with open(path) as file:
        old, new = (t.splitlines()[1:] for t in (file.read(), text()))
    different = [(a, b) for a, b in zip(old, new) if not agree(a, b)]
    for a, b in different[:10]:
        print(f"- {a}\n+ {b}")
    return 1 if different or len(old) != len(new) else 0
