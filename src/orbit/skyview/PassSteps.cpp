#include "orbit/skyview/PassSteps.h"

#include <utility>

namespace {

constexpr double second = 1 / secondsPerDay;
constexpr double tolerance = 2 * second;
constexpr std::size_t mostInSearch = 4000;

// Most satellites have a neighbour within the first of these days, hardly any needs the last.
constexpr double spans[] = {1.5, 16, PassSteps::farthest};

} // namespace

PassSteps::PassSteps(const clsSats& cSats, QString object, Place place)
    : m_cSats(cSats)
    , m_object(std::move(object))
    , m_place(place) {}

std::vector<SatPass> PassSteps::Search(DateTime from, double days, std::size_t most) const {
    return m_cSats
        .PassesOf({.object = m_object.toStdString(),
                   .latitude = m_place.latitude,
                   .longitude = m_place.longitude,
                   .startUtc = from,
                   .days = days,
                   .most = most})
        .passes;
}

// A search finds what begins in its time; what is under way began before.
std::optional<SatPass> PassSteps::UnderWay(DateTime utc) const {
    for (const double span : spans)
        for (const SatPass& pass : Search(utc - span, span + second, mostInSearch))
            if (pass.riseUtc <= utc && utc < pass.setUtc)
                return pass;
    return std::nullopt;
}

std::optional<SatPass> PassSteps::PresentOrNext(DateTime utc) const {
    const std::optional<SatPosition> now = m_cSats.PositionAt(m_object, utc);
    if (now && now->blnvisible)
        return UnderWay(utc);
    const std::vector<SatPass> next = Search(utc, farthest, 1);
    return next.empty() ? std::nullopt : std::optional(next.front());
}

std::optional<SatPass> PassSteps::Earlier(const SatPass& pass) const {
    for (const double span : spans) {
        std::optional<SatPass> last;
        for (const SatPass& earlier : Search(pass.riseUtc - span, span, mostInSearch))
            if (earlier.riseUtc < pass.riseUtc - tolerance)
                last = earlier;
        if (last)
            return last;
    }
    return std::nullopt;
}

std::optional<SatPass> PassSteps::Later(const SatPass& pass) const {
    const std::vector<SatPass> next = Search(pass.riseUtc + tolerance, farthest, 1);
    return next.empty() ? std::nullopt : std::optional(next.front());
}

std::optional<SatPass> PassSteps::RisingAt(DateTime utc) const {
    const std::vector<SatPass> found = Search(utc - tolerance, 2 * tolerance, 1);
    return found.empty() ? std::nullopt : std::optional(found.front());
}
