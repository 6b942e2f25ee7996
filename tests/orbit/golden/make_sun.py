#!/usr/bin/python3
"""Writes sun.txt: where python3-astropy (Debian) sees the sun over a year, and what it lights.

    make_sun.py             writes sun.txt beside this script
    make_sun.py --compare   makes it anew and compares: 0 the same, 1 not, 77 where the oracle is missing

The file: a line for each moment, every 29 hours and 13 minutes of 2026,

    sun UTC RA DEC DISTANCE LATITUDE LONGITUDE

(days since 1899-12-30 00:00; degrees of the true equator and equinox of date; km; the point over which it stands,
geocentric degrees), each followed by two places on the ground and how high the sun's centre stands over their
horizons, without refraction,

    ground LATITUDE LONGITUDE ELEVATION

and by satellites around the edges of the earth's shadow,

    light X Y Z STATE DEPTH

km in the frame that turns with the earth; 0 sunlit, 1 penumbra, 2 umbra; km to the nearer edge. The shadow is made of
the two cones that touch the spheres of sun and earth, with their vertices; distances are taken from its axis.
"""
import random
import sys

import golden

try:
    import astropy
    import numpy as np
    from astropy import units as u
    from astropy.coordinates import ITRS, TETE, AltAz, EarthLocation, get_sun
    from astropy.time import Time
    from astropy.utils import iers
except ImportError:
    print("python3-astropy is not installed")
    sys.exit(77)

iers.conf.auto_download = False
iers.conf.iers_degraded_accuracy = "ignore"

EARTH, SUN = 6378.137, 696000.0
START = Time("2026-01-01T00:00:00", scale="utc")
ZERO = 2415018.5


def cones(place, sun):
    """0, 1 or 2, and the distance to the nearer cone, km."""
    distance = np.linalg.norm(sun)
    axis = -sun / distance
    along = place @ axis
    across = np.linalg.norm(place - along * axis)
    umbra, penumbra = np.arcsin((SUN - EARTH) / distance), np.arcsin((SUN + EARTH) / distance)
    # Signed distances from the cones, positive outside; before the earth nothing is in shadow.
    from_umbra = (across - (EARTH / np.sin(umbra) - along) * np.tan(umbra)) * np.cos(umbra)
    from_penumbra = (across - (EARTH / np.sin(penumbra) + along) * np.tan(penumbra)) * np.cos(penumbra)
    if along <= 0 or from_penumbra >= 0:
        state = 0
    else:
        state = 2 if from_umbra <= 0 else 1
    return state, min(abs(from_umbra), abs(from_penumbra))


def satellites(chance, sun):
    """Places 300 to 40000 km up, most of them near the shadow's edge."""
    towards = sun / np.linalg.norm(sun)
    for k in range(6):
        radius = EARTH + (300 + 900 * chance.random() if k < 4 else 40000 * chance.random())
        side = np.array([chance.gauss(0, 1) for _ in range(3)])
        side -= (side @ towards) * towards
        side /= np.linalg.norm(side)
        if k == 5:
            across = radius * chance.random()
        else:
            across = EARTH + chance.uniform(-1, 1) * (60 if k < 4 else 300)
        sign = 1 if k == 3 else -1
        yield across * side + sign * np.sqrt(radius**2 - across**2) * towards


def text():
    chance = random.Random(1898)
    times = START + np.arange(0, 365 * 24, 29 + 13 / 60) * u.hour
    suns = get_sun(times)
    apparent = suns.transform_to(TETE(obstime=times))
    fixed = suns.transform_to(ITRS(obstime=times)).cartesian.xyz.to_value(u.km).T
    out = [f"python3-astropy {astropy.__version__}. Made by make_sun.py beside this file, where its form is described."]
    for time, sun, ra, dec, place in zip(times, suns, apparent.ra.deg, apparent.dec.deg, fixed):
        distance = np.linalg.norm(place)
        latitude = np.degrees(np.arcsin(place[2] / distance))
        longitude = np.degrees(np.arctan2(place[1], place[0]))
        out.append(f"sun {time.jd - ZERO:.9f} {ra:.5f} {dec:.5f} {distance:.0f} {latitude:.5f} {longitude:.5f}")
        for _ in range(2):
            lat, lon = round(chance.uniform(-90, 90), 2), round(chance.uniform(-180, 180), 2)
            ground = EarthLocation.from_geodetic(lon * u.deg, lat * u.deg, 0 * u.m)
            seen = sun.transform_to(AltAz(obstime=time, location=ground, pressure=0 * u.hPa))
            out.append(f"ground {lat} {lon} {seen.alt.deg:.5f}")
        for satellite in satellites(chance, place):
            satellite = np.round(satellite, 3)
            state, depth = cones(satellite, place)
            out.append(f"light {satellite[0]:.3f} {satellite[1]:.3f} {satellite[2]:.3f} {state} {depth:.3f}")
    return "\n".join(out) + "\n"


def agree(a, b):
    one, two = a.split(), b.split()
    return len(one) == len(two) and one[0] == two[0] and all(
        abs(float(x) - float(y)) <= (1000 if float(x) > 1e6 else 0.005) for x, y in zip(one[1:], two[1:])
    )


if __name__ == "__main__":
    sys.exit(golden.main(__file__, text, agree))
