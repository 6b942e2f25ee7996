#pragma once

#include <cmath>
#include <numbers>

namespace orbitmath {

constexpr double pi = std::numbers::pi;
constexpr double twoPi = 2 * std::numbers::pi;
constexpr double radiansPerDegree = std::numbers::pi / 180;

constexpr double minutesPerDay = 1440;
constexpr double secondsPerDay = 86400;

/// An angle, known by its sine and cosine.
struct SinCos {
    double sin = 0;
    double cos = 1;

    explicit SinCos() = default;
    SinCos(double sine, double cosine)
        : sin(sine)
        , cos(cosine) {}

    static SinCos Of(double angle) { return {std::sin(angle), std::cos(angle)}; }

    /// The sum of two angles.
    friend SinCos operator+(const SinCos& a, const SinCos& b) {
        return {a.sin * b.cos + a.cos * b.sin, a.cos * b.cos - a.sin * b.sin};
    }

    /// This angle and `delta` radians more. Up to 1/8 the series of sine and cosine give all the digits of a
    /// double at a fraction of the cost of a library call; up to 1/64 two terms less of each do.
    SinCos Plus(double delta) const {
        const double q = delta * delta;
        if (q <= 1.0 / (64 * 64)) {
            const double s = delta * (1 - q * (1.0 / 6) * (1 - q * (1.0 / 20)));
            const double versine = 0.5 * q * (1 - q * (1.0 / 12) * (1 - q * (1.0 / 30)));
            return {sin + (cos * s - sin * versine), cos - (sin * s + cos * versine)};
        }
        if (!(q <= 1.0 / (8 * 8)))
            return *this + Of(delta);
        const double s =
            delta * (1 - q * (1.0 / 6) * (1 - q * (1.0 / 20) * (1 - q * (1.0 / 42) * (1 - q * (1.0 / 72)))));
        const double versine =
            0.5 * q *
            (1 - q * (1.0 / 12) * (1 - q * (1.0 / 30) * (1 - q * (1.0 / 56) * (1 - q * (1.0 / 90)))));
        return {sin + (cos * s - sin * versine), cos - (sin * s + cos * versine)};
    }
};

/// `angle` turned into 0 (included) to 2 pi (excluded).
inline double Turned(double angle) {
    const double turned = angle - twoPi * std::floor(angle * (1 / twoPi));
    return turned >= 0 && turned < twoPi ? turned : 0; // rounding may overshoot by a last digit
}

} // namespace orbitmath
