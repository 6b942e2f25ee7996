#include "orbit/passes/PathPiece.h"

#include <algorithm>

namespace orbitmath {

namespace {

/// De Casteljau's scheme: the value at x of the polynomial with these coefficients.
template <typename T, std::size_t N>
T Value(std::array<T, N> c, double x) {
    for (std::size_t last = N - 1; last > 0; --last) {
        for (std::size_t k = 0; k < last; ++k)
            c[k] = c[k] + x * (c[k + 1] - c[k]);
    }
    return c[0];
}

/// The coefficients of the powers of x.
template <typename T, std::size_t N>
std::array<T, N> Powers(std::array<T, N> c) {
    for (std::size_t order = 1; order < N; ++order) {
        for (std::size_t k = N - 1; k >= order; --k)
            c[k] = c[k] - c[k - 1];
    }
    double binomial = 1;
    for (std::size_t k = 1; k < N; ++k) {
        binomial = binomial * static_cast<double>(N - k) / static_cast<double>(k);
        c[k] = binomial * c[k];
    }
    return c;
}

template <std::size_t N>
double ValueOfPowers(const std::array<double, N>& powers, double x) {
    double value = powers.back();
    for (std::size_t k = N - 1; k > 0; --k)
        value = x * value + powers[k - 1];
    return value;
}

using Quartic = std::array<double, 5>;

int SignChanges(const Quartic& c) {
    int changes = 0;
    for (std::size_t k = 0; k + 1 < c.size(); ++k)
        changes += (c[k] > 0) != (c[k + 1] > 0) ? 1 : 0;
    return changes;
}

/// The roots of a quartic between 0 and 1, in order, by halving until a part holds one.
void FindRoots(const Quartic& c, double from, double length, int depth, PathPiece::Extrema& found) {
    const int changes = SignChanges(c);
    if (changes == 0 || found.count == found.times.size())
        return;
    constexpr int deepest = 24;
    if (depth >= deepest) {
        if ((c.front() > 0) != (c.back() > 0))
            found.times.at(found.count++) = from + 0.5 * length;
        return;
    }
    if (changes == 1) {
        double low = 0;
        double high = 1;
        const bool rising = c.back() > 0;
        const Quartic powers = Powers(c);
        for (int k = 0; k < deepest; ++k) {
            const double middle = 0.5 * (low + high);
            ((ValueOfPowers(powers, middle) > 0) == rising ? high : low) = middle;
        }
        found.times.at(found.count++) = from + 0.5 * (low + high) * length;
        return;
    }
    Quartic left{};
    Quartic right = c;
    for (std::size_t level = 0; level < c.size(); ++level) {
        left[level] = right[0];
        for (std::size_t k = 0; k + 1 < c.size() - level; ++k)
            right[k] = 0.5 * (right[k] + right[k + 1]);
    }
    // What is left of the scheme, read backwards, is the right half.
    FindRoots(left, from, 0.5 * length, depth + 1, found);
    FindRoots(right, from + 0.5 * length, 0.5 * length, depth + 1, found);
}

// The control points of the quintic with the two points' positions, velocities and accelerations.
std::array<Vector3, 6> ControlPoints(const PathPoint& from, const PathPoint& to) {
    const double length = to.time - from.time;
    const double fifth = length / 5;
    const double twentieth = length * length / 20;
    return {
        from.position,
        from.position + fifth * from.velocity,
        from.position + 2 * fifth * from.velocity + twentieth * from.acceleration,
        to.position - 2 * fifth * to.velocity + twentieth * to.acceleration,
        to.position - fifth * to.velocity,
        to.position,
    };
}

std::array<double, 6> Heights(const std::array<Vector3, 6>& points) {
    std::array<double, 6> heights{};
    std::ranges::transform(points, heights.begin(), &Vector3::z);
    return heights;
}

} // namespace

PathPiece::PathPiece(const PathPoint& from, const PathPoint& to)
    : m_start(from.time)
    , m_length(to.time - from.time)
    , m_points(ControlPoints(from, to)) {
    // A function's sixth derivative D leaves the piece wrong by up to D (length/2)^6 / 720 in its middle, and
    // its third derivative at the ends by D length^3 / 120: 1/384 of the length's cube lies between the two.
    const double cube = m_length * m_length * m_length;
    const auto third = [&](std::size_t k) {
        return 60 * (m_points[k + 3].z - 3 * m_points[k + 2].z + 3 * m_points[k + 1].z - m_points[k].z) /
               cube;
    };
    const double lacking = std::max(std::abs(third(0) - from.upJerk), std::abs(third(2) - to.upJerk));
    constexpr double margin = 4;
    constexpr double modelError = 0.05; // km: what the acceleration leaves out
    m_error = margin * lacking * cube / 384 + modelError;
}

double PathPiece::Lowest() const {
    double least = m_points[0].z;
    for (const Vector3& point : m_points)
        least = std::min(least, point.z);
    return least;
}

double PathPiece::Highest() const {
    double greatest = m_points[0].z;
    for (const Vector3& point : m_points)
        greatest = std::max(greatest, point.z);
    return greatest;
}

Vector3 PathPiece::At(double time) const {
    return Value(m_points, (time - m_start) / m_length);
}

double PathPiece::HeightAt(double time) const {
    return Value(Heights(m_points), (time - m_start) / m_length);
}

PathPiece::Extrema PathPiece::HeightExtrema() const {
    Quartic derivative{};
    for (std::size_t k = 0; k < derivative.size(); ++k)
        derivative[k] = m_points[k + 1].z - m_points[k].z;
    Extrema found;
    FindRoots(derivative, 0, 1, 0, found);
    for (std::size_t k = 0; k < found.count; ++k)
        found.times.at(k) = m_start + found.times.at(k) * m_length;
    return found;
}

HeightCurve::HeightCurve(const PathPiece& piece)
    : m_start(piece.m_start)
    , m_perLength(1 / piece.m_length)
    , m_powers(Powers(Heights(piece.m_points))) {}

double HeightCurve::At(double time) const {
    return ValueOfPowers(m_powers, (time - m_start) * m_perLength);
}

ElevationTrend::ElevationTrend(const PathPiece& piece)
    : m_start(piece.m_start)
    , m_perLength(1 / piece.m_length)
    , m_powers(Powers(piece.m_points)) {}

bool ElevationTrend::IsUpAt(double time) const {
    const double x = (time - m_start) * m_perLength;
    Vector3 position = m_powers.back();
    Vector3 along; // the position's derivative
    for (std::size_t k = m_powers.size() - 1; k > 0; --k) {
        along = x * along + position;
        position = x * position + m_powers[k - 1];
    }
    return along.z * Dot(position, position) > position.z * Dot(position, along);
}

ElevationSlope SlopeOf(const PathPoint& point) {
    const double range = Length(point.position);
    const double rangeRate = Dot(point.position, point.velocity) / range;
    const double rangeAcceleration = (Dot(point.velocity, point.velocity) +
                                      Dot(point.position, point.acceleration) - rangeRate * rangeRate) /
                                     range;
    ElevationSlope slope;
    slope.sine = point.position.z / range;
    slope.first = (point.velocity.z - slope.sine * rangeRate) / range;
    slope.second =
        (point.acceleration.z - 2 * slope.first * rangeRate - slope.sine * rangeAcceleration) / range;
    return slope;
}

} // namespace orbitmath
