#!/usr/bin/python3
"""Writes states.txt: element sets, times and the states python3-sgp4 (Debian) finds for them.

    make_states.py             writes states.txt beside this script
    make_states.py --compare   makes them anew and compares: 0 the same, 1 not, 77 where the oracle is missing

Two groups of sets: the verification catalogue that python3-sgp4 ships (SGP4-VER.TLE, its own time spans), and
240 made here. These cover eccentricity 0 to 0.9, inclination 0 to 180 degrees, periods from 87 minutes to 5
days, drag from none to heavy, and the values where the equations have edges: eccentricity and inclination
exactly 0, inclination exactly 180, the limits of the resonances.

The file: a line "set LINE1", a line LINE2, then one line per time: minutes from the epoch, and either x y z (km)
vx vy vz (km/s) or "error N".
"""
import math
import os
import random
import sys

import golden

try:
    import sgp4
    from sgp4.api import Satrec
    from sgp4.propagation import sgp4 as propagate
except ImportError:
    print("python3-sgp4 is not installed")
    sys.exit(77)

DAY = 1440.0


def with_checksum(line):
    total = sum(int(c) if c.isdigit() else c == "-" for c in line[:68])
    return line[:68].ljust(68) + str(total % 10)


def exponent_form(value):
    if value == 0:
        return " 00000-0"
    exponent = math.floor(math.log10(abs(value))) + 1
    digits = round(abs(value) / 10.0**exponent * 1e5)
    if digits == 100000:
        digits, exponent = 10000, exponent + 1
    return f"{'-' if value < 0 else ' '}{digits:05d}{'-' if exponent <= 0 else '+'}{abs(exponent)}"


def lines_of(number, epoch, inclination, node, e, perigee, anomaly, revs, bstar):
    one = f"1 {number:05d}U 26001A   {epoch}  .00000000  00000-0 {exponent_form(bstar)} 0  999"
    two = f"2 {number:05d} {inclination:8.4f} {node:8.4f} {round(e * 1e7):07d} {perigee:8.4f} {anomaly:8.4f} {revs:11.8f}    1"
    return with_checksum(one), with_checksum(two)


def catalogue():
    path = os.path.join(os.path.dirname(sgp4.__file__), "SGP4-VER.TLE")
    one = None
    for line in open(path):
        line = line.rstrip("\n")
        if line.startswith("1 "):
            one = line
        elif line.startswith("2 "):
            start, stop, step = (float(x) for x in line[69:].split())
            times = {0.0, stop}
            k = 0
            while start + k * step < stop:
                times.add(start + k * step)
                k += 1
            times = sorted(times)
            if len(times) > 60:  # the sets that only try an error code run minute by minute
                times = times[:: len(times) // 50]
            yield with_checksum(one), with_checksum(line), times


def made():
    chance = random.Random(72)
    days = [-30.0, -9.37, -0.21, 0.0, 0.5, 3.3, 17.77, 30.0]
    inclinations = [0.0, 180.0, 0.0001, 179.9999, 90.0, 63.4349, 11.4, 11.5, 2.9, 3.1, 177.5]
    number = 70000
    for k in range(240):
        number += 1
        # Periods evenly over the logarithm, and every sixth set in or at the edge of a resonance.
        period = 87.0 * math.exp(chance.random() * math.log(5 * DAY / 87.0))
        if k % 6 == 1:
            period = 717.9 + chance.uniform(-35, 35)
        elif k % 6 == 3:
            period = 1436.1 + chance.uniform(-200, 200)
        elif k % 12 == 5:
            period = chance.uniform(223, 227)
        a = (period * 60 / (2 * math.pi) * math.sqrt(398600.8)) ** (2 / 3) / 6378.135
        highest = min(0.9, 1 - (1 + 130 / 6378.135) / a)
        e = chance.random() * highest
        if k % 6 == 1 and highest > 0.72:
            e = chance.choice([0.5, 0.55, 0.6500001, 0.69, 0.7, 0.71, 0.7149999, 0.7150001, 0.4999999])
        elif k % 9 == 0:
            e = 0.0
        elif k % 9 == 4:
            e = highest
        elif k % 9 == 7:
            e = 0.00009
        inclination = inclinations[k // 3 % len(inclinations)] if k % 3 == 0 else chance.uniform(0, 180)
        bstar = chance.choice([0, 0, 1e-5, 1e-4, -2e-5, 1e-3, 1e-2])
        epoch = f"{chance.choice([57, 80, 99, 0, 26, 56]):02d}{chance.uniform(1, 365.9):012.8f}"
        angles = [chance.uniform(0, 359.9) for _ in range(3)]
        one, two = lines_of(number, epoch, inclination, angles[0], e, angles[1], angles[2], DAY / period, bstar)
        yield one, two, [d * DAY for d in days]


def text():
    out = [f"# python3-sgp4 {sgp4.__version__ if hasattr(sgp4, '__version__') else ''}".rstrip(),
           "# Made by make_states.py beside this file, where its form is described."]
    for one, two, times in [*catalogue(), *made()]:
        out += ["set " + one, two]
        satellite = Satrec.twoline2rv(one, two)
        for t in times:
            satellite.error = 0
            r, v = propagate(satellite, t)
            if satellite.error:
                out.append(f"{t:.8g} error {satellite.error}")
            else:
                out.append(f"{t:.10g} " + " ".join(f"{x:.8f}" for x in r) + " " + " ".join(f"{x:.11f}" for x in v))
    return "\n".join(out) + "\n"


def numbers_agree(a, b):
    """Whether two lines say the same to the last digits, which the C library of the day may round otherwise."""
    one, two = a.split(), b.split()
    if one == two:
        return True
    if len(one) != 7 or len(two) != 7:
        return False
    limits = [0] + [2e-7] * 3 + [2e-10] * 3
    return all(abs(float(x) - float(y)) <= limit for x, y, limit in zip(one, two, limits))


if __name__ == "__main__":
    sys.exit(golden.main(__file__, text, numbers_agree))
