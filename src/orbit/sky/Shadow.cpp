#include "orbit/sky/Shadow.h"

#include "orbit/sky/Observer.h"
#include "orbit/sky/Sun.h"

#include <algorithm>
#include <cmath>

namespace orbitmath {

Light LightAt(const Vector3& satellite, const Vector3& sun) {
    const Vector3 toSun = sun - satellite;
    const double r = Length(satellite);
    const double a = std::asin(std::min(1.0, sunRadius / Length(toSun)));   // the sun's apparent radius
    const double b = std::asin(std::min(1.0, wgs84::equatorialRadius / r)); // the earth's
    const double cosine = -Dot(satellite, toSun) / (r * Length(toSun));
    const double c = std::acos(std::clamp(cosine, -1.0, 1.0)); // between their centres
    if (c >= a + b)
        return Light::Sunlit;
    return c <= b - a ? Light::Umbra : Light::Penumbra;
}

} // namespace orbitmath
