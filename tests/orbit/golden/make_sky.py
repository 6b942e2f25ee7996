#!/usr/bin/python3
"""Writes sky.txt: passes as python3-skyfield's (Debian) find_events tells them, and where the satellite stands on
their way, for what the sky window draws.

    make_sky.py             writes sky.txt beside this script
    make_sky.py --compare   makes them anew and compares: 0 the same, 1 not, 77 where the oracle is missing

UT1 is made equal to UTC (delta T 69.184 s), as the program takes it.

Tolerance: find_events brackets its times to half a second, a highest point to the same; a rise close to the horizon's
plane or a flat top may lie further off by what it leaves out. 1.5 s are allowed for rise and set, and for the top as
long as the pass climbs to 5 degrees (below, the elevation changes too little around it: 10 s). Directions are Skyfield's
own, at the same times as the program's: 0.005 degrees, divided by the cosine of the elevation for the azimuth.

The file: a line "run LATITUDE LONGITUDE START" (degrees, days since 1899-12-30 UTC), the two lines of the element set,
then per pass "pass RISE TOP SET ELEVATION" (seconds after the start, degrees) and nine lines "at SECONDS AZIMUTH
ELEVATION" from its rise to its set.
"""
import sys

import golden

try:
    import skyfield
    from skyfield.api import EarthSatellite, load, wgs84
except ImportError:
    print("python3-skyfield is not installed")
    sys.exit(77)

DAYS = 2
POINTS = 9
# Low and polar, the space station, an eccentric one: inclination, node, eccentricity, perigee, anomaly, revolutions.
ORBITS = [
    (97.7, 30.0, 0.0012, 210.0, 100.0, 14.92),
    (51.64, 208.9, 0.00067, 70.0, 25.0, 15.4956),
    (63.4, 120.0, 0.3, 270.0, 10.0, 6.5),
]
STATIONS = [(52, 11), (-33.9, 151.2), (78.2, 15.6), (0, 179.99)]
EPOCH, START = "26320.00000000", 46343


def text():
    scale = load.timescale(delta_t=69.184)
    out = [f"# python3-skyfield {skyfield.__version__}. Made by make_sky.py beside this file, where its form is described."]
    for orbit in ORBITS:
        lines = golden.element_lines(EPOCH, "10000-4", orbit)
        satellite = EarthSatellite(*lines, "X", scale)
        begin = scale.utc(1899, 12, 30 + START)
        for latitude, longitude in STATIONS:
            difference = satellite - wgs84.latlon(latitude, longitude)
            out += [f"run {latitude} {longitude} {START}", *lines]
            times, events = satellite.find_events(wgs84.latlon(latitude, longitude), begin, begin + DAYS)
            seconds = [(t - begin) * 86400 for t in times]

            def direction(at):
                altitude, azimuth, _ = difference.at(begin + at / 86400).altaz()
                return altitude.degrees, azimuth.degrees

            rise, tops = None, []
            for at, event in zip(seconds, events):
                if event == 0:
                    rise, tops = at, []
                elif event == 1:
                    tops.append(at)
                elif rise is not None and tops:
                    top = max(tops, key=lambda t: direction(t)[0])
                    out.append(f"pass {rise:.1f} {top:.1f} {at:.1f} {direction(top)[0]:.3f}")
                    for k in range(POINTS):
                        then = round(rise + (at - rise) * k / (POINTS - 1), 1)
                        altitude, azimuth = direction(then)
                        out.append(f"at {then:.1f} {azimuth:.4f} {altitude:.4f}")
                    rise = None
    return "\n".join(out) + "\n"


def agree(a, b):
    one, two = a.split(), b.split()
    if one == two:
        return True
    if len(one) != len(two) or one[0] != two[0] or one[0] not in ("pass", "at"):
        return False
    return all(abs(float(x) - float(y)) <= 0.2 for x, y in zip(one[1:], two[1:]))


if __name__ == "__main__":
    sys.exit(golden.main(__file__, text, agree))
