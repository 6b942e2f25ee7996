#include "sharing/ForwardQueue.h"

#include "foundation/files/BoundedFile.h"
#include "foundation/settings/ProgramFolder.h"
#include "foundation/settings/ReplaceFile.h"
#include "sharing/SidsRequest.h"

#include <QFileInfo>

#include <utility>

namespace {

constexpr int syncAfter = 500;   // milliseconds
constexpr int retryAfter = 5000; // milliseconds
constexpr qsizetype mostUnwritten = 1024 * 1024;
constexpr qsizetype spareLines = 1000;

// Reads the lines of a file; answers where the last one that is ended ends.
qint64 ReadLines(QFile& file, const std::function<void(const QByteArray&)>& take) {
    qint64 end = 0;
    bool isWithin = false; // of a line longer than any of ours
    for (;;) {
        const QByteArray line = file.readLine(ForwardQueue::largestLine);
        if (line.isEmpty())
            return end;
        const bool isEnded = line.endsWith('\n');
        if (isEnded)
            end = file.pos();
        if (isWithin || isEnded || line.size() >= ForwardQueue::largestLine - 1)
            take(isWithin || !isEnded ? QByteArray("?") : line);
        isWithin = !isEnded;
    }
}

} // namespace

ForwardQueue::ForwardQueue(const ProgramFolder& folder, Failed failed)
    : m_path(folder.File(FileName()))
    , m_failed(std::move(failed))
    , m_file(m_path) {
    m_timStore.setObjectName(QStringLiteral("timStore"));
    m_timStore.setSingleShot(true);
    QObject::connect(&m_timStore, &QTimer::timeout, &m_timStore, [this] {
        Flush();
        if (m_sync.IsRunning()) // a slow disk
            m_timStore.start(syncAfter);
        else
            Sync();
    });
}

ForwardList ForwardQueue::Read(const ProgramFolder& folder, qint64* damaged) {
    ForwardList list;
    QFile file(folder.File(FileName()));
    if (!file.exists() || !OpenRegularFile(file).isEmpty())
        return list;
    (void)ReadLines(file, [&](const QByteArray& line) {
        if (!list.Apply(line) && damaged != nullptr)
            ++*damaged;
    });
    return list;
}

qint64 ForwardQueue::Open(qsizetype keepAtMost) {
    (void)Close();
    m_list = {};
    m_size = 0;
    m_lines = 0;
    m_unwritten.clear();
    m_mustWriteAnew = false;
    m_trouble.clear();
    qint64 damaged = 0;
    QFile file(m_path);
    const QString reason = file.exists() ? OpenRegularFile(file) : QString();
    m_isUnreadable = !reason.isEmpty();
    if (m_isUnreadable)
        Fail(reason);
    if (file.isOpen())
        // Behind a torn line the file is longer than that, and is written anew before anything comes to it.
        m_size = ReadLines(file, [&](const QByteArray& line) {
            ++m_lines;
            if (!m_list.Apply(line))
                ++damaged;
        });
    m_mostLines = 2 * m_list.LineCount() + spareLines;
    SetKeepAtMost(keepAtMost);
    return damaged;
}

QString ForwardQueue::Store() {
    m_timStore.stop(); // it would hold off another try
    Flush();
    Sync();
    EndSync();
    return m_trouble;
}

QString ForwardQueue::Close() {
    QString trouble = Store();
    m_timStore.stop();
    m_file.close();
    return trouble;
}

void ForwardQueue::SetKeepAtMost(qsizetype keepAtMost) {
    m_keepAtMost = keepAtMost;
    DropOldest();
    Flush();
}

qsizetype ForwardQueue::Add(const QByteArrayList& bodies) {
    qsizetype added = 0;
    for (const QByteArray& body : bodies) {
        added += Do(m_list.QueuedLine(body)) ? 1 : 0;
        DropOldest();
    }
    Flush();
    return added;
}

void ForwardQueue::NoteSent(qint64 number) {
    Do(m_list.SentLine(number));
    Flush();
}

void ForwardQueue::Park(qint64 number, const QString& words) {
    Do(ForwardList::ParkedLine(number, words));
    Flush();
}

