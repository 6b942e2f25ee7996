#pragma once

#include "telemetry/imports/ImportReader.h"
#include "telemetry/imports/IncomingFrames.h"

#include <QStringList>

class HistoryWalk;
class QFile;

/// What an import would bring, or has brought.
struct ImportCount {
    qint64 frames = 0;                             ///< that come in
    qint64 known = 0;                              ///< the same source and line within five minutes
    qint64 others = 0;                             ///< frames of others, or no telemetry
    qint64 notUnderstood = 0;                      ///< lines and frames
    QByteArrayList examples;                       ///< of what was not understood
    std::optional<std::pair<qint64, qint64>> span; ///< the times of the first and the last that comes in
};

/// Brings logs and recordings into the history file, as a whole or not at all. Its steps, in this order:
///
/// - Count reads the files and says what would come in; a dry run ends here.
/// - Prepare writes the new history beside the old one. Frames come in in the order of their times; lines
///   that are not understood stay where they were. Like Count it may take a while, and may run on a thread of
///   its own while frames are heard.
/// - Commit puts it in the place of the old one, which stays as tlm.before-import.txt. It is short, and is
///   for the thread that writes the history: what was appended meanwhile goes along.
///
/// PrepareUndo and CommitUndo put the history of before the last import back, with what was heard since
/// behind it; threads as above. What was prepared and not committed goes with the object.
class HistoryImport {
public:
    using Progress = ImportReader::Progress;

    enum class Result {
        Done,
        Cancelled, ///< by Progress; nothing has changed
        Failed     ///< Reason says why; nothing has changed
    };

    /// `path`: of the history file.
    HistoryImport(const QString& path, HistorySides sides);
    HistoryImport(const HistoryImport&) = delete;
    HistoryImport& operator=(const HistoryImport&) = delete;
    ~HistoryImport();

    Result Count(const QStringList& files, const ImportOptions& options, const Progress& progress = {});
    const ImportCount& Counted() const { return m_count; }

    Result Prepare(const Progress& progress = {});
    Result Commit();

    Result PrepareUndo(const Progress& progress = {});
    Result CommitUndo();

    const QString& Reason() const { return m_reason; }

    /// Whether there is an import that Undo can take back.
    static bool CanUndo(const QString& path);

    /// PrepareUndo and CommitUndo at once, for the thread that writes the history. Answers an empty text, or
    /// why nothing has changed.
    static QString Undo(const QString& path);

private:
    Result AddKnown(const Progress& progress);
    bool Merge(HistoryWalk* old, const Progress& progress);
    void WriteUntil(qint64 utc, std::string_view section, bool isNewest);
    bool Write(std::string_view bytes);
    Result Fail(const QString& reason);
    void Drop();
    QString CopyTail();
    QString KeepOld() const;
    bool IsHeardSince() const;
    QString WriteUndone();
    QString AppendHeard();

    const QString m_path; // links are followed
    const HistorySides m_sides;
    ImportCount m_count;
    IncomingFrames m_incoming;
    std::size_t m_next = 0; // of them, to be written
    int m_sectionChanges = 0;
    std::unique_ptr<QFile> m_new;
    qint64 m_oldSize = 0; // of what is in the new file
    qint64 m_heard = 0;   // where what was heard since the last import begins; 0 where none was made
    QString m_reason;
};
