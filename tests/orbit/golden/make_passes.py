#!/usr/bin/python3
"""Writes passes.txt: the passes python3-skyfield (Debian) finds in ten runs of three days.

    make_passes.py             writes passes.txt beside this script
    make_passes.py --compare   makes them anew and compares: 0 the same, 1 not, 77 where the oracle is missing

UT1 is made equal to UTC (delta T 69.184 s, that is TAI - UTC 37 s and 32.184 s), as the program takes it.

Rise and set are searched with find_discrete and the highest points with find_maxima, on Skyfield's own altitude.
(Its find_events is quicker and leaves out what it takes to cancel; its times come out up to seconds away.)

Tolerance: rise and set are bracketed to 1 ms. What else differs (Skyfield's Julian dates hold 40 microseconds;
polar motion left out by both, the same sidereal time, the same ellipsoid) is below that: 5 ms are allowed, and 50
where a pass stays below 1 degree and the horizon is crossed slowly. The highest point is bracketed to
0.02 s; 0.05 are allowed. In that time the elevation changes by (v/r)^2 t^2 / 2, less than 0.001 degrees, but close
to the zenith by v/r t = 7.7/400 x 0.05 rad = 0.055 degrees.

The file: a line "run LATITUDE LONGITUDE START" (degrees, days since 1899-12-30 UTC), the two lines of the element
set, then a line per pass that begins and ends within the three days: rise, highest, set in seconds after the
start, and the highest elevation in degrees.
"""
import sys

import golden

try:
    import skyfield
    from skyfield.api import EarthSatellite, load, wgs84
    from skyfield.searchlib import find_discrete, find_maxima
except ImportError:
    print("python3-skyfield is not installed")
    sys.exit(77)

DAYS = 3
ORBITS = [(51.64, 208.9, 0.00067, 70.0, 25.0, 15.4956), (97.7, 30.0, 0.0012, 210.0, 100.0, 14.92)]
STATIONS = [(-65, 12), (-33.9, 151.2), (0, 179.99), (47.4, 8.5), (65, -147.7)]
EPOCHS = [(26320, 46342), (26045, 46067), (26136, 46158), (26227, 46249)]  # the four seasons


def text():
    scale = load.timescale(delta_t=69.184)
    out = [f"# python3-skyfield {skyfield.__version__}. Made by make_passes.py beside this file, where its form is described."]
    for k in range(10):
        latitude, longitude = STATIONS[k // 2]
        epoch, start = EPOCHS[k % 4]
        lines = golden.element_lines(f"{epoch}.00000000", "10000-3", ORBITS[k % 2])
        satellite = EarthSatellite(*lines, "X", scale)
        begin = scale.utc(1899, 12, 30 + start)
        station = wgs84.latlon(latitude, longitude)
        def up(t):
            return (satellite - station).at(t).altaz()[0].degrees > 0

        def altitude(t):
            return (satellite - station).at(t).altaz()[0].degrees

        up.step_days = 10 / 86400
        altitude.step_days = 0.01
        crossings, states = find_discrete(begin, begin + DAYS, up, epsilon=1e-3 / 86400)
        tops, _ = find_maxima(begin, begin + DAYS, altitude, epsilon=0.02 / 86400)
        events = sorted(
            [((t - begin) * 86400, 0 if s else 2) for t, s in zip(crossings, states)]
            + [((t - begin) * 86400, 1) for t in tops]
        )
        out += [f"run {latitude} {longitude} {start}", *lines]
        rise = top = None
        for seconds, event in events:
            if event == 0:
                rise, top = seconds, None
            elif event == 1:
                top = (seconds, altitude(begin + seconds / 86400))
            elif rise is not None and top is not None:
                out.append(f"{rise:.3f} {top[0]:.3f} {seconds:.3f} {top[1]:.4f}")
                rise = None
    return "\n".join(out) + "\n"


def agree(a, b):
    one, two = a.split(), b.split()
    if one == two:
        return True
    if len(one) != 4 or len(two) != 4:
        return False
    return all(abs(float(x) - float(y)) <= limit for x, y, limit in zip(one, two, [0.002, 0.05, 0.002, 0.055]))


if __name__ == "__main__":
    sys.exit(golden.main(__file__, text, agree))
