#include "orbit/sky/Observer.h"

#include "orbit/sgp4/SiderealTime.h"

namespace orbitmath {

namespace {

/// The angle of a direction whose sine and cosine are known. The arc sine is quick, and good where it is not
/// steep.
double AngleOf(double sine, double cosine) {
    return std::abs(sine) < 0.9 ? std::asin(sine) : std::atan2(sine, cosine);
}

} // namespace

EarthState ToEarth(const StateVector& state, double siderealTime) {
    const SinCos theta = SinCos::Of(siderealTime);
    const Vector3& r = state.position;
    const Vector3& v = state.velocity;
    EarthState earth;
    earth.position = {theta.cos * r.x + theta.sin * r.y, theta.cos * r.y - theta.sin * r.x, r.z};
    earth.velocity = {theta.cos * v.x + theta.sin * v.y + siderealRate * earth.position.y,
                      theta.cos * v.y - theta.sin * v.x - siderealRate * earth.position.x, v.z};
    return earth;
}

Geodetic ToGeodetic(const Vector3& position) {
    using namespace wgs84;
    constexpr double secondEccentricity2 = eccentricity2 / (1 - eccentricity2);
    const double p2 = position.x * position.x + position.y * position.y;
    const double p = std::sqrt(p2);
    const double r = std::sqrt(p2 + position.z * position.z);
    // The reduced latitude as a direction, then the latitude as one (along p, along z).
    const double reducedZ = (1 - flattening) * position.z * (r + secondEccentricity2 * polarRadius);
    const double reducedP = p * r;
    const double perReduced = 1 / std::sqrt(reducedP * reducedP + reducedZ * reducedZ);
    const double cosReduced = reducedP * perReduced;
    const double sinReduced = reducedZ * perReduced;
    const double alongZ =
        position.z + secondEccentricity2 * polarRadius * sinReduced * sinReduced * sinReduced;
    const double alongP = p - eccentricity2 * equatorialRadius * cosReduced * cosReduced * cosReduced;
    const double perLength = 1 / std::sqrt(alongP * alongP + alongZ * alongZ);
    const double sine = alongZ * perLength;
    const double cosine = alongP * perLength;

    Geodetic point;
    point.latitude = AngleOf(sine, cosine);
    point.longitude = std::atan2(position.y, position.x);
    point.altitude =
        p * cosine + position.z * sine - equatorialRadius * std::sqrt(1 - eccentricity2 * sine * sine);
    return point;
}

Vector3 FromGeodetic(const Geodetic& point) {
    using namespace wgs84;
    const SinCos latitude = SinCos::Of(point.latitude);
    const SinCos longitude = SinCos::Of(point.longitude);
    // The prime vertical's radius of curvature.
    const double n = equatorialRadius / std::sqrt(1 - eccentricity2 * latitude.sin * latitude.sin);
    return {(n + point.altitude) * (latitude.cos * longitude.cos),
            (n + point.altitude) * (latitude.cos * longitude.sin),
            (n * (1 - eccentricity2) + point.altitude) * latitude.sin};
}

Observer::Observer(double latitudeDegrees, double longitudeDegrees) {
    const Geodetic place{latitudeDegrees * radiansPerDegree, longitudeDegrees * radiansPerDegree, 0};
    const SinCos latitude = SinCos::Of(place.latitude);
    const SinCos longitude = SinCos::Of(place.longitude);
    m_position = FromGeodetic(place);
    m_east = {-longitude.sin, longitude.cos, 0};
    m_north = {-latitude.sin * longitude.cos, -latitude.sin * longitude.sin, latitude.cos};
    m_up = {latitude.cos * longitude.cos, latitude.cos * longitude.sin, latitude.sin};
}

double AzimuthOf(const Vector3& local) {
    const double azimuth = std::atan2(local.x, local.y);
    return azimuth < 0 ? Turned(azimuth) : azimuth;
}

double ElevationOf(const Vector3& local) {
    return std::atan2(local.z, std::sqrt(local.x * local.x + local.y * local.y));
}

LookAngles Observer::Look(const EarthState& object) const {
    const Vector3 line = object.position - m_position;
    const Vector3 local = ToLocal(line);
    LookAngles look;
    look.azimuth = AzimuthOf(local);
    look.range = Length(line);
    const double across = std::sqrt(local.x * local.x + local.y * local.y);
    look.elevation = look.range > 0 ? AngleOf(local.z / look.range, across / look.range) : 0;
    look.rangeRate = look.range > 0 ? Dot(line, object.velocity) / look.range : 0;
    return look;
}

} // namespace orbitmath
