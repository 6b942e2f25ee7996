#include "keps/DownloadSequence.h"

#include "foundation/messages/mb.h"
#include "foundation/settings/Settings.h"
#include "keps/KepsAddress.h"
#include "keps/StoreResponse.h"

namespace {

constexpr int pauseBetweenFiles = 500; // milliseconds: long enough to read what happened

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
    , m_folder(folder)
    , m_lock(FolderLock::OfKeps(folder)) {
    m_timer1.setParent(this);
    m_timer1.setObjectName(QStringLiteral("Timer1"));
    m_timer1.setSingleShot(true);
    m_timer1.setInterval(pauseBetweenFiles);
    connect(&m_timer1, &QTimer::timeout, this, &DownloadSequence::NextFile);
    connect(&m_inet, &InternetTransfer::StateChanged, this, &DownloadSequence::ShowState);
    connect(&m_inet, &InternetTransfer::Progress, this, &DownloadSequence::ShowProgress);
}

DownloadSequence::~DownloadSequence() {
    Stop();
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
    if (!m_lock.TryLock()) {
        Q_EMIT Message(QStringLiteral("The elements are being fetched already, by %1.").arg(m_lock.Holder()),
                       MessageStyle::Exclamation);
        return;
    }
    KepsFiles::RemoveWork(m_folder); // left by a crash
    Settings::Save(m_ini, Settings::kepsFile1, typed[0]);
    Settings::Save(m_ini, Settings::kepsFile2, typed[1]);
    Q_EMIT Status(QStringLiteral("Getting ") + m_names[static_cast<std::size_t>(start)]);
    Start(start);
}

void DownloadSequence::Cancel() {
    Stop();
    Q_EMIT Progress(0, 0);
}

void DownloadSequence::Stop() {
    m_busy = false;
    m_timer1.stop();
    m_inet.Cancel();
    if (m_lock.IsOurs())
        KepsFiles::RemoveWork(m_folder); // another's are no business of ours
    m_lock.Unlock();
}

void DownloadSequence::Start(qint16 index) {
    m_index = index;
    m_busy = true;
    Q_EMIT Progress(0, -1);
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
    if (m_busy)
        Q_EMIT Progress(received, total);
}

void DownloadSequence::ShowError() {
    QString& error = m_errors[static_cast<std::size_t>(m_index)];
    error = QString::number(m_inet.ResponseCode()) + u' ' + m_inet.ResponseInfo();
    const QString words = m_inet.RefusalText();
    Cancel();
    Q_EMIT Status(QStringLiteral("Error - ") + error);
    if (!words.isEmpty())
        Q_EMIT Status(words);
}

void DownloadSequence::StoreResponse() {
    const auto index = static_cast<std::size_t>(m_index);
    m_busy = false;
    const KepsConversion conversion = ::StoreResponse(m_inet, m_folder, m_names[index], m_index);
    m_result = m_result || conversion.converted;
    m_errors[index] = conversion.error;
    Q_EMIT Status(m_names[index] + QStringLiteral(" has been downloaded"));
    m_timer1.start();
}

void DownloadSequence::NextFile() {
    if (m_index < 1 && !m_names[1].isEmpty()) {
        m_inet.Cancel();
        Q_EMIT Status(QStringLiteral("\r\nGetting ") + m_names[1]);
        Start(1);
        return;
    }
    Cancel();
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
