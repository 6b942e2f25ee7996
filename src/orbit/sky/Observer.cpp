#include "orbit/sky/Observer.h"

#include "orbit/geometry/ArcTangent.h"
#include "orbit/sgp4/SiderealTime.h"

namespace orbitmath {

namespace {

/// Up to this sine the arc sine is as good as the arc tangent, and quicker.
constexpr double steep = 0.9;

double AcrossOf(const Vector3& local) {
    return std::sqrt(local.x * local.x + local.y * local.y);
}

} // namespace

EarthState ToEarth(const StateVector& state, double siderealTime) {
    const SinCos theta = SinCos::Of(siderealTime);
    const Vector3& r = state.position;
    const Vector3& v = state.velocity;
    StateVector turned;
    turned.position = {theta.cos * r.x + theta.sin * r.y, theta.cos * r.y - theta.sin * r.x, r.z};
    turned.velocity = {theta.cos * v.x + theta.sin * v.y, theta.cos * v.y - theta.sin * v.x, v.z};
    return OnEarth(turned);
}

EarthState OnEarth(const StateVector& turned) {
    const Vector3& r = turned.position;
    return {r, turned.velocity + Vector3{siderealRate * r.y, -siderealRate * r.x, 0}};
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
    point.latitude = std::abs(sine) < steep ? std::asin(sine) : ArcTangent(sine, cosine);
    point.longitude = ArcTangent(position.y, position.x);
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
    const double azimuth = ArcTangent(local.x, local.y);
    return azimuth < 0 ? Turned(azimuth) : azimuth;
}

double ElevationOf(const Vector3& local) {
    return ArcTangent(local.z, AcrossOf(local));
}

LookAngles Observer::Look(const EarthState& object) const {
    const Vector3 line = object.position - m_position;
    const Vector3 local = ToLocal(line);
    LookAngles look;
    look.azimuth = AzimuthOf(local);
    look.range = Length(line);
    const double perRange = look.range > 0 ? 1 / look.range : 0;
    const double sine = local.z * perRange;
    look.elevation = std::abs(sine) < steep ? std::asin(sine) : ElevationOf(local);
    look.rangeRate = Dot(line, object.velocity) * perRange;
    return look;
}

} // namespace orbitmath
