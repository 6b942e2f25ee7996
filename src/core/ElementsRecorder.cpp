#include "core/ElementsRecorder.h"

#include "foundation/text/Clock.h"
#include "foundation/text/UtcTime.h"
#include "orbit/service/TrackedSatellites.h"
#include "orbit/service/clsSats.h"

namespace {

constexpr int afterTheStart = 2000; // milliseconds

} // namespace

ElementsRecorder::ElementsRecorder(const QString& path, const clsSats& cSats,
                                   const TrackedSatellites& satellites, const Clock& clock,
                                   AppendFile::Failed failed)
    : m_cSats(cSats)
    , m_satellites(satellites)
    , m_clock(clock)
    , m_history(path, std::move(failed))
    , m_timKeep(this) {
    m_timKeep.setObjectName(QStringLiteral("timKeepElements"));
    m_timKeep.setSingleShot(true);
    m_timKeep.setInterval(afterTheStart);
    connect(&m_timKeep, &QTimer::timeout, this, &ElementsRecorder::Keep);
}

void ElementsRecorder::Keep() {
    if (!m_isKept)
        return;
    for (const std::size_t index : {0U, 1U})
        KeepElementsOf(m_satellites.At(index).strObjNum);
}

void ElementsRecorder::KeepElementsOf(const QString& object) {
    const std::optional<ElementSource> source = m_cSats.ElementsOf(object);
    if (!source)
        return;
    if (!std::exchange(m_isLoaded, true))
        m_history.Load();
    const qint64 epoch = UtcTime::FromDateTime(source->epochUtc);
    if (m_history.Holds(source->number, epoch))
        return; // without a look at its file
    m_history.Keep({.firstSeen = m_clock.Milliseconds(),
                    .number = source->number,
                    .epoch = epoch,
                    .elements = m_cSats.ElementTextOf(object)});
}
