#pragma once

#include <vector>

namespace orbitmath {

/// What hides the sky around a station: hills, houses, trees. Degrees.
class Horizon {
public:
    struct Point {
        double azimuth = 0; ///< 0 to 360, from north over east
        double elevation = 0;
    };

    /// A flat one, at elevation 0 all around.
    Horizon() = default;

    /// Straight lines from point to point, around the circle, in any order; no two of one azimuth.
    explicit Horizon(std::vector<Point> points);

    double ElevationAt(double azimuth) const;

    /// Whether somebody has described it.
    bool IsKnown() const { return !m_points.empty(); }

    /// By azimuth, 0 to less than 360.
    const std::vector<Point>& Points() const { return m_points; }

private:
    std::vector<Point> m_points;
};

} // namespace orbitmath
