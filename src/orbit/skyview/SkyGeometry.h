#pragma once

#include <cmath>
#include <numbers>

/// The polar plot of the sky: the zenith in its middle, the horizon at distance 1, north at the top.
namespace SkyGeometry {

struct PlotPoint {
    double x = 0; ///< to the right
    double y = 0; ///< downwards
};

/// Where east lies: on the right as on a map, or on the left as it is when one looks up.
enum class East { Right, Left };

/// Of an elevation in degrees: 0 at the zenith, 1 at the horizon, more below it.
constexpr double Radius(double elevation) {
    return (90 - elevation) / 90;
}

inline PlotPoint At(double azimuth, double elevation, East east) {
    const double angle = azimuth * std::numbers::pi / 180;
    const double across = Radius(elevation) * std::sin(angle);
    return {east == East::Right ? across : -across, -Radius(elevation) * std::cos(angle)};
}

} // namespace SkyGeometry
