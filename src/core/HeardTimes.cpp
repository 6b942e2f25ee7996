#include "core/HeardTimes.h"

#include "core/GroundStation.h"
#include "telemetry/history/TelemetryHistory.h"

#include <algorithm>

HeardTimes::HeardTimes(GroundStation& station, QObject* parent)
    : QObject(parent)
    , m_station(station) {
    m_station.decoder.Decoded().Add([this](const TelemetryFrame& frame) {
        m_live.push_back(frame.utc);
        if (m_live.size() > mostLive)
            m_live.pop_front();
    });
}

HeardTimes::~HeardTimes() {
    m_isEnding = true;
    if (m_thread)
        m_thread->wait();
}

void HeardTimes::Load() {
    if (m_thread)
        return;
    const auto read = [this, path = m_station.folder.File(QStringLiteral("tlm.txt")),
                       map = m_station.channelMap] {
        TelemetryHistory history(path, map, {}, {});
        history.Open([this](qint64, qint64) { return !m_isEnding; });
        std::vector<qint64> times;
        times.reserve(history.Frames());
        for (quint32 frame = 0; frame < history.Frames(); ++frame)
            times.push_back(history.Frame(frame).utc);
        std::ranges::sort(times);
        QMetaObject::invokeMethod(
            this, [this, times = std::move(times)]() mutable { Take(std::move(times)); },
            Qt::QueuedConnection);
    };
    m_thread.reset(QThread::create(read));
    m_thread->start();
}

// A live frame is in the file within a second, unless nothing is kept: what is later than the file's last
// frame is not in it.
void HeardTimes::Take(std::vector<qint64> kept) {
    m_thread->wait();
    m_thread.reset();
    m_kept = std::move(kept);
    if (!m_kept.empty())
        std::erase_if(m_live, [last = m_kept.back()](qint64 utc) { return utc <= last; });
    Q_EMIT Loaded();
}

std::vector<qint64> HeardTimes::Between(qint64 from, qint64 to) const {
    std::vector<qint64> times(std::ranges::lower_bound(m_kept, from), std::ranges::upper_bound(m_kept, to));
    for (const qint64 utc : m_live)
        if (utc >= from && utc <= to)
            times.push_back(utc);
    std::ranges::sort(times);
    return times;
}
