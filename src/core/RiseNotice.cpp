#include "core/RiseNotice.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr std::size_t mostRemembered = 64;

// No satellite rises again so soon.
constexpr double samePass = 15 / minutesPerDay;

} // namespace

bool RiseNotice::IsNear(DateTime riseUtc, double maxElevation, DateTime now) const {
    return now < riseUtc && now >= riseUtc - m_wish.minutes / minutesPerDay &&
           maxElevation >= m_wish.minElevation;
}

bool RiseNotice::TellOnce(const QString& object, DateTime riseUtc) {
    const bool isTold = std::ranges::any_of(m_told, [&](const Told& told) {
        return told.object == object && std::abs(told.riseUtc - riseUtc) < samePass;
    });
    if (isTold)
        return false;
    if (m_told.size() == mostRemembered)
        m_told.pop_front();
    m_told.push_back({object, riseUtc});
    return true;
}
