#include "orbit/sky/Horizon.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orbitmath {

namespace {

constexpr double circle = 360;

double OnCircle(double azimuth) {
    const double turned = azimuth - circle * std::floor(azimuth / circle);
    return turned < circle ? turned : 0; // rounding may overshoot
}

} // namespace

Horizon::Horizon(std::vector<Point> points)
    : m_points(std::move(points)) {
    for (Point& point : m_points)
        point.azimuth = OnCircle(point.azimuth);
    std::ranges::sort(m_points, {}, &Point::azimuth);
}

double Horizon::ElevationAt(double azimuth) const {
    if (m_points.empty())
        return 0;
    const double at = OnCircle(azimuth);
    const auto after = std::ranges::upper_bound(m_points, at, {}, &Point::azimuth);
    const Point& to = after == m_points.end() ? m_points.front() : *after;
    const Point& from = after == m_points.begin() ? m_points.back() : *(after - 1);
    const double width = OnCircle(to.azimuth - from.azimuth);
    if (width == 0)
        return from.elevation; // there is one point only
    return from.elevation + (to.elevation - from.elevation) * OnCircle(at - from.azimuth) / width;
}

} // namespace orbitmath
