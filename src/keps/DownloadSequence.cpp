#include "keps/DownloadSequence.h"

#include "foundation/messages/mb.h"
#include "foundation/settings/Settings.h"
#include "keps/ConvertKepsFile.h"
#include "keps/KepsAddress.h"

#include <QFile>

namespace {

constexpr int pauseBetweenFiles = 500; // milliseconds: long enough to read what happened
constexpr qsizetype chunkSize = 1024;
constexpr qsizetype shortestResponse = 80;

QString StateText(int state, const QString& host) {
    switch (state) {
    case InternetTransfer::Idle:
        return QStringLiteral("Idle");
    case InternetTransfer::ResolvingHost:
        return QStringLiteral("Resolving host");
    case InternetTransfer::HostResolved:
        return QStringLiteral("Resolved host");
    case InternetTransfer::Connecting:
        return QStringLiteral("Attempting to connect to - ") + host;
    case InternetTransfer::Connected:
        return QStringLiteral("Connected");
    case InternetTransfer::RequestSent:
        return QStringLiteral("Request sent");
    case InternetTransfer::ResponseReceived:
        return QStringLiteral("Received some data");
    case InternetTransfer::Disconnecting:
        return QStringLiteral("Disconnecting");
    case InternetTransfer::Disconnected:
        return QStringLiteral("Disconnected");
    default:
        return {};
    }
}

} // namespace

DownloadSequence::DownloadSequence(InternetTransfer& inet, clsIni& ini, const ProgramFolder& folder,
                                   QObject* parent)
    : QObject(parent)
    , m_inet(inet)
    , m_ini(ini)
    , m_folder(folder) {
    m_timer1.setParent(this);
    m_timer1.setObjectName(QStringLiteral("Timer1"));
    m_timer1.setSingleShot(true);
    m_timer1.setInterval(pauseBetweenFiles);
    connect(&m_timer1, &QTimer::timeout, this, &DownloadSequence::NextFile);
    connect(&m_inet, &InternetTransfer::StateChanged, this, &DownloadSequence::ShowState);
    connect(&m_inet, &InternetTransfer::Progress, this, &DownloadSequence::ShowProgress);
}

DownloadSequence::~DownloadSequence() {
    Cancel();
}

void DownloadSequence::Download(const std::array<QString, 2>& typed) {
    Cancel();
    m_errors = {};
    for (std::size_t i = 0; i < typed.size(); ++i) {
        const KepsAddress address = KepsAddress::FromTyped(typed[i]);
        m_urls[i] = address.url;
        m_names[i] = address.fileName;
    }
    const qint16 start = m_names[0].isEmpty() ? 1 : 0;
    if (m_names[static_cast<std::size_t>(start)].isEmpty()) {
        Q_EMIT Message(QStringLiteral("Both URLs are blank!"), MessageStyle::Exclamation);
        return;
    }
    Settings::Save(m_ini, Settings::kepsFile1, typed[0]);
    Settings::Save(m_ini, Settings::kepsFile2, typed[1]);
    Q_EMIT Status(QStringLiteral("Getting ") + m_names[static_cast<std::size_t>(start)]);
    Start(start);
}

void DownloadSequence::Cancel() {
    m_busy = false;
    m_timer1.stop();
    m_inet.Cancel();
    RemoveWorkFiles();
}

void DownloadSequence::Start(qint16 index) {
    m_index = index;
    m_busy = true;
    m_sinceProgress.start();
    m_inet.Execute(m_urls[static_cast<std::size_t>(index)], QStringLiteral("GET"));
}

void DownloadSequence::ShowState(int state) {
    if (!m_busy)
        return;
    if (state == InternetTransfer::Error)
        ShowError();
    else if (state == InternetTransfer::ResponseCompleted)
        StoreResponse();
    else if (const QString text = StateText(state, m_inet.RemoteHost()); !text.isEmpty())
        Q_EMIT Status(text);
}

void DownloadSequence::ShowProgress(qint64 received, qint64 total) {
    if (!m_busy || m_sinceProgress.elapsed() < m_progressInterval)
        return;
    m_sinceProgress.start();
    Q_EMIT Status(total < 0 ? QStringLiteral("Received %1 bytes").arg(received)
                            : QStringLiteral("Received %1 of %2 bytes").arg(received).arg(total));
}

void DownloadSequence::ShowError() {
    QString& error = m_errors[static_cast<std::size_t>(m_index)];
    error = QString::number(m_inet.ResponseCode()) + u' ' + m_inet.ResponseInfo();
    Cancel();
    Q_EMIT Status(QStringLiteral("Error - ") + error);
}

void DownloadSequence::StoreResponse() {
    const auto index = static_cast<std::size_t>(m_index);
    m_busy = false;
    qsizetype length = 0;
    QString reason;
    if (!WriteTarget(length, reason)) {
        m_errors[index] = QStringLiteral("The file could not be stored: ") + reason;
    } else if (length >= shortestResponse) { // the line end added to the target does not count
        const KepsConversion conversion =
            ConvertKepsFile(m_folder, KepsFiles::Target(m_folder), m_names[index], m_index);
        m_result = m_result || conversion.converted;
        m_errors[index] = conversion.error;
    }
    Q_EMIT Status(m_names[index] + QStringLiteral(" has been downloaded"));
    m_timer1.start();
}

// Writes the response to the target file; `reason` says why that failed.
bool DownloadSequence::WriteTarget(qsizetype& length, QString& reason) {
    QFile::remove(KepsFiles::Target(m_folder)); // left by a crash, or a link to somewhere else
    QFile target(KepsFiles::Target(m_folder));
    bool written = target.open(QIODevice::WriteOnly);
    for (QByteArray chunk = m_inet.GetChunk(chunkSize); written && !chunk.isEmpty();
         chunk = m_inet.GetChunk(chunkSize)) {
        written = target.write(chunk) == chunk.size();
        length += chunk.size();
    }
    written = written && target.write("\r\n") == 2 && target.flush();
    target.close();
    written = written && target.error() == QFileDevice::NoError;
    if (!written)
        reason = target.errorString();
    return written;
}

void DownloadSequence::NextFile() {
    m_inet.Cancel();
    if (m_index < 1 && !m_names[1].isEmpty()) {
        Q_EMIT Status(QStringLiteral("\r\nGetting ") + m_names[1]);
        Start(1);
        return;
    }
    RemoveWorkFiles();
    ShowSummary();
}

void DownloadSequence::ShowSummary() {
    QString summary = QStringLiteral("The Keps have been downloaded.");
    if (!m_errors[0].isEmpty() || !m_errors[1].isEmpty())
        summary += QStringLiteral("\r\nThe following errors occurred - ");
    if (!m_errors[0].isEmpty())
        summary += QStringLiteral("\r\nFile 1 - ") + m_errors[0];
    if (!m_errors[1].isEmpty())
        summary += QStringLiteral("\r\nFile 2 - ") + m_errors[1];
    Q_EMIT Message(summary, MessageStyle::Information);
    Q_EMIT Finished();
}

void DownloadSequence::RemoveWorkFiles() {
    QFile::remove(KepsFiles::Target(m_folder));
    QFile::remove(KepsFiles::Work(m_folder));
}
