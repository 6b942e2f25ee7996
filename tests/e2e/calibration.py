"""What the grids must show: the satellite's channels and formula.txt, worked out here once more by hand."""

import decimal
import re

# Row for the channels 0 to 3 of each side and frame type; gTlm0 is power, gTlm1 current, gTlm2 temperature.
CHANNELS = {
    "A": [
        ["gTlm1 X+", "gTlm1 Z+", "gTlm1 Y+", "gTlm1 X-"],
        ["gTlm2 Y+", "gTlm2 Batt", "gTlm2 Xmtr", "gTlm2 Z+"],
        ["gTlm2 X+", "gTlm2 Stack", "gTlm1 Y-", "gTlm1 Batt"],
        ["gTlm0 Batt A", "gTlm0 Batt B", "gTlm0 P Out", "gTlm0 8V Reg"],
    ],
    "B": [
        ["gTlm1 X-", "gTlm1 Z-", "gTlm1 Y-", "gTlm1 X+"],
        ["gTlm2 Y-", "gTlm2 Batt", "gTlm2 Xmtr", "gTlm2 Z-"],
        ["gTlm2 X-", "gTlm2 Stack", "gTlm1 Y+", "gTlm1 Batt"],
        ["gTlm0 Batt A", "gTlm0 Batt B", "gTlm0 P Out", "gTlm0 8V Reg"],
    ],
}
GRIDS = {"gTlm0": ("POWER", "0.01"), "gTlm1": ("CURRENT", "1"), "gTlm2": ("TEMP", "0.1")}

# A callsign and one line of raw values for each side and frame type, as the tests let the engine hear them.
SIDES = {"A": "XQ9ZZ-1", "B": "QIRAN-3"}
RAW = {
    ("A", 0): (62, 41, 88, 17), ("A", 1): (54, 70, 96, 48), ("A", 2): (60, 66, 31, 105), ("A", 3): (152, 149, 84, 171),
    ("B", 0): (22, 58, 36, 90), ("B", 1): (44, 69, 94, 39), ("B", 2): (47, 65, 73, 99), ("B", 3): (150, 147, 80, 170),
}


def number(text):
    found = re.match(r"\s*[-+]?(\d+\.?\d*|\.\d+)([eE][-+]?\d+)?", text)
    return float(found.group()) if found else 0.0


def formulae(path):
    """The coefficients of formula.txt: {(side, frame type, grid name, row name): (a, b, c, d)}."""
    table = {}
    for line in path.read_bytes().decode("cp1252").splitlines():
        fields = [field.strip().upper() for field in line.strip(" ").split(",")]
        if line.strip(" ")[:1] in ("A", "B") and len(fields) == 8:
            side = "A" if fields[0] == "A" else "B"
            table[side, int(fields[1]), fields[2], fields[3]] = tuple(number(field) for field in fields[4:])
    return table


def shown(table, side, frame_type, channel, raw):
    """Where a raw value goes and how it reads there: (grid, row, text)."""
    grid, row = CHANNELS[side][frame_type][channel].split(" ", 1)
    name, step = GRIDS[grid]
    a, b, c, d = table[side, frame_type, name, row.upper()]
    value = decimal.Decimal(f"{((raw ** 3.0 * a + raw ** 2.0 * b) + c * raw) + d:.15g}")
    return grid, row, str(value.quantize(decimal.Decimal(step), decimal.ROUND_HALF_UP))


def line(sequence, frame_type, raw):
    """A telemetry line as the satellite sends it."""
    return f"T#{sequence:03d},{','.join(str(value) for value in raw)},0,0,00{frame_type:02b}1111,0"


def readings(folder, lines, more=0):
    """What the frames must come to: (source, sequence, side, frame type, channel, grid, row, raw, value). `more` was
    added to each raw value."""
    table = formulae(folder / "formula.txt")
    for (side, kind), raw in RAW.items():
        for channel, value in enumerate(one + more for one in raw):
            grid, row = CHANNELS[side][kind][channel].split(" ", 1)
            name = GRIDS[grid][0]
            a, b, c, d = table[side, kind, name, row.upper()]
            converted = ((value ** 3.0 * a + value ** 2.0 * b) + c * value) + d
            yield (SIDES[side], lines[side, kind].split(",")[0], side, kind, channel + 1, name, row, value,
                   float(f"{converted:.15g}"))


def three_passes():
    """The lines of three passes by (pass, (side, frame type)), each raw value one more than in the pass before."""
    return {(tour, key): line(100 * tour + i, key[1], [value + tour for value in raw])
            for tour in range(3) for i, (key, raw) in enumerate(RAW.items())}


def readings_of_three_passes(folder):
    """What those must come to, in the order of their hearing."""
    lines = three_passes()
    return [reading for tour in range(3)
            for reading in readings(folder, {key: lines[tour, key] for key in RAW}, tour)]
