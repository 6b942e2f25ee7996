#include "foundation/files/AppendFile.h"

#include "foundation/text/ByteOrderMark.h"

#include <QFileInfo>

#include <utility>

namespace {

constexpr int syncAfterMilliseconds = 500;
constexpr int retryAfterMilliseconds = 5000;

} // namespace

AppendFile::AppendFile(const QString& path, Rules rules, Failed failed)
    : m_rules(std::move(rules))
    , m_failed(std::move(failed))
    , m_file(path) {
    m_syncTimer.setObjectName(QStringLiteral("appendFileSync"));
    m_syncTimer.setSingleShot(true);
    QObject::connect(&m_syncTimer, &QTimer::timeout, &m_syncTimer, [this] { Sync(); });
}

bool AppendFile::Open(const QString& path) {
    Close();
    if (path != m_file.fileName()) {
        m_waiting.clear(); // it belongs into the other file
        m_waitingBytes = 0;
        m_isTorn = false;
        m_file.setFileName(path);
    }
    return Reopen();
}

void AppendFile::Close() {
    if (!m_waiting.empty() && (m_file.isOpen() || m_file.exists()))
        (void)Flush();
    m_syncTimer.stop();
    EndSync();
    StartSync();
    EndSync();
    m_file.close();
}

bool AppendFile::Append(QByteArrayView text) {
    const qsizetype written = Flush() ? Write(text) : 0;
    if (written == text.size())
        return m_waiting.empty();
    m_isTorn = m_isTorn || written > 0;
    if (written > 0 || m_waitingBytes + text.size() <= m_rules.mostKept) {
        m_waiting.push_back(text.sliced(written).toByteArray());
        m_waitingBytes += m_waiting.back().size();
    }
    if (m_rules.isSynced && !m_waiting.empty() && !m_syncTimer.isActive())
        m_syncTimer.start(retryAfterMilliseconds);
    return false;
}

// The name leads to the file that we write, and it ends where we left it.
bool AppendFile::MakeReady() {
    if (m_file.isOpen() && FileIdentity::Of(m_file.fileName()) == m_identity && m_file.size() == m_size)
        return true;
    m_file.close();
    return Reopen();
}

bool AppendFile::Reopen() {
    const QFileInfo info(m_file.fileName());
    if (info.exists() && !info.isFile())
        return Fail(QStringLiteral("%1 is not a file").arg(m_file.fileName()));
    const bool isOfLines = !m_rules.header.isEmpty();
    m_isNew = m_isNew || !info.exists();
    if (!m_file.open((isOfLines ? QIODevice::ReadWrite : QIODevice::WriteOnly) | QIODevice::Append |
                     QIODevice::Unbuffered))
        return Fail(m_file.errorString());
    const std::optional<FileIdentity> identity = FileIdentity::Of(m_file.handle());
    if (m_isTorn && (identity != m_identity || m_file.size() != m_size)) {
        m_waitingBytes -= m_waiting.front().size(); // its start is not there any more
        m_waiting.pop_front();
        m_isTorn = false;
    }
    m_identity = identity;
    m_size = m_file.size();
    m_start.clear();
    if (isOfLines && !m_isTorn)
        SetStart();
    return true;
}

// A file of lines begins with the header, or this run's lines do, and a line begins behind the end of
// another.
void AppendFile::SetStart() {
    const qint64 size = m_file.size();
    char last = '\n';
    if (size > 0 && m_file.seek(size - 1))
        (void)m_file.getChar(&last);
    if (last != '\n')
        m_start = "\n";
    (void)m_file.seek(0);
    const QByteArray found = m_file.read(m_rules.header.size() + 4); // with a byte-order mark, CR
    std::string_view first =
        WithoutByteOrderMark({found.constData(), static_cast<std::size_t>(found.size())});
    first = first.substr(0, first.find_first_of("\r\n"));
    if (first !=
        std::string_view(m_rules.header.constData(), static_cast<std::size_t>(m_rules.header.size() - 1)))
        m_start += m_rules.header;
}

bool AppendFile::Flush() {
    if (!MakeReady())
        return false;
    m_start.remove(0, Write(m_start));
    if (!m_start.isEmpty())
        return false;
    while (!m_waiting.empty()) {
        const QByteArray first = std::move(m_waiting.front());
        m_waiting.pop_front();
        m_waitingBytes -= first.size();
        const qsizetype written = Write(first);
        if (written < first.size()) {
            m_isTorn = m_isTorn || written > 0;
            m_waiting.push_front(first.sliced(written));
            m_waitingBytes += first.size() - written;
            return false;
        }
        m_isTorn = false;
    }
    return true;
}

// How many of the bytes are in the file now.
qsizetype AppendFile::Write(QByteArrayView bytes) {
    qsizetype written = 0;
    while (written < bytes.size()) {
        const qint64 more = m_file.write(bytes.data() + written, bytes.size() - written);
        if (more <= 0) {
            Fail(m_file.errorString());
            break;
        }
        written += more;
        m_size += more;
        m_isFailing = m_isFailing && written < bytes.size();
    }
    if (m_rules.isSynced && written > 0) {
        m_isUnsynced = true;
        if (!m_syncTimer.isActive() || m_syncTimer.remainingTime() > syncAfterMilliseconds)
            m_syncTimer.start(syncAfterMilliseconds);
    }
    return written;
}

bool AppendFile::Fail(const QString& reason) {
    if (!std::exchange(m_isFailing, true) && m_failed)
        m_failed(reason);
    return false;
}

void AppendFile::Sync() {
    if (m_sync.IsRunning()) {
        m_syncTimer.start(syncAfterMilliseconds);
        return;
    }
    if (!m_waiting.empty() && !Flush())
        m_syncTimer.start(retryAfterMilliseconds);
    EndSync();
    StartSync();
}

void AppendFile::StartSync() {
    if (!m_file.isOpen() || !std::exchange(m_isUnsynced, false))
        return;
    m_sync.Start(m_file.handle(),
                 std::exchange(m_isNew, false) ? QFileInfo(m_file).absolutePath() : QString());
}

void AppendFile::EndSync() {
    const QString reason = m_sync.Wait();
    if (!reason.isEmpty() && !m_isSyncFailing && m_failed)
        m_failed(reason);
    m_isSyncFailing = !reason.isEmpty();
}
