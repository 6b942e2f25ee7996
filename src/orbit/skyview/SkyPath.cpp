#include "orbit/skyview/SkyPath.h"

#include <algorithm>
#include <cmath>

namespace {

// Minutes from tick to tick.
constexpr int tickSteps[] = {1, 2, 5, 10, 15, 30, 60, 120, 180};

std::optional<SkyPoint> PointAt(const clsSats& cSats, const QString& object, DateTime utc) {
    const std::optional<SatPosition> position = cSats.PositionAt(object, utc);
    return position ? std::optional(SkyPoint{utc, position->dblAz, position->dblEl}) : std::nullopt;
}

int TickStep(double minutes) {
    const auto* const found =
        std::ranges::find_if(tickSteps, [&](int step) { return minutes / step <= SkyPath::mostTicks; });
    return found != std::end(tickSteps) ? *found : tickSteps[std::size(tickSteps) - 1];
}

SkyPath Between(const clsSats& cSats, const QString& object, DateTime from, DateTime to) {
    SkyPath path;
    for (int k = 0; k < SkyPath::mostPoints; ++k)
        if (const auto point = PointAt(cSats, object, from + (to - from) * k / (SkyPath::mostPoints - 1)))
            path.points.push_back(*point);
    const double step = TickStep((to - from) * minutesPerDay) / minutesPerDay;
    // Counted from midnight, so that ticks of more than a minute stand on round times.
    const double day = std::floor(from);
    for (double k = std::ceil((from - day) / step); day + k * step <= to; ++k)
        if (const auto point = PointAt(cSats, object, day + k * step))
            path.ticks.push_back(*point);
    return path;
}

// The time between two others at which a condition changes.
template <class Condition>
DateTime Change(DateTime from, DateTime to, const Condition& holds) {
    constexpr double enough = 0.1 / secondsPerDay;
    const bool before = holds(from);
    while (to - from > enough) {
        const DateTime middle = 0.5 * (from + to);
        (holds(middle) == before ? from : to) = middle;
    }
    return 0.5 * (from + to);
}

} // namespace

SkyPath SkyPath::OfPass(const clsSats& cSats, const QString& object, const SatPass& pass) {
    const DateTime end = std::min(pass.setUtc, pass.riseUtc + longest);
    SkyPath path = Between(cSats, object, pass.riseUtc, end);
    path.rise = PointAt(cSats, object, pass.riseUtc);
    path.culmination = PointAt(cSats, object, pass.culminationUtc);
    if (pass.sets)
        path.set = PointAt(cSats, object, pass.setUtc);
    return path;
}

SkyPath SkyPath::OfDay(const clsSats& cSats, const QString& object, DateTime utc) {
    SkyPath path = Between(cSats, object, utc, utc + longest);
    path.ticks.clear();
    return path;
}

std::vector<SkySpan> SkyPath::VisibleOver(const orbitmath::Horizon& horizon, const clsSats& cSats,
                                          const QString& object) const {
    const auto isClear = [&](const SkyPoint& point) {
        return point.elevation > horizon.ElevationAt(point.azimuth);
    };
    const auto isClearAt = [&](DateTime utc) {
        const auto point = PointAt(cSats, object, utc);
        return point && isClear(*point);
    };
    // The ends of a pass lie on the flat horizon, where the last digits decide.
    const auto isClearOf = [&](const SkyPoint& point) {
        const bool isEnd = &point == &points.front() || &point == &points.back();
        return isClear(isEnd ? SkyPoint{point.utc, point.azimuth, std::max(point.elevation, 0.0) + 1e-6}
                             : point);
    };
    std::vector<SkySpan> spans;
    for (std::size_t k = 0; k < points.size(); ++k) {
        const bool isNow = isClearOf(points[k]);
        const bool wasBefore = k > 0 && isClearOf(points[k - 1]);
        if (isNow && !wasBefore)
            spans.push_back({k > 0 ? Change(points[k - 1].utc, points[k].utc, isClearAt) : points[k].utc, 0});
        if (!isNow && wasBefore)
            spans.back().to = Change(points[k - 1].utc, points[k].utc, isClearAt);
        if (isNow && k + 1 == points.size())
            spans.back().to = points[k].utc;
    }
    return spans;
}
