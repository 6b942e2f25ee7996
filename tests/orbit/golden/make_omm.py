#!/usr/bin/python3
"""Writes omm.csv, omm.json, omm.xml and omm.txt: made-up objects as Orbit Mean-Elements Messages, and the
elements that python3-sgp4 (Debian) reads from them, to the last bit.

    make_omm.py             writes the files beside this script
    make_omm.py --compare   makes them anew and compares: 0 the same, 1 not, 77 where the oracle is missing

The messages of the three files say the same. Catalogue numbers have one to nine digits, epochs one to six
decimals, numbers every form that servers give them: ".00016717", "-.5E-4", "0". The oracle reads CSV and XML,
and both must give it the same; JSON is set beside them by the tests.

omm.txt: per object, its catalogue number and what the oracle hands its propagator, as hexadecimal floats: epoch
(days since 1949-12-31), bstar, eccentricity, argument of perigee, inclination, mean anomaly, mean motion, node.
"""
import csv
import io
import os
import random
import sys
from datetime import datetime, timedelta
from xml.sax.saxutils import escape

try:
    from sgp4 import omm
except ImportError:
    print("python3-sgp4 is not installed")
    sys.exit(77)

HERE = os.path.dirname(os.path.abspath(__file__))
COUNT = 120
METADATA = ("OBJECT_NAME", "OBJECT_ID", "CENTER_NAME", "REF_FRAME", "TIME_SYSTEM", "MEAN_ELEMENT_THEORY")
MEAN = ("EPOCH", "MEAN_MOTION", "ECCENTRICITY", "INCLINATION", "RA_OF_ASC_NODE", "ARG_OF_PERICENTER", "MEAN_ANOMALY")
TLE = ("EPHEMERIS_TYPE", "CLASSIFICATION_TYPE", "NORAD_CAT_ID", "ELEMENT_SET_NO", "REV_AT_EPOCH", "BSTAR",
       "MEAN_MOTION_DOT", "MEAN_MOTION_DDOT")
# Servers leave these out of CSV and JSON.
IN_XML_ALONE = METADATA[2:]
TEXTS = ("OBJECT_NAME", "OBJECT_ID", "EPOCH", "CLASSIFICATION_TYPE", *IN_XML_ALONE)


def short(value):
    """As servers write small numbers: ".16717E-3"."""
    if value == 0:
        return "0"
    mantissa, exponent = f"{value:.4E}".split("E")
    digits = mantissa.replace(".", "").replace("-", "")
    return f"{'-' if value < 0 else ''}.{digits.rstrip('0') or '0'}E{int(exponent) + 1}"


def objects():
    chance = random.Random(13)
    for k in range(COUNT):
        digits = k % 9 + 1
        number = k + 1 if digits < 4 else chance.randrange(10 ** (digits - 1), 10**digits)
        decimals = k % 6 + 1
        epoch = datetime(1957, 10, 5) + timedelta(seconds=chance.randrange(99 * 365 * 86400))
        fraction = str(chance.randrange(10**decimals)).zfill(decimals)
        yield {
            "OBJECT_NAME": f"MADE UP {k}" if k % 10 else f"MADE, UP \"{k}\" & CO",
            "OBJECT_ID": f"{epoch.year}-{k % 999 + 1:03d}A",
            "CENTER_NAME": "EARTH",
            "REF_FRAME": "TEME",
            "TIME_SYSTEM": "UTC",
            "MEAN_ELEMENT_THEORY": "SGP4",
            "EPOCH": epoch.strftime("%Y-%m-%dT%H:%M:%S") + "." + fraction,
            "MEAN_MOTION": f"{chance.uniform(0.2, 17):.8f}",
            "ECCENTRICITY": f"{chance.uniform(0, 0.9):.7f}".lstrip("0") if k % 7 else "0",
            "INCLINATION": f"{chance.uniform(0, 180):.4f}" if k % 11 else "180",
            "RA_OF_ASC_NODE": f"{chance.uniform(0, 360):.4f}",
            "ARG_OF_PERICENTER": f"{chance.uniform(0, 360):.4f}",
            "MEAN_ANOMALY": f"{chance.uniform(0, 360):.4f}",
            "EPHEMERIS_TYPE": "0",
            "CLASSIFICATION_TYPE": "U",
            "NORAD_CAT_ID": str(number),
            "ELEMENT_SET_NO": "999",
            "REV_AT_EPOCH": str(chance.randrange(99999)),
            "BSTAR": chance.choice([short(chance.uniform(-1, 1) * 10.0 ** -chance.randrange(2, 9)), "0",
                                    f"{chance.uniform(0, 0.01):.8f}".lstrip("0")]),
            "MEAN_MOTION_DOT": f"{chance.uniform(0, 0.001):.8f}".lstrip("0"),
            "MEAN_MOTION_DDOT": "0",
        }