void ForwardQueue::Retry(const QList<qint64>& numbers) {
    for (const qint64 number : numbers)
        if (IsParked(number))
            Do(ForwardList::WaitingLine(number));
    Flush();
}

void ForwardQueue::Discard(const QList<qint64>& numbers) {
    for (const qint64 number : numbers)
        if (IsParked(number))
            Do(ForwardList::DiscardedLine(number));
    Flush();
}

bool ForwardQueue::IsParked(qint64 number) const {
    const auto found = m_list.Frames().find(number);
    return found != m_list.Frames().end() && found->second.isParked;
}

QList<qint64> ForwardQueue::Parked() const {
    QList<qint64> numbers;
    for (const auto& [number, frame] : m_list.Frames())
        if (frame.isParked)
            numbers.append(number);
    return numbers;
}

// What is done is what is written; nothing is written that could not be done.
bool ForwardQueue::Do(const QByteArray& line) {
    if (!m_list.Apply(line))
        return false;
    ++m_lines;
    if (!m_mustWriteAnew) // else the list has all
        m_unwritten += line;
    return true;
}

void ForwardQueue::DropOldest() {
    while (static_cast<qsizetype>(m_list.Frames().size()) > m_keepAtMost)
        Do(ForwardList::DroppedLine(m_list.Frames().begin()->first));
}

// Writes what is not in the file yet, or leaves that to the timer where it just failed.
void ForwardQueue::Flush() {
    if (m_unwritten.size() > mostUnwritten || m_lines > m_mostLines) {
        m_mustWriteAnew = true;
        m_unwritten.clear();
    }
    if ((m_unwritten.isEmpty() && !m_mustWriteAnew) || m_isUnreadable)
        return;
    if (!m_trouble.isEmpty() && m_timStore.isActive())
        return;
    if (m_mustWriteAnew || !OpenFile()) {
        WriteAnew();
        return;
    }
    const qint64 written = m_file.write(m_unwritten);
    if (written != m_unwritten.size()) {
        Fail(m_file.errorString());
        return;
    }
    m_size += written;
    m_isUnsynced = m_isUnsynced || written > 0;
    m_unwritten.clear();
    m_trouble.clear();
    if (m_isUnsynced && !m_timStore.isActive())
        m_timStore.start(syncAfter);
}

// Opens the file to append to it; false when it is not the one that we left.
bool ForwardQueue::OpenFile() {
    const QFileInfo info(m_path);
    const qint64 size = info.exists() ? info.size() : 0;
    if ((info.exists() && !info.isFile()) || size != m_size)
        return false;
    if (m_file.isOpen() && info.exists())
        return true;
    EndSync();
    m_file.close();
    m_isNew = !info.exists();
    return m_file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered,
                       QFile::ReadOwner | QFile::WriteOwner);
}

void ForwardQueue::WriteAnew() {
    EndSync();
    m_file.close();
    const QByteArray lines = m_list.Lines();
    const QString reason = ReplaceFile(m_path, lines);
    m_mustWriteAnew = !reason.isEmpty();
    m_unwritten.clear(); // all is in the list
    if (m_mustWriteAnew) {
        m_mostLines = std::max(m_mostLines, 2 * m_lines);
        Fail(reason);
        return;
    }
    // What comes to the new file is on the disk only where its name is, too.
    SyncFolderToDisk(QFileInfo(m_path).canonicalPath());
    m_trouble.clear();
    m_isUnsynced = false; // it is on the disk
    m_size = lines.size();
    m_lines = m_list.LineCount();
    m_mostLines = 2 * m_lines + spareLines;
}

void ForwardQueue::Sync() {
    EndSync();
    if (m_file.isOpen() && std::exchange(m_isUnsynced, false))
        m_sync.Start(m_file.handle(),
                     std::exchange(m_isNew, false) ? QFileInfo(m_path).absolutePath() : QString());
}

void ForwardQueue::EndSync() {
    const QString reason = m_sync.Wait();
    if (reason.isEmpty())
        return;
    m_mustWriteAnew = true; // nobody knows what the disk has of it
    Fail(reason);
}

void ForwardQueue::Fail(const QString& reason) {
    if (std::exchange(m_trouble, reason).isEmpty() && m_failed)
        m_failed(reason);
    m_timStore.start(retryAfter);
}
