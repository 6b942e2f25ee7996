#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace orbitmath {

namespace arctangent {

constexpr std::size_t parts = 32; ///< of the octant's tangent

// Lengths that a float holds with all its digits.
constexpr double shortest = 1e-30;
constexpr double longest = 1e30;

/// The arc tangents of 0, 1/32, ... 1.
constexpr std::array<double, parts + 1> Table() {
    std::array<double, parts + 1> angles{};
    long double angle = 0;
    for (std::size_t k = 1; k < angles.size(); ++k) {
        // From one to the next is a small angle, of which the series is short.
        const long double tangent =
            static_cast<long double>(parts) / (parts * parts + static_cast<long double>(k * (k - 1)));
        const long double square = tangent * tangent;
        long double series = 0;
        for (int power = 15; power > 0; power -= 2)
            series = 1.0L / power - square * series;
        angle += tangent * series;
        angles[k] = static_cast<double>(angle);
    }
    return angles;
}

inline constexpr std::array<double, parts + 1> table = Table();

} // namespace arctangent

/// The angle of the direction (x, y), -pi to pi: std::atan2 to the last two digits of a double, at half the
/// cost.
inline double ArcTangent(double y, double x) {
    const double absX = std::abs(x);
    const double absY = std::abs(y);
    const bool isSteep = absX < absY;
    const double low = isSteep ? absX : absY;
    const double high = isSteep ? absY : absX;
    if (!(low <= high && high > arctangent::shortest && high < arctangent::longest))
        return std::atan2(y, x);
    const float ratio = static_cast<float>(low) / static_cast<float>(high);
    const auto k = static_cast<std::size_t>(ratio * arctangent::parts + 0.5F);
    const double tangent = static_cast<double>(k) * (1.0 / arctangent::parts);
    const double rest = (low - tangent * high) / (high + tangent * low); // 1/64 at most
    const double q = rest * rest;
    double angle =
        arctangent::table[k] + rest * (1 - q * (1.0 / 3 - q * (1.0 / 5 - q * (1.0 / 7 - q * (1.0 / 9)))));
    if (isSteep)
        angle = std::numbers::pi / 2 - angle;
    if (x < 0)
        angle = std::numbers::pi - angle;
    return y < 0 ? -angle : angle;
}

} // namespace orbitmath
