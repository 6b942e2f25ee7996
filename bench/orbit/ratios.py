#!/usr/bin/python3
"""Runs OrbitBench and sets it beside its peers, every figure a ratio taken in this one run.

    ratios.py BUILD_DIR/bench/orbit/OrbitBench

Costs are given in units of one glibc sincos. The pass lists (3 days, ten stations from the equator to 80 degrees
north) are set beside python3-ephem's next_pass loop and python3-skyfield's find_events where these are installed.
"""
import json
import math
import os
import subprocess
import sys
import time

DEBIANS_PYTHON = "/usr/bin/python3"
DAYS = 3
STATIONS = [k * 80 / 9 for k in range(10)]
EPOCH = "26320.00000000"
# The orbits of OrbitBench.cpp: inclination, eccentricity, revolutions a day.
ORBITS = {
    "Polar": (97.7, 0.0012, 14.92),
    "Equatorial": (0.5, 0.001, 15.1),
    "Eccentric": (28.0, 0.5, 5.2),
    "HalfDay": (63.4, 0.72, 2.006),
}


def with_checksum(line):
    return line + str(sum(int(c) if c.isdigit() else c == "-" for c in line) % 10)


def lines_of(inclination, e, revs):
    node, perigee, anomaly = (math.degrees(x) for x in (1, 4.7, 0.3))
    return (
        with_checksum(f"1 90417U 26001A   {EPOCH}  .00000000  00000-0  10000-3 0  999"),
        with_checksum(
            f"2 90417 {inclination:8.4f} {node:8.4f} {round(e * 1e7):07d} {perigee:8.4f} {anomaly:8.4f} {revs:11.8f}    1"
        ),
    )


def ephem_seconds(lines):
    import ephem

    satellite = ephem.readtle("X", *lines)
    begun = time.perf_counter()
    passes = 0
    for latitude in STATIONS:
        station = ephem.Observer()
        station.lat, station.lon, station.pressure = str(latitude), "10", 0
        station.date = ephem.Date("2026/11/16 12:00")
        end = station.date + DAYS
        while station.date < end:
            try:
                _, _, _, _, fall, _ = station.next_pass(satellite)
            except ValueError:  # never up, or never down
                break
            if fall is None:
                break
            passes += 1
            station.date = fall + ephem.minute
    return time.perf_counter() - begun, passes


def skyfield_seconds(lines):
    from skyfield.api import EarthSatellite, load, wgs84

    scale = load.timescale(delta_t=69.184)
    satellite = EarthSatellite(*lines, "X", scale)
    start = scale.utc(2026, 11, 16, 12)
    begun = time.perf_counter()
    passes = 0
    for latitude in STATIONS:
        _, events = satellite.find_events(wgs84.latlon(latitude, 10), start, start + DAYS)
        passes += sum(events == 0)
    return time.perf_counter() - begun, passes


def main():
    # The peers are Debian's packages, which only Debian's own python3 sees.
    if not os.path.samefile(sys.executable, DEBIANS_PYTHON):
        os.execv(DEBIANS_PYTHON, [DEBIANS_PYTHON, *sys.argv])
    out = subprocess.run([sys.argv[1], "--benchmark_format=json"], check=True, capture_output=True, text=True).stdout
    runs = {b["name"]: b for b in json.loads(out)["benchmarks"]}
    scale = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3}
    seconds = {name: b["cpu_time"] * scale[b["time_unit"]] for name, b in runs.items()}
    unit = seconds["SinCos"]
    for name, most in (("Propagate/NearEarth", 15), ("Propagate/DeepSpaceResonant", 40), ("PositionQuery", 25)):
        print(f"{name:32} {seconds[name] / unit:8.1f} sincos (at most {most})")
    lines, omm = (seconds["ReadFolder/" + form] for form in ("TwoLines", "OmmCsv"))
    print(f"{'ReadFolder (30,000 objects)':32} {lines * 1e3:8.1f} ms")
    print(f"{'the same as OMM CSV':32} {omm / lines:8.2f} of that time (at most 3)")
    for name, orbit in ORBITS.items():
        run = runs["PassList3Days/" + name]
        ours = seconds["PassList3Days/" + name]
        print(f"{name + ' passes':32} {run['passes']:.0f}, {run['propagations'] / max(run['passes'], 1):.1f} propagations each")
        for peer, measure in (("ephem", ephem_seconds), ("skyfield", skyfield_seconds)):
            try:
                theirs, passes = measure(lines_of(*orbit))
            except ImportError:
                print(f"    python3-{peer} is not installed")
                continue
            print(f"    1/{theirs / ours:.0f} of the time of python3-{peer} ({passes} passes)")


if __name__ == "__main__":
    main()
