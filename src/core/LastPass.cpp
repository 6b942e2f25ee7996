#include "core/LastPass.h"

#include "core/GroundStation.h"
#include "foundation/text/UtcTime.h"

#include <utility>

namespace {

constexpr qint64 hour = qint64{60} * 60 * 1000;
constexpr qint64 searched = 48 * hour;
constexpr qint64 withoutPass = 12 * hour;
constexpr std::size_t most = 200;

} // namespace

LastPass::LastPass(const GroundStation& station)
    : m_station(station)
    , m_history(station.folder.File(QStringLiteral("elements-history.txt")), {})
    , m_elements(m_history, station.cSats)
    , m_passes(m_elements) {}

qint64 LastPass::Start() {
    const qint64 now = UtcTime::FromDateTime(m_station.cSats.datGmtTime());
    if (!m_station.station.PositionKnown())
        return now - withoutPass;
    if (!std::exchange(m_isLoaded, true))
        m_history.Load();
    const auto passes = m_passes.Between(m_station.satellites.At(0).strObjNum, m_station.station.dblLat(),
                                         m_station.station.dblLong(), now - searched, now, most);
    return passes.empty() ? now - withoutPass : passes.back().first;
}
