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
