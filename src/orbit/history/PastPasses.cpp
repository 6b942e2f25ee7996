#include "orbit/history/PastPasses.h"

#include "foundation/text/UtcTime.h"
#include "orbit/passes/PassSearch.h"

#include <limits>

namespace {

constexpr qint64 minute = 60'000;
constexpr qint64 longestPass = 144 * minute; // of a satellite that circles low
constexpr double millisecondsPerDay = 1000 * secondsPerDay;

// All that rise in a stretch, or so little before it that they may be under way at its begin.
std::vector<orbitmath::Pass> PassesOf(const ElementsHistory::Stretch& stretch,
                                      const orbitmath::Observer& station) {
    const auto elements = ElementsHistory::ElementsIn(*stretch.set);
    if (!elements)
        return {};
    const qint64 begin = stretch.from - longestPass;
    const double days = static_cast<double>(stretch.to - begin) / millisecondsPerDay;
    return orbitmath::FindPasses(orbitmath::Propagator(*elements), station, UtcTime::ToDateTime(begin), days,
                                 std::numeric_limits<std::size_t>::max())
        .passes;
}

} // namespace

// A pass is of the elements that are the nearest at its top. Two sets differ by seconds: next to the place
// where one takes over from the other, a pass that the one has found is not found again.
std::vector<PastPasses::Span> PastPasses::Between(const QString& object, double latitude, double longitude,
                                                  qint64 from, qint64 to, std::size_t most) {
    const orbitmath::Observer station(latitude, longitude);
    std::vector<Span> passes;
    for (const auto& stretch : m_elements.Stretches(object, from - longestPass, to + longestPass))
        for (const orbitmath::Pass& pass : PassesOf(stretch, station)) {
            const qint64 rise = UtcTime::FromDateTime(pass.riseUtc);
            const qint64 top = UtcTime::FromDateTime(pass.highestUtc);
            const qint64 set = UtcTime::FromDateTime(pass.setUtc);
            const bool isOurs = top >= stretch.from - minute && top < stretch.to;
            const bool isNew = passes.empty() || rise > passes.back().second;
            if (isOurs && isNew && set > from && rise < to && passes.size() < most)
                passes.emplace_back(rise, set);
        }
    return passes;
}
