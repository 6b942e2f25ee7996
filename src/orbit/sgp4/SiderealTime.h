#pragma once

namespace orbitmath {

/// Date-time 0 (1899-12-30 00:00) as a Julian date.
constexpr double julianDateOfZero = 2415018.5;

/// Date-time of 1900-01-00 12:00 (JD 2415020), the zero of the sun's and moon's old theories.
constexpr double julianToDateTime1900 = 2415020.0 - julianDateOfZero;

/// Greenwich mean sidereal time, IAU 1982, in radians 0 to 2 pi. `utc` in days since 1899-12-30 00:00; UT1 is
/// taken as UTC, which is right to 0.9 s.
double SiderealTime(double utc);

/// Sidereal time counted on from a moment: seconds after it hold more digits than a date-time does.
class SiderealClock {
public:
    explicit SiderealClock(double startUtc);

    /// Radians, whole turns counted on, `seconds` after the start.
    double At(double seconds) const { return m_start + seconds * (m_rate + seconds * m_bend); }

private:
    double m_start;
    double m_rate; ///< radians per second at the start
    double m_bend; ///< half of what that gains in a second
};

/// Its rate about the year 2000, radians per second of UT1. Over a century it changes by 6e-11 of itself.
constexpr double siderealRate = 7.292115855306589e-5;

} // namespace orbitmath
