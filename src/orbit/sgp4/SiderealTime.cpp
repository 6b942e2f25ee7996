#include "orbit/sgp4/SiderealTime.h"

#include "orbit/geometry/SinCos.h"

namespace orbitmath {

double SiderealTime(double utc) {
    constexpr double j2000 = 2451545.0 - julianDateOfZero;
    constexpr double secondsPerDay = 86400;
    const double t = (utc - j2000) / 36525;
    const double seconds = 67310.54841 + t * (876600 * 3600.0 + 8640184.812866 + t * (0.093104 - t * 6.2e-6));
    return twoPi * (seconds / secondsPerDay - std::floor(seconds / secondsPerDay));
}

} // namespace orbitmath
