#include "telemetry/imports/ImportJob.h"

#include <algorithm>
#include <utility>

using Result = HistoryImport::Result;

namespace {

QString NoRoom() {
    return QStringLiteral("what was heard last cannot be written to the history");
}

} // namespace

ImportJob::ImportJob(const QString& path, HistorySides sides, Settle settle, QObject* parent)
    : QObject(parent)
    , m_path(path)
    , m_settle(std::move(settle))
    , m_import(path, std::move(sides)) {}

ImportJob::~ImportJob() {
    Cancel();
    if (m_thread.joinable())
        m_thread.join();
}

void ImportJob::Count(const QStringList& files, const ImportOptions& options) {
    const auto progress = [this](qint64 done, qint64 total) { return Tell(done, total); };
    Start([this, files, options, progress] { return m_import.Count(files, options, progress); },
          [this](Result result) { Q_EMIT CountEnded(result); });
}

void ImportJob::Import() {
    Replace(&HistoryImport::Prepare, &HistoryImport::Commit, &ImportJob::ImportEnded);
}

void ImportJob::Undo() {
    Replace(&HistoryImport::PrepareUndo, &HistoryImport::CommitUndo, &ImportJob::UndoEnded);
}

void ImportJob::Replace(PrepareStep prepare, CommitStep commit, End ended) {
    if (!m_settle()) { // a line that was begun is to be whole when it is read
        m_reason = NoRoom();
        Q_EMIT(this->*ended)(Result::Failed);
        return;
    }
    const HistoryImport::Progress progress = [this](qint64 done, qint64 total) { return Tell(done, total); };
    Start([this, prepare, progress] { return (m_import.*prepare)(progress); },
          [this, commit, ended](Result result) {
              Q_EMIT(this->*ended)(result == Result::Done ? Commit(commit) : result);
          });
}

void ImportJob::Start(const std::function<Result()>& work, const std::function<void(Result)>& end) {
    m_isRunning = true;
    m_isCancelled = false;
    m_told = -1;
    m_thread = std::thread([this, work, end] {
        const Result result = work();
        QMetaObject::invokeMethod(
            this,
            [this, result, end] {
                m_thread.join();
                m_isRunning = false;
                m_reason = m_import.Reason();
                end(m_isCancelled ? Result::Cancelled : result);
            },
            Qt::QueuedConnection);
    });
}

// Called on the thread.
bool ImportJob::Tell(qint64 done, qint64 total) {
    const int percent = total <= 0 ? 100 : static_cast<int>(std::min(done, total) * 100 / total);
    if (percent != std::exchange(m_told, percent))
        Q_EMIT Progress(percent);
    return !m_isCancelled;
}

Result ImportJob::Commit(CommitStep commit) {
    if (!m_settle()) {
        m_reason = NoRoom();
        return Result::Failed;
    }
    const Result result = (m_import.*commit)();
    m_reason = m_import.Reason();
    return result;
}
