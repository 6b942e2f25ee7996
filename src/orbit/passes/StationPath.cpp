#include "orbit/passes/StationPath.h"

#include "orbit/sgp4/SiderealTime.h"
#include "orbit/sgp4/Wgs72.h"

#include <algorithm>

namespace orbitmath {

namespace {

constexpr double secondsPerDay = 86400;

/// omega x v, for the earth's rotation about z.
Vector3 EarthCross(const Vector3& v) {
    return {-siderealRate * v.y, siderealRate * v.x, 0};
}

/// The pull of the flattened earth on a place in the earth's frame, km/s^2.
Vector3 Gravity(const Vector3& r) {
    const double perR2 = 1 / Dot(r, r);
    const double perR = std::sqrt(perR2);
    const double central = -wgs72::gravitation * perR2 * perR;
    const double flat = 1.5 * wgs72::j2 * wgs72::earthRadius * wgs72::earthRadius * perR2;
    const double z2 = 5 * r.z * r.z * perR2;
    const double across = central * (1 + flat * (1 - z2));
    return {across * r.x, across * r.y, central * (1 + flat * (3 - z2)) * r.z};
}

/// How long from a state (position and velocity without the earth's turning) a polynomial follows the path
/// well, seconds: a fixed part of the way, in mean anomaly, to where the motion as a function of time stops
/// being smooth, which for an eccentric orbit lies close by the perigee.
double PieceLength(const StateVector& state) {
    constexpr double longestAnomaly = 1.6;
    constexpr double ofTheWay = 0.8;
    constexpr double longestTurn = 1.4; // of the earth, radians
    const double r = Length(state.position);
    const double perA = 2 / r - Dot(state.velocity, state.velocity) / wgs72::gravitation;
    if (!(perA > 0))
        return 60;
    const double n = std::sqrt(wgs72::gravitation * perA) * perA;
    const double eCosE = 1 - r * perA;
    const double eSinE = Dot(state.position, state.velocity) * std::sqrt(perA / wgs72::gravitation);
    const double e2 = eCosE * eCosE + eSinE * eSinE;
    double anomaly = longestAnomaly;
    if (e2 > 0.001 && e2 < 1) {
        const double m = std::atan2(eSinE, eCosE) - eSinE;
        const double beta = std::sqrt(1 - e2);
        const double aside = std::log((1 + beta) / std::sqrt(e2)) - beta;
        for (int k = 0; k < 4; ++k) {
            double middle = m + 0.5 * anomaly;
            if (middle > 0.5 * twoPi)
                middle -= twoPi;
            anomaly = std::min(longestAnomaly, ofTheWay * std::sqrt(middle * middle + aside * aside));
        }
        // On the way down the nearest point of trouble is still ahead.
        if (m < 0 && m + anomaly > 0)
            anomaly = std::min(anomaly, std::max(-m, 2 * ofTheWay * aside));
    }
    return std::min(anomaly / n, longestTurn / siderealRate);
}

} // namespace

StationPath::StationPath(const Propagator& propagator, const Observer& observer, double startUtc)
    : m_propagator(propagator)
    , m_observer(observer)
    , m_startUtc(startUtc)
    , m_startMinutes((startUtc - propagator.GetElements().epochUtc) * 1440)
    , m_siderealTime(SiderealTime(startUtc)) {}

std::optional<StationPath::Node> StationPath::At(double time) {
    ++m_propagations;
    const Propagation found = m_propagator.At(m_startMinutes + time / 60);
    m_lastError = found.error;
    if (!found)
        return {};
    const EarthState earth = ToEarth(found.state, m_siderealTime + siderealRate * time);
    const Vector3& r = earth.position;
    const Vector3& v = earth.velocity;
    const Vector3 inertialV = v + EarthCross(r);
    const Vector3 centrifugal = EarthCross(EarthCross(r));
    const Vector3 acceleration = Gravity(r) - 2 * EarthCross(v) - centrifugal;
    const double r2 = Dot(r, r);
    const double k = wgs72::gravitation / (r2 * std::sqrt(r2));
    const Vector3 jerk = -k * (inertialV - 3 * Dot(r, inertialV) / r2 * r) - 3 * EarthCross(acceleration) -
                         3 * EarthCross(EarthCross(v)) - EarthCross(centrifugal);
    Node node;
    node.point.time = time;
    node.point.position = m_observer.ToLocal(r - m_observer.Position());
    node.point.velocity = m_observer.ToLocal(v);
    node.point.acceleration = m_observer.ToLocal(acceleration);
    node.point.upJerk = m_observer.ToLocal(jerk).z;
    node.pieceLength = PieceLength({r, inertialV, 0});
    return node;
}

double StationPath::LastGood(double good, double bad) {
    while (std::abs(bad - good) > 1) {
        const double middle = 0.5 * (good + bad);
        (At(middle) ? good : bad) = middle;
    }
    return good;
}

double StationPath::Utc(double time) const {
    return m_startUtc + time / secondsPerDay;
}

} // namespace orbitmath
