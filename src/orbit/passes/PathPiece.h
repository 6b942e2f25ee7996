#pragma once

#include "orbit/geometry/Vector3.h"

#include <array>

namespace orbitmath {

/// An object in a station's frame (east, north, up; km and seconds) at a time.
struct PathPoint {
    double time = 0; ///< seconds
    Vector3 position;
    Vector3 velocity;
    Vector3 acceleration;
    double upJerk = 0; ///< third derivative of the height over the horizon's plane
};

/// The path between two points as a polynomial of the fifth degree, in Bernstein's form: it lies between the
/// least and the greatest of its coefficients, and changes its sign no more often than they do.
class PathPiece {
public:
    PathPiece(const PathPoint& from, const PathPoint& to);

    /// The least and greatest height over the horizon's plane that the piece can have.
    double Lowest() const;
    double Highest() const;

    /// How far the true height may lie from the piece's, km. Estimated with a margin from what the third
    /// derivative lacks at the ends.
    double Error() const { return m_error; }

    Vector3 At(double time) const; ///< the place
    double HeightAt(double time) const;

    /// The times between the ends at which the height is greatest or least nearby: up to four.
    struct Extrema {
        std::array<double, 4> times{};
        std::size_t count = 0;
    };
    Extrema HeightExtrema() const;

private:
    friend class ElevationTrend;
    friend class HeightCurve;

    double m_start = 0;
    double m_length = 0;
    std::array<Vector3, 6> m_points;
    double m_error = 0;
};

/// The height over the horizon's plane along a piece, for being asked often: a polynomial of powers costs
/// less than Bernstein's.
class HeightCurve {
public:
    explicit HeightCurve(const PathPiece& piece);

    double At(double time) const;

private:
    double m_start;
    double m_perLength;
    std::array<double, 6> m_powers; ///< of the part of the way along the piece
};

/// Whether the elevation grows along a piece, likewise.
class ElevationTrend {
public:
    explicit ElevationTrend(const PathPiece& piece);

    bool IsUpAt(double time) const;

private:
    double m_start;
    double m_perLength;
    std::array<Vector3, 6> m_powers; ///< of the part of the way along the piece
};

/// How fast the sine of the elevation grows at a point, and how fast that does.
struct ElevationSlope {
    double sine = 0;
    double first = 0;  ///< per second
    double second = 0; ///< per second^2
};
ElevationSlope SlopeOf(const PathPoint& point);

} // namespace orbitmath
