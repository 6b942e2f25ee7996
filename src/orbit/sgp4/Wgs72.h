#pragma once

/// The gravity model that two-line element sets are fitted with: WGS-72.
namespace orbitmath::wgs72 {

constexpr double gravitation = 398600.8; ///< mu, km^3/s^2
constexpr double earthRadius = 6378.135; ///< equatorial, km
constexpr double j2 = 0.001082616;
constexpr double j3 = -0.00000253881;
constexpr double j4 = -0.00000165597;
constexpr double j3OverJ2 = j3 / j2;

/// k_e, the square root of mu in earth radii^1.5 per minute: 60 / sqrt(earthRadius^3 / gravitation).
constexpr double ke = 0.07436691613317342;

} // namespace orbitmath::wgs72
