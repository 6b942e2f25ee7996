#include "orbit/math/PassSearch.h"

#include "orbit/math/PathPiece.h"
#include "orbit/math/SiderealTime.h"
#include "orbit/math/Wgs72.h"

#include <algorithm>
#include <optional>

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
            const double middle = std::remainder(m + 0.5 * anomaly, twoPi);
            anomaly = std::min(longestAnomaly, ofTheWay * std::sqrt(middle * middle + aside * aside));
        }
        // On the way down the nearest point of trouble is still ahead.
        if (m < 0 && m + anomaly > 0)
            anomaly = std::min(anomaly, std::max(-m, 2 * ofTheWay * aside));
    }
    return std::min(anomaly / n, longestTurn / siderealRate);
}

class Search {
public:
    Search(const Propagator& propagator, const Observer& observer, double startUtc, double seconds,
           std::size_t most)
        : m_propagator(propagator)
        , m_observer(observer)
        , m_startUtc(startUtc)
        , m_startMinutes((startUtc - propagator.GetElements().epochUtc) * 1440)
        , m_siderealTime(SiderealTime(startUtc))
        , m_seconds(seconds)
        , m_most(most) {}

    PassList Run();

private:
    /// A point of the path, and the length of piece that may follow it. Nothing where the elements fail.
    struct Node {
        PathPoint point;
        double pieceLength = 0;
    };
    /// A pass under way.
    struct Open {
        double rise = 0;
        double riseAzimuth = 0;
        double highest = 0; ///< time
        double bestSine = -1;
        Vector3 top; ///< the place at `highest`
    };

    std::optional<Node> NodeAt(double time);
    std::optional<Node> Bridge(const Node& good, double bad);
    double LastGood(double good, double bad);
    void Walk(const PathPoint& a, const PathPoint& b, int depth);
    void FindCrossings(const PathPiece& piece, const PathPoint& a, const PathPoint& b);
    void Cross(const PathPiece& piece, double from, double to, bool rising);
    double TrueExtremum(double time, double from, double to);
    void ScanElevation(const PathPiece& piece, double from, double to);
    void TryHighest(double time, double from, double to);
    void Rise(const PathPoint& point);
    void Set(const PathPoint& point, bool sets);
    bool Done(double time) const {
        return !m_open && (time >= m_seconds || m_result.passes.size() >= m_most);
    }
    double Utc(double time) const { return m_startUtc + time / secondsPerDay; }

    const Propagator& m_propagator;
    const Observer& m_observer;
    const double m_startUtc;
    const double m_startMinutes;
    const double m_siderealTime; ///< at the start
    const double m_seconds;
    const std::size_t m_most;

    PassList m_result;
    PropagationError m_lastError = PropagationError::None;
    bool m_above = false;       ///< the horizon, at the place the search has come to
    std::optional<Open> m_open; ///< the pass under way, when it began after the start
};

