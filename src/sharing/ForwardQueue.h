#pragma once

#include "foundation/system/FileSync.h"
#include "sharing/ForwardList.h"

#include <QFile>
#include <QTimer>

#include <functional>

class ProgramFolder;

/// The frames that wait to be sent, kept in "ForwardQueue.txt" in the program folder, a file of lines that is
/// appended to and now and then written anew without what is over (see ForwardList). Whoever changes it holds
/// the folder's lock.
///
/// What is queued is in the file at once and on the disk within a second. A line that a power cut tore is
/// passed over. Where the file cannot be written, the queue goes on in memory and is written whole as soon as
/// it can be.
class ForwardQueue {
public:
    static constexpr qint64 largestLine = 16 * 1024;

    /// Is told the system's reason when the file cannot be written, and again only after it could.
    using Failed = std::function<void(const QString& reason)>;

    ForwardQueue(const ProgramFolder& folder, Failed failed);
    ForwardQueue(const ForwardQueue&) = delete;
    ForwardQueue& operator=(const ForwardQueue&) = delete;
    ~ForwardQueue() { (void)Close(); }

    static QString FileName() { return QStringLiteral("ForwardQueue.txt"); }

    /// What the file of a folder holds; changes nothing. `damaged`, where given, counts the lines that say
    /// nothing sensible.
    static ForwardList Read(const ProgramFolder& folder, qint64* damaged = nullptr);

    /// Reads the file, and drops what is beyond `keepAtMost` frames. Answers how many lines say nothing
    /// sensible.
    qint64 Open(qsizetype keepAtMost);

    /// Puts all on the disk now. Answers an empty text, or why the file lacks something.
    QString Store();

    /// The same at the end.
    QString Close();

    void SetKeepAtMost(qsizetype keepAtMost);

    /// Queues the frames of these requests behind the others, those aside that are there already or were sent
    /// lately; answers how many. The oldest of a full queue are dropped.
    qsizetype Add(const QByteArrayList& bodies);

    void NoteSent(qint64 number);
    void Park(qint64 number, const QString& words);

    /// Of those given, the parked ones wait again, or are discarded.
    void Retry(const QList<qint64>& numbers);
    void Discard(const QList<qint64>& numbers);

    const ForwardList& List() const { return m_list; }
    QList<qint64> Parked() const;

private:
    bool IsParked(qint64 number) const;
    bool Do(const QByteArray& line);
    void DropOldest();
    void Flush();
    bool OpenFile();
    void WriteAnew();
    void Sync();
    void EndSync();
    void Fail(const QString& reason);

    const QString m_path;
    const Failed m_failed;
    ForwardList m_list;
    qsizetype m_keepAtMost = ForwardList::mostFrames;
    QFile m_file;
    qint64 m_size = 0;         // of the file, as we left it
    qsizetype m_lines = 0;     // in it
    qsizetype m_mostLines = 0; // before it is written anew
    QByteArray m_unwritten;
    bool m_mustWriteAnew = false;
    bool m_isUnreadable = false; // what it holds is not to be written over
    bool m_isUnsynced = false;
    bool m_isNew = false; // the file's entry in its folder is not on the disk
    FileSync m_sync;
    QString m_trouble; // why the file lacks something; empty when it lacks nothing
    QTimer m_timStore;
};
