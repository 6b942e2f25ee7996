#pragma once

#include "orbit/geometry/Vector3.h"
#include "orbit/sky/Observer.h"

#include <array>
#include <cstddef>
#include <vector>

namespace orbitmath {

constexpr double sunRadius = 696000; ///< km

/// The sun as it is seen from the centre of the earth, after the low-precision theory of J. Meeus,
/// Astronomical Algorithms, chapter 25: good to 0.01 degrees in the centuries around 2000. Nutation and
/// aberration are in it. `utc` in days since 1899-12-30 00:00.
struct Sun {
    double rightAscension = 0; ///< alpha, radians, 0 to 2 pi, of the true equinox of date
    double declination = 0;    ///< delta, radians
    double distance = 0;       ///< R, km
    double hourAngle = 0;      ///< at Greenwich, radians, 0 to 2 pi; west of its meridian positive

    static Sun At(double utc);

    /// Its place in the frame that turns with the earth, km.
    Vector3 OverEarth() const;
};

/// How high the sun (its centre, no refraction) stands over the horizon of a place on the ellipsoid, radians.
/// `sun`: its place over the earth.
double SunElevation(const Vector3& sun, const Geodetic& place);

/// Sunset, and the ends of civil, nautical and astronomical twilight: elevations of the sun, degrees.
constexpr std::array<double, 4> twilights = {0, -6, -12, -18};

/// The places at which the sun stands at an elevation (radians): `points` of them, evenly around the
/// sub-solar point, beginning on its meridian to the north of it, then eastward. The curve is closed: the
/// last is followed by the first.
std::vector<Geodetic> SunElevationCurve(const Vector3& sun, double elevation, std::size_t points);

} // namespace orbitmath
