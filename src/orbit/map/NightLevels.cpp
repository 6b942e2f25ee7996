#include "orbit/map/NightLevels.h"

#include "orbit/geometry/SinCos.h"
#include "orbit/sky/Sun.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace MapGeometry {

using orbitmath::radiansPerDegree;
using orbitmath::SinCos;
using orbitmath::Vector3;

// sin(elevation) = sin(latitude) z + cos(latitude) (cos(longitude) x + sin(longitude) y) of the sun's
// direction: one factor a line and one a column.
std::vector<std::uint8_t> NightLevels(const Vector3& sun, int width, int height) {
    const Vector3 towards = (1 / Length(sun)) * sun;
    std::array<double, orbitmath::twilights.size()> sines{};
    std::ranges::transform(orbitmath::twilights, sines.begin(),
                           [](double degrees) { return std::sin(degrees * radiansPerDegree); });
    std::vector<double> columns;
    for (int x = 0; x < width; ++x) {
        const SinCos longitude = SinCos::Of(((x + 0.5) / width * 360 - 180) * radiansPerDegree);
        columns.push_back(longitude.cos * towards.x + longitude.sin * towards.y);
    }
    std::vector<std::uint8_t> levels(columns.size() * static_cast<std::size_t>(height));
    auto level = levels.begin();
    for (int y = 0; y < height; ++y) {
        const SinCos latitude = SinCos::Of((90 - (y + 0.5) / height * 180) * radiansPerDegree);
        std::array<double, sines.size()> limits{}; // of a column's factor; no line lies on a pole
        std::ranges::transform(sines, limits.begin(),
                               [&](double sine) { return (sine - latitude.sin * towards.z) / latitude.cos; });
        for (const double column : columns) {
            int dark = 0;
            for (const double limit : limits)
                dark += column < limit ? 1 : 0;
            *level++ = static_cast<std::uint8_t>(dark);
        }
    }
    return levels;
}

std::vector<Piece> Terminator(const Vector3& sun) {
    constexpr std::size_t points = 360;
    std::vector<GeoPoint> curve;
    for (const orbitmath::Geodetic& place : orbitmath::SunElevationCurve(sun, 0, points))
        curve.push_back({place.longitude / radiansPerDegree, place.latitude / radiansPerDegree});
    curve.push_back(curve.front());
    return TrackPieces(curve);
}

} // namespace MapGeometry
