#pragma once

#include "orbit/FakeLibrary.h"

#include <cmath>
#include <memory>

/// Lets a fake library's objects circle the earth in 100 minutes: "90417" over both poles, any other at 51.6
/// degrees. At time 0 of a day they cross the equator at longitude 0, northward.
inline void LetCircle(FakeLibrary& library) {
    library.source = ElementSource{.name = "X", .file = "x.txt", .epochUtc = 46000, .meanMotion = 14.4};
    library.position = [](const std::string& object, double utc) -> std::optional<LibraryPosition> {
        const double minutes = (utc - std::floor(utc)) * 1440.0;
        const double u = 2 * std::numbers::pi * minutes / 100.0;
        const double inclination = (object == "90417" ? 90.0 : 51.6) * radian;
        const double longitude = std::atan2(std::cos(inclination) * std::sin(u), std::cos(u)) -
                                 minutes / 1440 * 2 * std::numbers::pi;
        return LibraryPosition{.longitude = std::remainder(longitude, 2 * std::numbers::pi),
                               .latitude = std::asin(std::sin(inclination) * std::sin(u)),
                               .altitude = object == "90417" ? 700.0 : 420.0};
    };
}
