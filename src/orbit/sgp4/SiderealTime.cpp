#include "orbit/sgp4/SiderealTime.h"

#include "orbit/geometry/SinCos.h"

namespace orbitmath {

namespace {

constexpr double secondsPerCentury = 36525 * secondsPerDay;

// In seconds of time, by powers of the centuries since 2000-01-01 12:00.
constexpr double c0 = 67310.54841;
constexpr double c1 = 876600 * 3600.0 + 8640184.812866;
constexpr double c2 = 0.093104;
constexpr double c3 = -6.2e-6;

double CenturiesSince2000(double utc) {
    constexpr double j2000 = 2451545.0 - julianDateOfZero;
    return (utc - j2000) / 36525;
}

} // namespace

double SiderealTime(double utc) {
    const double t = CenturiesSince2000(utc);
    const double seconds = c0 + t * (c1 + t * (c2 + t * c3));
    return twoPi * (seconds / secondsPerDay - std::floor(seconds / secondsPerDay));
}

SiderealClock::SiderealClock(double startUtc)
    : m_start(SiderealTime(startUtc)) {
    const double t = CenturiesSince2000(startUtc);
    constexpr double turn = twoPi / secondsPerDay;
    m_rate = turn / secondsPerCentury * (c1 + t * (2 * c2 + t * 3 * c3));
    m_bend = turn / (secondsPerCentury * secondsPerCentury) * (c2 + t * 3 * c3);
}

} // namespace orbitmath
