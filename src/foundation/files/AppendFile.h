#pragma once

#include "foundation/system/FileSync.h"

#include <QFile>
#include <QTimer>

#include <deque>
#include <functional>

/// A file that is only ever appended to, a text at a time. What is appended is in the file at once. Where a
/// full disk takes the start of a text only, its rest goes before the next text, and into no other file. A
/// file that was replaced or removed meanwhile is opened anew.
class AppendFile {
public:
    struct Rules {
        /// Makes it a file of lines: texts end in LF, this line (with its LF) stands before them, and the
        /// torn last line that an earlier run left is ended.
        QByteArray header = {};
        bool isSynced = false;  ///< on the disk within a second; needs a running event loop
        qsizetype mostKept = 0; ///< bytes of texts that wait while they cannot be written; then they are lost
    };

    /// Is told the system's reason when a text cannot be written, and again only after one could.
    using Failed = std::function<void(const QString& reason)>;

    AppendFile()
        : AppendFile({}, {}, {}) {}

    /// `path` is opened, and made where it is missing, by the first Append.
    AppendFile(const QString& path, Rules rules, Failed failed);
    AppendFile(const AppendFile&) = delete;
    AppendFile& operator=(const AppendFile&) = delete;
    ~AppendFile() { Close(); }

    /// Opens a file in place of the one before; where it cannot be opened, each Append tries again.
    bool Open(const QString& path);

    /// Writes what waits, as far as it can, and closes the file.
    void Close();

    bool IsOpen() const { return m_file.isOpen(); }

    /// Whether something that was written may not be on the disk yet.
    bool IsUnsynced() const { return m_isUnsynced || m_sync.IsRunning(); }

    /// Writes what waits, if anything does; whether nothing waits any more.
    bool Settle() { return m_waiting.empty() || Flush(); }

    /// Whether all of the text, and all that waited, is in the file.
    bool Append(QByteArrayView text);

private:
    bool MakeReady();
    bool Reopen();
    void SetStart();
    bool Flush();
    qsizetype Write(QByteArrayView bytes);
    bool Fail(const QString& reason);
    void Sync();
    void StartSync();
    void EndSync();

    const Rules m_rules;
    const Failed m_failed;
    QFile m_file;
    std::optional<FileIdentity> m_identity;
    QByteArray m_start; // what the file lacks before the next text: the end of a line, its header
    std::deque<QByteArray> m_waiting; // texts that could not be written
    qsizetype m_waitingBytes = 0;
    bool m_isTorn = false;    // the first of them is the rest of a text whose start is in the file
    qint64 m_size = 0;        // the file's, as we left it
    bool m_isFailing = false; // and this was said
    bool m_isSyncFailing = false;
    bool m_isNew = false; // the file's entry in its folder is not on the disk
    bool m_isUnsynced = false;
    QTimer m_syncTimer;
    FileSync m_sync;
};
