#include "orbit/passes/PassSearch.h"

#include "orbit/passes/PathPiece.h"
#include "orbit/passes/StationPath.h"

#include <algorithm>
#include <optional>

namespace orbitmath {

namespace {

class Search {
public:
    Search(const Propagator& propagator, const Observer& observer, double startUtc, double seconds,
           std::size_t most)
        : m_path(propagator, observer, startUtc)
        , m_seconds(seconds)
        , m_most(most) {}

    PassList Run();

private:
    using Node = StationPath::Node;

    /// A pass under way.
    struct Open {
        double rise = 0;
        double riseAzimuth = 0;
        double highest = 0; ///< time
        double bestSine = -1;
        Vector3 top; ///< the place at `highest`
    };

    void WalkFrom(Node a);
    std::optional<Node> Bridge(const Node& good, double bad);
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

    StationPath m_path;
    const double m_seconds;
    const std::size_t m_most;

    PassList m_result;
    bool m_above = false;       ///< the horizon, at the place the search has come to
    std::optional<Open> m_open; ///< the pass under way, when it began after the start
};

PassList Search::Run() {
    const std::optional<Node> a = m_path.At(0);
    if (!a)
        m_result.error = m_path.LastError();
    else
        WalkFrom(*a);
    m_result.propagations = m_path.Propagations();
    return m_result;
}

void Search::WalkFrom(Node a) {
    m_above = a.point.position.z > 0;
    const double end = m_seconds + longestPassDays * secondsPerDay;
    while (!Done(a.point.time)) {
        const double time = a.point.time;
        if (time >= end) {
            Set(a.point, false);
            break;
        }
        double next = time + a.pieceLength;
        if (!m_open && next > m_seconds)
            next = m_seconds;
        std::optional<Node> b = m_path.At(next);
        const std::optional<double> inside = b ? m_path.InsideEarth(a, *b) : std::nullopt;
        if (b && !inside)
            Walk(a.point, b->point, 0);
        else
            b = Bridge(a, inside.value_or(next));
        if (!b)
            break;
        a = *b;
    }
}

/// Where the elements fail at `bad`: goes on to the last time before at which they hold, and, where sun and
/// moon are the cause, to the first time after at which they hold again. Nothing when they do not.
std::optional<StationPath::Node> Search::Bridge(const Node& good, double bad) {
    const bool mayHoldAgain = m_path.LastError() == PropagationError::PerturbedEccentricity;
    const double lastGood = m_path.LastGood(good.point.time, bad);
    if (const std::optional<Node> last = m_path.At(lastGood); last && lastGood > good.point.time)
        Walk(good.point, last->point, 0);
    if (!mayHoldAgain)
        return {};
    const double step = good.pieceLength / 4;
    double time = bad;
    std::optional<Node> again;
    while (!again) {
        time += step;
        if (time > m_seconds + secondsPerDay)
            return {};
        again = m_path.At(time);
        if (!again && m_path.LastError() != PropagationError::PerturbedEccentricity)
            return {};
    }
    again = m_path.At(m_path.LastGood(time, time - step));
    if (again && (again->point.position.z > 0) != m_above) {
        if (m_above)
            Set(again->point, true);
        else
            Rise(again->point);
    }
    return again;
}

void Search::Walk(const PathPoint& a, const PathPoint& b, int depth) {
    constexpr double goodEnough = 1.5; // km
    constexpr int deepest = 10;
    const PathPiece piece(a, b);
    if (!m_above && piece.Highest() < -piece.Error())
        return;
    if (piece.Error() > goodEnough && depth < deepest) {
        if (const std::optional<Node> middle = m_path.At(0.5 * (a.time + b.time))) {
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
            const std::optional<Node> node = m_path.At(to);
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
    constexpr int mostSteps = 8;
    constexpr double closeEnough = 0.01; // s
    for (int k = 0; k < mostSteps; ++k) {
        const std::optional<Node> node = m_path.At(time);
        if (!node || node->point.acceleration.z == 0)
            break;
        const double step = -node->point.velocity.z / node->point.acceleration.z;
        time = std::clamp(time + step, from, to);
        if (std::abs(step) < closeEnough)
            break;
    }
    return time;
}

/// The crossing of the horizon between two times at which the true heights differ in sign: Newton's steps on
/// the true path from the piece's own crossing, kept between the two.
void Search::Cross(const PathPiece& piece, double from, double to, bool rising) {
    constexpr int halvingsOfPiece = 16;
    constexpr double velocityError = 0.003; // km/s
    constexpr double closeEnough = 1e-6;    // s
    constexpr int mostSteps = 60;           // of which half a dozen are the rule
    double low = from;
    double high = to;
    const HeightCurve height(piece);
    for (int k = 0; k < halvingsOfPiece; ++k) {
        const double middle = 0.5 * (low + high);
        ((height.At(middle) > 0) == rising ? high : low) = middle;
    }
    double time = 0.5 * (low + high);
    low = from;
    high = to;
    PathPoint crossing;
    crossing.position = piece.At(time);
    for (int k = 0; k < mostSteps; ++k) {
        const std::optional<Node> node = m_path.At(time);
        if (!node)
            break;
        crossing = node->point;
        const double trueHeight = crossing.position.z;
        ((trueHeight > 0) == rising ? high : low) = time;
        const double step = -trueHeight / crossing.velocity.z;
        const bool inside = time + step >= low && time + step <= high;
        const double next = inside ? time + step : 0.5 * (low + high);
        // What Newton's step leaves over, for the path bends and its velocity is not quite the change of its
        // place, and what a halved bracket does.
        const double bend = 0.5 * std::abs(crossing.acceleration.z * step);
        const double left =
            inside ? std::abs((bend + velocityError) / crossing.velocity.z * step) : high - low;
        const double beyond = next - time;
        time = next;
        if (left < closeEnough) {
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
    constexpr int halvings = 6; // of the part with the top
    double before = from;
    const ElevationTrend trend(piece);
    bool growing = trend.IsUpAt(from);
    for (int k = 1; k <= parts; ++k) {
        const double time = from + (to - from) * k / parts;
        const bool growsHere = trend.IsUpAt(time);
        if (growing && !growsHere) {
            double low = before;
            double high = time;
            for (int halving = 0; halving < halvings; ++halving) {
                const double middle = 0.5 * (low + high);
                (trend.IsUpAt(middle) ? low : high) = middle;
            }
            const double candidate = 0.5 * (low + high);
            constexpr double undecided = 0.01;
            const Vector3 place = piece.At(candidate);
            if (place.z / Length(place) > m_open->bestSine - undecided)
                TryHighest(candidate, from, to);
        }
        growing = growsHere;
        before = time;
    }
}

/// Follows the true path from a candidate to the true highest point near by.
void Search::TryHighest(double time, double from, double to) {
    constexpr double slack = 1; // s: the true point may lie just beyond the piece
    constexpr int mostSteps = 12;
    constexpr double closeEnough = 0.005; // s
    for (int k = 1; k <= mostSteps; ++k) {
        const std::optional<Node> node = m_path.At(time);
        if (!node)
            return;
        const PathPoint& point = node->point;
        const ElevationSlope slope = SlopeOf(point);
        double step = slope.second < 0 ? -slope.first / slope.second : 0;
        step = std::clamp(time + step, from - slack, to + slack) - time;
        if (std::abs(step) > closeEnough && k < mostSteps) {
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
    pass.riseUtc = m_path.Utc(m_open->rise);
    pass.setUtc = m_path.Utc(point.time);
    pass.highestUtc = m_path.Utc(std::clamp(m_open->highest, m_open->rise, point.time));
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
    if (!std::isfinite(days)) {
        nothing.error = PropagationError::OutOfRange;
        return nothing;
    }
    const double seconds = std::clamp(days, 0.0, longestSearchDays) * secondsPerDay;
    return Search(propagator, observer, startUtc, seconds, most).Run();
}

} // namespace orbitmath