/// The point at `time` seconds after the start.
std::optional<Search::Node> Search::NodeAt(double time) {
    ++m_result.propagations;
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

PassList Search::Run() {
    std::optional<Node> a = NodeAt(0);
    if (!a) {
        m_result.error = m_lastError;
        return m_result;
    }
    m_above = a->point.position.z > 0;
    const double end = m_seconds + longestPassDays * secondsPerDay;
    while (!Done(a->point.time)) {
        const double time = a->point.time;
        if (time >= end) {
            Set(a->point, false);
            break;
        }
        double next = time + a->pieceLength;
        if (!m_open && next > m_seconds)
            next = m_seconds;
        std::optional<Node> b = NodeAt(next);
        if (b)
            Walk(a->point, b->point, 0);
        else
            b = Bridge(*a, next);
        if (!b)
            break;
        a = b;
    }
    return m_result;
}

/// Where the elements fail at `bad`: goes on to the last time before at which they hold, and to the first
/// time after at which they hold again. Nothing when they do not.
std::optional<Search::Node> Search::Bridge(const Node& good, double bad) {
    if (m_lastError != PropagationError::PerturbedEccentricity)
        return {};
    const double lastGood = LastGood(good.point.time, bad);
    if (const std::optional<Node> last = NodeAt(lastGood); last && lastGood > good.point.time)
        Walk(good.point, last->point, 0);
    const double step = good.pieceLength / 4;
    double time = bad;
    std::optional<Node> again;
    while (!again) {
        time += step;
        if (time > m_seconds + secondsPerDay)
            return {};
        again = NodeAt(time);
        if (!again && m_lastError != PropagationError::PerturbedEccentricity)
            return {};
    }
    again = NodeAt(LastGood(time, time - step));
    if (again && (again->point.position.z > 0) != m_above) {
        if (m_above)
            Set(again->point, true);
        else
            Rise(again->point);
    }
    return again;
}

/// The time nearest to `bad`, to a second, at which the elements hold; they do at `good`.
double Search::LastGood(double good, double bad) {
    while (std::abs(bad - good) > 1) {
        const double middle = 0.5 * (good + bad);
        (NodeAt(middle) ? good : bad) = middle;
    }
    return good;
}

void Search::Walk(const PathPoint& a, const PathPoint& b, int depth) {
    constexpr double goodEnough = 1.5; // km
    constexpr int deepest = 10;
    const PathPiece piece(a, b);
    if (!m_above && piece.Highest() < -piece.Error())
        return;
    if (piece.Error() > goodEnough && depth < deepest) {
        if (const std::optional<Node> middle = NodeAt(0.5 * (a.time + b.time))) {
            Walk(a, middle->point, depth + 1);
            Walk(middle->point, b, depth + 1);
            return;
        }
    }
    if (m_above && piece.Lowest() > piece.Error()) {
        ScanElevation(piece, a.time, b.time);
        return;
    }
    FindCrossings(piece, a, b);
}

/// Goes from extremum to extremum of the height; where its sign changes between two, the horizon is crossed.
void Search::FindCrossings(const PathPiece& piece, const PathPoint& a, const PathPoint& b) {
    const PathPiece::Extrema extrema = piece.HeightExtrema();
    double from = a.time;
    for (std::size_t k = 0; k <= extrema.count; ++k) {
        const bool last = k == extrema.count;
        double to = last ? b.time : extrema.times.at(k);
        double height = last ? b.position.z : piece.HeightAt(to);
        if (!last && std::abs(height) < piece.Error()) {
            const double low = from;
            const double high = k + 1 < extrema.count ? extrema.times.at(k + 1) : b.time;
            to = TrueExtremum(to, low, high);
            const std::optional<Node> node = NodeAt(to);
            if (node)
                height = node->point.position.z;
        }
        const bool above = height > 0;
        if (above != m_above)
            Cross(piece, from, to, above);
        else if (m_above)
            ScanElevation(piece, from, to);
        from = to;
    }
}

/// The time of the true extremum of the height near `time`, between `from` and `to`.
double Search::TrueExtremum(double time, double from, double to) {
    for (int k = 0; k < 8; ++k) {
        const std::optional<Node> node = NodeAt(time);
        if (!node || node->point.acceleration.z == 0)
            break;
        const double step = -node->point.velocity.z / node->point.acceleration.z;
        time = std::clamp(time + step, from, to);
        if (std::abs(step) < 0.01)
            break;
    }
    return time;
}

/// The crossing of the horizon between two times at which the true heights differ in sign: Newton's steps on
/// the true path from the piece's own crossing, kept between the two.
void Search::Cross(const PathPiece& piece, double from, double to, bool rising) {
    double low = from;
    double high = to;
    for (int k = 0; k < 30; ++k) {
        const double middle = 0.5 * (low + high);
        ((piece.HeightAt(middle) > 0) == rising ? high : low) = middle;
    }
    double time = 0.5 * (low + high);
    low = from;
    high = to;
    PathPoint crossing = piece.At(time);
    for (int k = 0; k < 60; ++k) {
        const std::optional<Node> node = NodeAt(time);
        if (!node)
            break;
        crossing = node->point;
        const double height = crossing.position.z;
        ((height > 0) == rising ? high : low) = time;
        const double step = -height / crossing.velocity.z;
        const bool inside = time + step >= low && time + step <= high;
        const double next = inside ? time + step : 0.5 * (low + high);
        // What Newton's step leaves over, and what a halved bracket does.
        const double left =
            inside ? std::abs(0.5 * crossing.acceleration.z / crossing.velocity.z * step * step) : high - low;
        const double beyond = next - time;
        time = next;
        if (left < 1e-6) {
            crossing.position = crossing.position + beyond * crossing.velocity;
            break;
        }
    }
    crossing.time = time;
    if (rising) {
        Rise(crossing);
        ScanElevation(piece, time, to);
    } else {
        ScanElevation(piece, from, time);
        Set(crossing, true);
    }
}

/// Looks for the highest point of the pass under way on a piece that lies above the horizon.
void Search::ScanElevation(const PathPiece& piece, double from, double to) {
    if (!m_open || !(to > from))
        return;
    constexpr int parts = 8;
    double before = from;
    bool growing = SlopeOf(piece.At(from)).first > 0;
    for (int k = 1; k <= parts; ++k) {
        const double time = from + (to - from) * k / parts;
        const bool growsHere = SlopeOf(piece.At(time)).first > 0;
        if (growing && !growsHere) {
            double low = before;
            double high = time;
            for (int halvings = 0; halvings < 12; ++halvings) {
                const double middle = 0.5 * (low + high);
                (SlopeOf(piece.At(middle)).first > 0 ? low : high) = middle;
            }
            const double candidate = 0.5 * (low + high);
            constexpr double undecided = 0.01;
            if (SlopeOf(piece.At(candidate)).sine > m_open->bestSine - undecided)
                TryHighest(candidate, from, to);
        }
        growing = growsHere;
        before = time;
    }
}

/// Follows the true path from a candidate to the true highest point near by.
void Search::TryHighest(double time, double from, double to) {
    constexpr double slack = 1; // s: the true point may lie just beyond the piece
    for (int k = 0; k < 12; ++k) {
        const std::optional<Node> node = NodeAt(time);
        if (!node)
            return;
        const PathPoint& point = node->point;
        const ElevationSlope slope = SlopeOf(point);
        double step = slope.second < 0 ? -slope.first / slope.second : 0;
        step = std::clamp(time + step, from - slack, to + slack) - time;
        if (std::abs(step) > 0.005 && k < 11) {
            time += step;
            continue;
        }
        const double sine = slope.sine + step * (slope.first + 0.5 * step * slope.second);
        if (sine > m_open->bestSine) {
            m_open->bestSine = sine;
            m_open->highest = time + step;
            m_open->top = point.position + step * (point.velocity + 0.5 * step * point.acceleration);
        }
        return;
    }
}

void Search::Rise(const PathPoint& point) {
    m_above = true;
    if (point.time >= m_seconds || m_result.passes.size() >= m_most)
        return;
    m_open = Open{point.time, AzimuthOf(point.position), point.time, -1, point.position};
}

void Search::Set(const PathPoint& point, bool sets) {
    m_above = false;
    if (!m_open)
        return;
    // A pass too short for its highest point to be seen on the piece has it in its middle.
    if (m_open->bestSine < 0)
        TryHighest(0.5 * (m_open->rise + point.time), m_open->rise, point.time);
    Pass pass;
    pass.riseUtc = Utc(m_open->rise);
    pass.setUtc = Utc(point.time);
    pass.highestUtc = Utc(std::clamp(m_open->highest, m_open->rise, point.time));
    pass.riseAzimuth = m_open->riseAzimuth;
    pass.setAzimuth = AzimuthOf(point.position);
    pass.maxElevation = std::max(0.0, ElevationOf(m_open->top));
    pass.sets = sets;
    m_result.passes.push_back(pass);
    m_open.reset();
}

} // namespace

PassList FindPasses(const Propagator& propagator, const Observer& observer, double startUtc, double days,
                    std::size_t most) {
    PassList nothing;
    if (!std::isfinite(startUtc) || !std::isfinite(days)) {
        nothing.error = PropagationError::OutOfRange;
        return nothing;
    }
    constexpr double longestSearch = 366;
    const double seconds = std::clamp(days, 0.0, longestSearch) * secondsPerDay;
    return Search(propagator, observer, startUtc, seconds, most).Run();
}

} // namespace orbitmath