def as_csv(made):
    file = io.StringIO()
    names = [name for name in METADATA + MEAN + TLE if name not in IN_XML_ALONE]
    writer = csv.DictWriter(file, names, extrasaction="ignore", lineterminator="\n")
    writer.writeheader()
    writer.writerows(made)
    return file.getvalue()


def as_json(made):
    """Of every other object the numbers are written as texts, as one of the servers does."""

    def value(k, name, text):
        quoted = name in TEXTS or k % 2
        number = text.replace("-.", "-0.") if text.startswith("-.") else "0" + text if text.startswith(".") else text
        escaped = text.replace("\\", "\\\\").replace('"', '\\"')
        return f'"{escaped}"' if quoted else number

    records = ["{" + ",".join(f'"{name}":{value(k, name, text)}' for name, text in one.items() if name not in IN_XML_ALONE) + "}"
               for k, one in enumerate(made)]
    return "[" + ",".join(records) + "]"


def as_xml(made):
    out = ['<?xml version="1.0" encoding="UTF-8"?>',
           '<ndm xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance">']
    for one in made:
        out.append('<omm id="CCSDS_OMM_VERS" version="2.0"><header><CREATION_DATE/><ORIGINATOR/></header><body><segment>')
        for tag, names in (("metadata", METADATA), ("data", None)):
            if names:
                out.append(f"<{tag}>" + "".join(f"<{n}>{escape(one[n])}</{n}>" for n in names) + f"</{tag}>")
                continue
            out.append("<data>")
            for group, members in (("meanElements", MEAN), ("tleParameters", TLE)):
                out.append(f"<{group}>" + "".join(f"<{n}>{escape(one[n])}</{n}>" for n in members) + f"</{group}>")
            out.append("</data>")
        out.append("</segment></body></omm>")
    out.append("</ndm>")
    return "\n".join(out) + "\n"


class Handed:
    """In the place of a satellite: takes what the oracle hands to its propagator."""

    def sgp4init(self, _model, _mode, number, epoch, bstar, _ndot, _nddot, e, perigee, inclination, anomaly, motion, node):
        self.line = " ".join([str(number), *(x.hex() for x in (epoch, bstar, e, perigee, inclination, anomaly, motion, node))])


def read(fields):
    handed = Handed()
    omm.initialize(handed, fields)
    return handed.line


def files():
    made = list(objects())
    texts = {"omm.csv": as_csv(made), "omm.json": as_json(made), "omm.xml": as_xml(made)}
    from_csv = [read(fields) for fields in omm.parse_csv(io.StringIO(texts["omm.csv"]))]
    from_xml = [read(fields) for fields in omm.parse_xml(io.StringIO(texts["omm.xml"]))]
    assert from_csv == from_xml and len(from_csv) == COUNT
    texts["omm.txt"] = "# Made by make_omm.py beside this file, where its form is described.\n" + "\n".join(from_csv) + "\n"
    return texts


def main():
    different = False
    for name, text in files().items():
        path = os.path.join(HERE, name)
        if "--compare" not in sys.argv:
            with open(path, "w", newline="\n", encoding="utf-8") as file:
                file.write(text)
        elif open(path, newline="", encoding="utf-8").read() != text:
            print(f"{name} is not what is made now")
            different = True
    return 1 if different else 0


if __name__ == "__main__":
    sys.exit(main())
