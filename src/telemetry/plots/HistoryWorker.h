#pragma once

#include "telemetry/history/TelemetryHistory.h"

#include <QObject>
#include <QThread>

#include <atomic>
#include <functional>
#include <memory>

/// What a history holds. Times are milliseconds since 1970-01-01 00:00 UTC.
struct HistoryState {
    quint32 frames = 0;
    qint64 first = 0;        ///< of its frames; times mean nothing where there are none
    qint64 last = 0;         ///< likewise
    qint64 lastPassFrom = 0; ///< since when there has been no gap of more than ten minutes before the last
    QString reason;          ///< not empty: the file cannot be read
};

/// A history on a thread of its own, so that a window stays alive while it is opened and asked. What is asked
/// is answered in its order; answers are signals on the caller's thread. Numbers of requests let the asker
/// pass over what came too late.
class HistoryWorker : public QObject {
    Q_OBJECT
public:
    using Columns = std::shared_ptr<const std::vector<HistoryColumns>>;
    using Values = std::vector<std::optional<TelemetryHistory::Value>>;

    /// Makes the bytes of a file, and tells how far it is; when that answers false, it ends.
    using MakeFile = std::function<QByteArray(const std::function<bool(int percent)>& progress)>;

    explicit HistoryWorker(std::unique_ptr<TelemetryHistory> history, QObject* parent = nullptr);
    ~HistoryWorker() override; ///< ends an opening, and a file that is being made

    void Open();

    /// Reads what was appended; a file that was replaced is opened anew.
    void Follow();

    /// Decodes with these from now on.
    void Decode(FormulaTable formulae, HistorySides sides);

    /// All readings of these channels.
    void Load(std::vector<HistoryChannel> channels, int request);

    /// What the grids showed at a time.
    void Show(std::vector<HistoryChannel> channels, qint64 utc, int request);

    /// A frame's sequence field.
    void TellSequence(quint32 frame, int request);

    /// Makes a file, and writes it whole or not at all.
    void Export(const QString& path, MakeFile make);

Q_SIGNALS:
    void Opening(int percent);

    /// The history is open, or has changed since.
    void Changed(const HistoryState& state);

    void Loaded(const HistoryWorker::Columns& columns, int request);
    void Shown(const HistoryWorker::Values& values, int request);
    void Sequence(const QString& sequence, int request);
    void Exporting(int percent);

    /// `reason` is empty when the file has been written.
    void Exported(const QString& path, const QString& reason);

private:
    void Ask(std::function<void()> question);
    void OpenNow();
    void TellChanged();

    std::unique_ptr<TelemetryHistory> m_history; // the thread's
    std::atomic<bool> m_isEnding = false;
    QThread m_thread;
    QObject m_there; // lives in the thread
};
