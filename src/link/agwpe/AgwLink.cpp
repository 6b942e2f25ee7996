#include "link/agwpe/AgwLink.h"

#include "foundation/text/Clock.h"
#include "foundation/text/Text.h"
#include "link/agwpe/AgwHeard.h"
#include "link/agwpe/AgwSettings.h"
#include "telemetry/monitor/DisplayKind.h"

#include <QCoreApplication>
#include <QEvent>

namespace {

constexpr int retryMilliseconds = 30000;
constexpr QLatin1StringView lineEnd("\r\n");

} // namespace

AgwLink::AgwLink(const AgwSettings& settings, const Clock& clock, QObject* parent)
    : QObject(parent)
    , m_settings(settings)
    , m_clock(clock)
    , m_client(this)
    , m_timRetry(this) {
    m_client.setObjectName(QStringLiteral("MERAGW"));
    m_timRetry.setObjectName(QStringLiteral("timRetry"));
    m_timRetry.setSingleShot(true);
    m_timRetry.setInterval(retryMilliseconds);
    connect(&m_timRetry, &QTimer::timeout, this, &AgwLink::Connect);
    connect(&m_client, &MERAGW::PortInformation, this, &AgwLink::HandlePortInformation);
    connect(&m_client, &MERAGW::Version, this, [this](const QString& version) {
        Q_EMIT StatusText(QStringLiteral("*** AGWPE V") + version + lineEnd);
    });
    connect(&m_client, &MERAGW::Connected, this, &AgwLink::HandleConnected);
    connect(&m_client, &MERAGW::Disconnected, this, &AgwLink::HandleDisconnected);
    connect(&m_client, &MERAGW::Error, this, &AgwLink::HandleError);
    connect(&m_client, &MERAGW::FrameArrival, this, [this](const MonitoredFrame& frame) {
        Q_EMIT Heard(AgwHeard::FromFrame(frame, m_clock.Milliseconds()));
    });
    connect(&m_client, &MERAGW::Monitoring, this, &AgwLink::HandleMonitoring);
}

void AgwLink::Connect() {
    m_timRetry.stop();
    m_client.SetHost(m_settings.strAgwHost());
    m_client.SetPort(m_settings.intAgwPort());
    m_client.SetLoginId(m_settings.strAgwLoginId());
    m_client.SetPassword(m_settings.strAgwPassword());
    m_client.Connect();
}

void AgwLink::AgwReconnect() {
    m_reconnecting = true;
    m_client.Disconnect();
    // Only the client's own events run here: a turn of the whole event loop could close the window that
    // called.
    QCoreApplication::sendPostedEvents(&m_client, QEvent::MetaCall);
    m_reconnecting = false;
    Connect();
}

void AgwLink::Stop() {
    m_timRetry.stop();
    m_client.disconnect(this);
    m_client.Disconnect();
    m_blnConectedToAgw = false;
}

void AgwLink::SendUnproto(qint16 port, const QString& source, const QString& destination,
                          const QString& data) {
    if (!m_client.SendUnproto(port, source, destination, Text::ToBytes(data)))
        ShowLinkError();
}

void AgwLink::ShowLinkError() {
    Q_EMIT StatusText(QString::number(m_client.LastErrorNumber()) + u' ' + m_client.LastErrorText() +
                      lineEnd);
}

void AgwLink::HandleMonitoring(QByteArrayView data, qint16 kind) {
    const HeardFrame::Kind heard = kind == DisplayKind::Transmitted   ? HeardFrame::Kind::T
                                   : kind == DisplayKind::Information ? HeardFrame::Kind::I
                                                                      : HeardFrame::Kind::S;
    Q_EMIT Heard(AgwHeard::FromText(data, heard, m_clock.Milliseconds()));
}

void AgwLink::HandlePortInformation(const QStringList& descriptions) {
    for (const QString& description : descriptions)
        Q_EMIT StatusText(QStringLiteral("*** ") + description + lineEnd);
}

void AgwLink::HandleConnected(const QString& host) {
    Q_EMIT MonitorEnabled(true);
    m_blnConectedToAgw = true;
    Q_EMIT StatusText(QStringLiteral("*** AGW-Connected to - ") + host + lineEnd);
}

void AgwLink::HandleDisconnected(const QString& host) {
    Q_EMIT MonitorEnabled(false);
    m_blnConectedToAgw = false;
    Q_EMIT StatusText(QStringLiteral("*** AGW-Disconnected from - ") + host + lineEnd + AnnounceRetry());
}

void AgwLink::HandleError(const QString& description) {
    // An error alone does not say that a connection ended, so blnConectedToAgw stays.
    Q_EMIT MonitorEnabled(false);
    Q_EMIT StatusText(QStringLiteral("*** AGW-Error with connection to ") + m_client.Host() +
                      QStringLiteral(" - ") + description + lineEnd + AnnounceRetry());
}

QString AgwLink::AnnounceRetry() {
    if (m_reconnecting)
        return {};
    m_timRetry.start();
    return QStringLiteral("Will automatically retry in 30 seconds time.") + lineEnd;
}
