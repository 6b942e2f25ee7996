#include "cli/commands/ElementKeeper.h"

#include "cli/commands/FetchWords.h"
#include "cli/output/Console.h"
#include "cli/table/Session.h"
#include "core/GroundStation.h"
#include "foundation/settings/Settings.h"
#include "foundation/text/Clock.h"

#include <algorithm>
#include <limits>

namespace {

constexpr int hour = 3600 * 1000; // milliseconds
constexpr qint64 day = 24LL * hour;

} // namespace

ElementKeeper::ElementKeeper(const Session& session, GroundStation& station, int days)
    : m_session(session)
    , m_station(station)
    , m_days(days)
    , m_fetch(m_inet, session.folder, session.clock)
    , m_timLook(this) {
    m_timLook.setObjectName(QStringLiteral("timLook"));
    m_timLook.setInterval(hour);
    connect(&m_timLook, &QTimer::timeout, this, &ElementKeeper::Look);
    connect(&m_fetch, &KepsFetch::Finished, this, &ElementKeeper::Finished);
    m_timLook.start();
    Look();
}

void ElementKeeper::Look() {
    const qint64 now = m_session.clock.Milliseconds();
    if (now < m_notBefore || !AreOld())
        return;
    m_notBefore = now + day;
    const std::array addresses{Settings::Peek(m_station.cIni, Settings::kepsFile1),
                               Settings::Peek(m_station.cIni, Settings::kepsFile2)};
    if (!m_fetch.Start(addresses, false))
        m_notBefore = 0; // another one is fetching
}

void ElementKeeper::Finished(const QList<KepsFetchResult>& results) {
    for (const KepsFetchResult& result : results)
        m_session.console.Say(FetchWords(result));
    if (std::ranges::any_of(results,
                            [](const auto& r) { return r.outcome == KepsFetchResult::Outcome::Failed; }))
        m_notBefore = m_session.clock.Milliseconds(); // at the next look
}

bool ElementKeeper::AreOld() const {
    double newest = -std::numeric_limits<double>::infinity();
    m_station.cSats.ForEachElementSet(
        [&](const ElementSource& source) { newest = std::max(newest, source.epochUtc); });
    return m_station.cSats.datGmtTime() - newest > m_days;
}
