#pragma once

#include "orbit/geometry/SinCos.h"
#include "orbit/geometry/Vector3.h"
#include "orbit/sgp4/Propagator.h"

namespace orbitmath {

/// The shape of the earth that positions on it are given for: WGS-84.
namespace wgs84 {
constexpr double equatorialRadius = 6378.137; ///< km
constexpr double flattening = 1 / 298.257223563;
constexpr double polarRadius = equatorialRadius * (1 - flattening);
constexpr double eccentricity2 = flattening * (2 - flattening);
} // namespace wgs84

/// A place and its velocity in the frame that turns with the earth: x to the Greenwich meridian on the
/// equator, z to the north. km and km/s.
struct EarthState {
    Vector3 position;
    Vector3 velocity;
};

/// Turns a state by the sidereal time of its moment. Polar motion (up to 15 m) is left out.
EarthState ToEarth(const StateVector& state, double siderealTime);

/// The same of a state that Propagator::At has turned by the sidereal time already.
EarthState OnEarth(const StateVector& turned);

/// A point over the ellipsoid.
struct Geodetic {
    double latitude = 0;  ///< radians, north positive
    double longitude = 0; ///< radians, east positive, -pi to pi
    double altitude = 0;  ///< km
};

/// The point under (or over) which a place lies. Bowring's formula of 1985: exact to 1e-10 radians from the
/// surface to the moon.
Geodetic ToGeodetic(const Vector3& position);

/// The way back: the place of a point, km.
Vector3 FromGeodetic(const Geodetic& point);

/// How an object stands in the sky.
struct LookAngles {
    double azimuth = 0;   ///< radians, 0 to 2 pi, from north over east
    double elevation = 0; ///< radians, above the plane at right angles to the vertical; no refraction
    double range = 0;     ///< km
    double rangeRate = 0; ///< km/s, positive: going away
};

/// A station on the ellipsoid at sea level.
///
///     const Observer station(60.17, 24.94);
///     const EarthState satellite = ToEarth(found.state, SiderealTime(utc));
///     const LookAngles look = station.Look(satellite);
class Observer {
public:
    /// Degrees, north and east positive.
    Observer(double latitudeDegrees, double longitudeDegrees);

    LookAngles Look(const EarthState& object) const;

    /// The east, north and up components of a vector of the earth's frame.
    Vector3 ToLocal(const Vector3& v) const { return {Dot(m_east, v), Dot(m_north, v), Dot(m_up, v)}; }

    const Vector3& Position() const { return m_position; }

private:
    Vector3 m_position;
    Vector3 m_east;
    Vector3 m_north;
    Vector3 m_up;
};

/// Of a local (east, north, up) vector: radians, 0 to 2 pi, and -pi/2 to pi/2.
double AzimuthOf(const Vector3& local);
double ElevationOf(const Vector3& local);

} // namespace orbitmath
