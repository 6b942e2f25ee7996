#pragma once

#include "orbit/elements/Elements.h"

#include <gtest/gtest.h>

#include <string>
#include <variant>

/// Element sets of real objects and of made ones, and how to make more.
namespace testelements {

inline const std::string issName = "ISS (ZARYA)";
inline const std::string issLine1 = "1 25544U 98067A   26320.51782528  .00016717  00000-0  30777-3 0  9995";
inline const std::string issLine2 = "2 25544  51.6400 208.9163 0006703  69.9862  25.2906 15.49560532542417";

/// A line of 68 columns or more with the right checksum in column 69.
inline std::string WithChecksum(std::string line) {
    line.resize(68, ' ');
    int sum = 0;
    for (const char c : line)
        sum += c == '-' ? 1 : c >= '0' && c <= '9' ? c - '0' : 0;
    return line + static_cast<char>('0' + sum % 10);
}

/// An orbit given by its numbers: degrees, revolutions a day. The epoch is 2026-11-16 00:00.
inline orbitmath::Elements Orbit(double inclination, double node, double eccentricity, double perigee,
                                 double anomaly, double revolutions) {
    orbitmath::Elements elements;
    elements.number = 90000;
    elements.epochUtc = 46342;
    elements.inclination = inclination * orbitmath::radiansPerDegree;
    elements.node = node * orbitmath::radiansPerDegree;
    elements.eccentricity = eccentricity;
    elements.argumentOfPerigee = perigee * orbitmath::radiansPerDegree;
    elements.meanAnomaly = anomaly * orbitmath::radiansPerDegree;
    elements.meanMotion = revolutions * orbitmath::twoPi / 1440;
    return elements;
}

} // namespace testelements
