#include "cli/output/Console.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace {

constexpr qsizetype gatheredAtMost = 65536;
constexpr qsizetype safeToWrite = PIPE_BUF; // a pipe that takes something takes as much at once
constexpr int patience = 200;               // milliseconds

// Whether the system asks the program to end while that request is held back (see EndRequests): a reader that
// has stopped reading must not keep it from ending.
bool IsToEnd() {
    sigset_t pending;
    return sigpending(&pending) == 0 &&
           (sigismember(&pending, SIGTERM) == 1 || sigismember(&pending, SIGINT) == 1);
}

// 0, or the system's error.
int WriteAll(int descriptor, QByteArrayView bytes) {
    while (!bytes.isEmpty()) {
        pollfd ready{.fd = descriptor, .events = POLLOUT, .revents = 0};
        if (poll(&ready, 1, patience) == 0) {
            if (IsToEnd())
                return ECANCELED;
            continue;
        }
        const QByteArrayView piece = bytes.first(std::min(bytes.size(), safeToWrite));
        const ssize_t written = write(descriptor, piece.data(), static_cast<std::size_t>(piece.size()));
        if (written >= 0)
            bytes = bytes.sliced(written);
        else if (errno != EINTR && errno != EAGAIN)
            return errno;
    }
    return 0;
}

} // namespace

void Console::Print(const QByteArray& bytes) {
    if (m_error != 0)
        return;
    m_waiting.append(bytes);
    if (m_waiting.size() >= gatheredAtMost)
        Flush();
}

bool Console::Flush() {
    if (m_error == 0)
        m_error = WriteAll(m_output, m_waiting);
    m_waiting.clear();
    return m_error == 0;
}

void Console::Say(const QString& text) {
    QString line = QStringLiteral("qirandecode-cli: ") + text;
    for (QChar& c : line)
        if (c < u' ' || c == u'\x7f')
            c = u' ';
    WriteAll(m_messages, line.toUtf8() + '\n');
}

void Console::Progress(const QString& text) {
    const bool isToBeErased = std::exchange(m_tellsProgress, !text.isEmpty());
    if ((isToBeErased || m_tellsProgress) && isatty(m_messages) == 1)
        WriteAll(m_messages, "\r" + text.toUtf8() + "\x1b[K"); // erases what was longer
}

int Console::Finish(int code) {
    if (Flush() || m_error == EPIPE || m_error == ECANCELED)
        return code;
    Say(QStringLiteral("the output cannot be written: %1")
            .arg(QString::fromLocal8Bit(std::strerror(m_error))));
    return code == 0 ? 1 : code;
}
