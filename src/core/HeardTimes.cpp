#include "core/HeardTimes.h"

#include "core/GroundStation.h"
#include "telemetry/history/TelemetryHistory.h"

#include <algorithm>

namespace {

constexpr std::size_t mostLive = 1'000'000; // frames of one run; more than a year's

} // namespace

HeardTimes::HeardTimes(GroundStation& station, QObject* parent)
    : QObject(parent)
    , m_station(station) {
    m_station.decoder.Decoded().Add([this](const TelemetryFrame& frame) {
        if (m_live.size() < mostLive)
            m_live.push_back(frame.utc);
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

void HeardTimes::Take(std::vector<qint64> kept) {
    m_thread->wait();
    m_thread.reset();
    m_kept = std::move(kept);
    Q_EMIT Loaded();
}

// A live frame is in the file within a second, unless nothing is kept: what is later than the file's last
// frame is not in it.
std::vector<qint64> HeardTimes::Between(qint64 from, qint64 to) const {
    std::vector<qint64> times(std::ranges::lower_bound(m_kept, from), std::ranges::upper_bound(m_kept, to));
    for (const qint64 utc : m_live)
        if (utc >= from && utc <= to && (m_kept.empty() || utc > m_kept.back()))
            times.push_back(utc);
    std::ranges::sort(times);
    return times;
}
