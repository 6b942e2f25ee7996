#include "orbit/passes/StationPath.h"

#include "orbit/sgp4/Wgs72.h"

#include <algorithm>

namespace orbitmath {

namespace {

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

/// Fills in what follows from the orbit through a position and a velocity without the earth's turning: how
/// long a polynomial follows the path well, a fixed part of the way, in mean anomaly, to where the motion as
/// a function of time stops being smooth, which for an eccentric orbit lies close by the perigee.
void FillOrbit(const Vector3& position, const Vector3& velocity, StationPath::Node& node) {
    constexpr double longestAnomaly = 1.6;
    constexpr double inTheAir = 1.02 * wgs72::earthRadius; // km, from the centre of the earth
    constexpr double shortAnomaly = 0.7;                   // no two of its lowest points lie closer
    constexpr double ofTheWay = 0.8;
    constexpr double longestTurn = 1.4;  // of the earth, radians
    constexpr double unknownLength = 60; // of a path that is no ellipse
    const double r = Length(position);
    node.climb = Dot(position, velocity) / r;
    node.pieceLength = unknownLength;
    const double perA = 2 / r - Dot(velocity, velocity) / wgs72::gravitation;
    if (!(perA > 0))
        return;
    const double n = std::sqrt(wgs72::gravitation * perA) * perA;
    const double eCosE = 1 - r * perA;
    const double eSinE = Dot(position, velocity) * std::sqrt(perA / wgs72::gravitation);
    const double e2 = eCosE * eCosE + eSinE * eSinE;
    node.mayEnterEarth = 1 - std::sqrt(e2) < inTheAir * perA;
    const double longest = node.mayEnterEarth ? shortAnomaly : longestAnomaly;
    double anomaly = longest;
    if (e2 > 0.001 && e2 < 1) {
        const double m = std::atan2(eSinE, eCosE) - eSinE;
        const double beta = std::sqrt(1 - e2);
        const double aside = std::log((1 + beta) / std::sqrt(e2)) - beta;
        for (int k = 0; k < 4; ++k) {
            double middle = m + 0.5 * anomaly;
            if (middle > 0.5 * twoPi)
                middle -= twoPi;
            anomaly = std::min(longest, ofTheWay * std::sqrt(middle * middle + aside * aside));
        }
        // On the way down the nearest point of trouble is still ahead.
        if (m < 0 && m + anomaly > 0)
            anomaly = std::min(anomaly, std::max(-m, 2 * ofTheWay * aside));
    }
    node.pieceLength = std::min(anomaly / n, longestTurn / siderealRate);
}

} // namespace

StationPath::StationPath(const Propagator& propagator, const Observer& observer, double startUtc)
    : m_propagator(propagator)
    , m_observer(observer)
    , m_startUtc(startUtc)
    , m_startMinutes((startUtc - propagator.GetElements().epochUtc) * minutesPerDay)
    , m_siderealClock(startUtc) {}

std::optional<StationPath::Node> StationPath::At(double time) {
    ++m_propagations;
    const Propagation found = m_propagator.At(m_startMinutes + time / 60, m_siderealClock.At(time));
    m_lastError = found.error;
    if (!found)
        return {};
    const EarthState earth = OnEarth(found.state);
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
    FillOrbit(r, inertialV, node);
    return node;
}

double StationPath::LastGood(double good, double bad) {
    constexpr double closeEnough = 1e-4; // s
    while (std::abs(bad - good) > closeEnough) {
        const double middle = 0.5 * (good + bad);
        (At(middle) ? good : bad) = middle;
    }
    return good;
}

std::optional<double> StationPath::InsideEarth(const Node& from, const Node& to) {
    if (!(from.mayEnterEarth || to.mayEnterEarth) || from.climb >= 0 || to.climb <= 0)
        return {};
    // Down to the lowest point.
    constexpr double closeEnough = 1e-3; // s
    double falling = from.point.time;
    double climbing = to.point.time;
    while (climbing - falling > closeEnough) {
        const double middle = 0.5 * (falling + climbing);
        const std::optional<Node> node = At(middle);
        if (!node)
            return middle;
        (node->climb < 0 ? falling : climbing) = middle;
    }
    return {};
}

double StationPath::Utc(double time) const {
    return m_startUtc + time / secondsPerDay;
}

} // namespace orbitmath
