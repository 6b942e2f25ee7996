#include "orbit/sky/Sun.h"

#include "orbit/geometry/SinCos.h"
#include "orbit/sgp4/SiderealTime.h"

#include <algorithm>
#include <cmath>

namespace orbitmath {

namespace {

constexpr double kmPerAstronomicalUnit = 149597870.7;
constexpr double daysPerCentury = 36525;
constexpr double dateTimeOfJ2000 = 2451545.0 - julianDateOfZero;

// TT - UTC since 2017, in days. A minute more or less moves the sun by 0.0007 degrees.
constexpr double terrestrialMinusUtc = 69.184 / 86400;

double Degrees(double degrees) {
    return Turned(degrees * radiansPerDegree);
}

Vector3 Unit(const Vector3& v) {
    return (1 / Length(v)) * v;
}

} // namespace

Sun Sun::At(double utc) {
    const double T = (utc + terrestrialMinusUtc - dateTimeOfJ2000) / daysPerCentury;
    const double L0 = Degrees(280.46646 + T * (36000.76983 + T * 0.0003032)); // mean longitude
    const double M = Degrees(357.52911 + T * (35999.05029 - T * 0.0001537));  // mean anomaly
    const double e = 0.016708634 - T * (0.000042037 + T * 0.0000001267);
    const double C = radiansPerDegree * ((1.914602 - T * (0.004817 + T * 0.000014)) * std::sin(M) +
                                         (0.019993 - T * 0.000101) * std::sin(2 * M) +
                                         0.000289 * std::sin(3 * M)); // equation of the centre
    const double Omega = Degrees(125.04 - 1934.136 * T);              // the moon's ascending node
    constexpr double aberration = -0.00569 * radiansPerDegree;
    const double nutation = -0.00478 * radiansPerDegree * std::sin(Omega); // Delta psi
    const double lambda = L0 + C + aberration + nutation;
    const double epsilon = radiansPerDegree * (23.439291 - 0.0130042 * T + 0.00256 * std::cos(Omega));

    Sun sun;
    sun.rightAscension = Turned(std::atan2(std::cos(epsilon) * std::sin(lambda), std::cos(lambda)));
    sun.declination = std::asin(std::sin(epsilon) * std::sin(lambda));
    sun.distance = kmPerAstronomicalUnit * 1.000001018 * (1 - e * e) / (1 + e * std::cos(M + C));
    sun.hourAngle = Turned(SiderealTime(utc) + nutation * std::cos(epsilon) - sun.rightAscension);
    return sun;
}

Vector3 Sun::OverEarth() const {
    const SinCos delta = SinCos::Of(declination);
    const SinCos longitude = SinCos::Of(-hourAngle);
    return distance * Vector3{delta.cos * longitude.cos, delta.cos * longitude.sin, delta.sin};
}

double SunElevation(const Vector3& sun, const Geodetic& place) {
    const SinCos latitude = SinCos::Of(place.latitude);
    const SinCos longitude = SinCos::Of(place.longitude);
    const Vector3 up{latitude.cos * longitude.cos, latitude.cos * longitude.sin, latitude.sin};
    return std::asin(std::clamp(Dot(up, Unit(sun)), -1.0, 1.0));
}

std::vector<Geodetic> SunElevationCurve(const Vector3& sun, double elevation, std::size_t points) {
    const Vector3 towards = Unit(sun);
    const double longitude = std::atan2(sun.y, sun.x);
    const Vector3 east{-std::sin(longitude), std::cos(longitude), 0};
    const Vector3 north{-towards.z * std::cos(longitude), -towards.z * std::sin(longitude),
                        std::hypot(towards.x, towards.y)};
    std::vector<Geodetic> curve;
    curve.reserve(points);
    for (std::size_t k = 0; k < points; ++k) {
        const SinCos bearing = SinCos::Of(twoPi * static_cast<double>(k) / static_cast<double>(points));
        const Vector3 up =
            std::sin(elevation) * towards + std::cos(elevation) * (bearing.cos * north + bearing.sin * east);
        curve.push_back({.latitude = std::asin(std::clamp(up.z, -1.0, 1.0)),
                         .longitude = std::atan2(up.y, up.x),
                         .altitude = 0});
    }
    return curve;
}

} // namespace orbitmath
