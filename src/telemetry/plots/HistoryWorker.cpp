#include "telemetry/plots/HistoryWorker.h"

#include "foundation/settings/ReplaceFile.h"
#include "telemetry/plots/PlotPoints.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

HistoryWorker::HistoryWorker(std::unique_ptr<TelemetryHistory> history, QObject* parent)
    : QObject(parent)
    , m_history(std::move(history)) {
    m_thread.setObjectName(QStringLiteral("history"));
    m_there.moveToThread(&m_thread);
    m_thread.start();
}

HistoryWorker::~HistoryWorker() {
    m_isEnding = true;
    m_thread.quit();
    m_thread.wait();
}

void HistoryWorker::Ask(std::function<void()> question) {
    QMetaObject::invokeMethod(
        &m_there,
        [this, question = std::move(question)] {
            if (!m_isEnding)
                question();
        },
        Qt::QueuedConnection);
}

void HistoryWorker::Open() {
    Ask([this] { OpenNow(); });
}

void HistoryWorker::OpenNow() {
    int percent = -1;
    (void)m_history->Open([&](qint64 done, qint64 total) {
        const int now = static_cast<int>(100 * done / std::max<qint64>(total, 1));
        if (std::exchange(percent, now) != now)
            Q_EMIT Opening(now);
        return !m_isEnding;
    });
    TellChanged();
}

void HistoryWorker::Follow() {
    Ask([this] {
        const TelemetryHistory::Followed followed = m_history->Follow();
        if (followed == TelemetryHistory::Followed::Replaced)
            OpenNow();
        else if (followed == TelemetryHistory::Followed::Appended)
            TellChanged();
    });
}

void HistoryWorker::TellChanged() {
    HistoryState state{.frames = m_history->Frames(), .reason = m_history->Reason()};
    if (const auto span = m_history->Span()) {
        state.first = span->first;
        state.last = span->second;
        state.lastPassFrom = m_history->LastRun(PlotPoints::longestLine);
    }
    Q_EMIT Changed(state);
}

void HistoryWorker::Decode(FormulaTable formulae, HistorySides sides) {
    Ask([this, formulae = std::move(formulae), sides = std::move(sides)] {
        m_history->Decode(formulae, sides);
        TellChanged();
    });
}

void HistoryWorker::Load(std::vector<HistoryChannel> channels, int request) {
    Ask([this, channels = std::move(channels), request] {
        Q_EMIT Loaded(std::make_shared<const std::vector<HistoryColumns>>(m_history->Readings(
                          channels, std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max())),
                      request);
    });
}

void HistoryWorker::Show(std::vector<HistoryChannel> channels, qint64 utc, int request) {
    Ask([this, channels = std::move(channels), utc, request] {
        Q_EMIT Shown(m_history->Shown(channels, utc), request);
    });
}

void HistoryWorker::TellSequence(quint32 frame, int request) {
    Ask([this, frame, request] {
        const std::array frames{frame};
        if (frame < m_history->Frames())
            Q_EMIT Sequence(QString::fromUtf8(m_history->Sequences(frames).front()), request);
    });
}

void HistoryWorker::Export(const QString& path, MakeFile make) {
    Ask([this, path, make = std::move(make)] {
        const QByteArray bytes = make([this](int percent) {
            Q_EMIT Exporting(percent);
            return !m_isEnding;
        });
        if (!m_isEnding)
            Q_EMIT Exported(path, ReplaceFile(path, bytes));
    });
}
