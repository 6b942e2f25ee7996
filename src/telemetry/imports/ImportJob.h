#pragma once

#include "telemetry/imports/HistoryImport.h"

#include <QObject>

#include <atomic>
#include <thread>

/// An import into the history of a station that runs: what takes long is done on a thread of its own, while
/// frames are heard and written. The history is replaced, and put back, on the caller's thread, which writes
/// it: between the look at what was appended meanwhile and the replacement there is no room for a frame.
class ImportJob : public QObject {
    Q_OBJECT
public:
    /// Puts into the history what was heard and waits for room; whether nothing waits any more.
    using Settle = std::function<bool()>;

    ImportJob(const QString& path, HistorySides sides, Settle settle, QObject* parent = nullptr);
    ~ImportJob() override;

    /// All begin; their ends are told by signals. Not while one is running. Undo takes the last import back.
    void Count(const QStringList& files, const ImportOptions& options);
    void Import();
    void Undo();

    /// Ends what is running, soon.
    void Cancel() { m_isCancelled = true; }

    bool IsRunning() const { return m_isRunning; }
    const ImportCount& Counted() const { return m_import.Counted(); }
    const QString& Reason() const { return m_reason; }

    bool CanUndo() const { return HistoryImport::CanUndo(m_path); }

Q_SIGNALS:
    /// How far it is: 0 to 100, of each file and step anew.
    void Progress(int percent);
    void CountEnded(HistoryImport::Result result);
    void ImportEnded(HistoryImport::Result result);
    void UndoEnded(HistoryImport::Result result);

private:
    using PrepareStep = HistoryImport::Result (HistoryImport::*)(const HistoryImport::Progress&);
    using CommitStep = HistoryImport::Result (HistoryImport::*)();
    using End = void (ImportJob::*)(HistoryImport::Result);

    void Replace(PrepareStep prepare, CommitStep commit, End ended);
    void Start(const std::function<HistoryImport::Result()>& work,
               const std::function<void(HistoryImport::Result)>& end);
    bool Tell(qint64 done, qint64 total);
    HistoryImport::Result Commit(CommitStep commit);

    const QString m_path;
    const Settle m_settle;
    HistoryImport m_import;
    QString m_reason;
    std::thread m_thread;
    std::atomic<bool> m_isCancelled = false;
    bool m_isRunning = false;
    int m_told = -1; // percent; the thread's while it runs
};
