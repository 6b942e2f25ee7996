#include "link/PacketLink.h"

#include <QScopedValueRollback>

namespace {

constexpr int retryMilliseconds = 30000;
constexpr QLatin1StringView lineEnd("\r\n");

} // namespace

PacketLink::PacketLink(const QString& name, QObject* parent)
    : QObject(parent)
    , m_start(QStringLiteral("*** ") + name + u'-')
    , m_timRetry(this) {
    m_timRetry.setObjectName(QStringLiteral("timRetry"));
    m_timRetry.setSingleShot(true);
    m_timRetry.setInterval(retryMilliseconds);
    connect(&m_timRetry, &QTimer::timeout, this, &PacketLink::Connect);
}

void PacketLink::Connect() {
    m_isInUse = true;
    m_timRetry.stop();
    Open();
}

void PacketLink::Reconnect() {
    if (!m_isInUse)
        return;
    Disconnect();
    Connect();
}

void PacketLink::Disconnect() {
    m_isInUse = false;
    m_timRetry.stop();
    const QScopedValueRollback closing(m_isClosing, true);
    Close();
}

void PacketLink::Stop() {
    m_isInUse = false;
    m_timRetry.stop();
    const QScopedValueRollback stopping(m_isStopping, true);
    Close();
    m_isConnected = false;
}

void PacketLink::HandleConnected(const QString& host) {
    Q_EMIT MonitorEnabled(true);
    m_isConnected = true;
    Q_EMIT StatusText(m_start + QStringLiteral("Connected to - ") + host + lineEnd);
}

void PacketLink::HandleDisconnected(const QString& host) {
    if (m_isStopping)
        return;
    Q_EMIT MonitorEnabled(false);
    m_isConnected = false;
    Q_EMIT StatusText(m_start + QStringLiteral("Disconnected from - ") + host + lineEnd + AnnounceRetry());
}

void PacketLink::HandleError(const QString& host, const QString& description) {
    // An error alone does not say that a connection ended, so blnConectedToAgw stays.
    Q_EMIT MonitorEnabled(false);
    Q_EMIT StatusText(m_start + QStringLiteral("Error with connection to ") + host + QStringLiteral(" - ") +
                      description + lineEnd + AnnounceRetry());
}

QString PacketLink::AnnounceRetry() {
    if (m_isClosing)
        return {};
    m_timRetry.start();
    return QStringLiteral("Will automatically retry in 30 seconds time.") + lineEnd;
}
