#include "link/agwpe/AgwLink.h"

#include "foundation/text/Clock.h"
#include "foundation/text/Text.h"
#include "link/agwpe/AgwHeard.h"
#include "link/agwpe/AgwSettings.h"
#include "telemetry/monitor/DisplayKind.h"

namespace {

constexpr QLatin1StringView lineEnd("\r\n");

} // namespace

AgwLink::AgwLink(const AgwSettings& settings, const Clock& clock, QObject* parent)
    : PacketLink(QStringLiteral("AGW"), parent)
    , m_settings(settings)
    , m_clock(clock)
    , m_client(this) {
    m_client.setObjectName(QStringLiteral("MERAGW"));
    connect(&m_client, &MERAGW::PortInformation, this, &AgwLink::HandlePortInformation);
    connect(&m_client, &MERAGW::Version, this, [this](const QString& version) {
        Q_EMIT StatusText(QStringLiteral("*** AGWPE V") + version + lineEnd);
    });
    connect(&m_client, &MERAGW::Connected, this, &AgwLink::HandleConnected);
    connect(&m_client, &MERAGW::Disconnected, this, &AgwLink::HandleDisconnected);
    connect(&m_client, &MERAGW::Error, this,
            [this](const QString& description) { HandleError(m_client.Host(), description); });
    connect(&m_client, &MERAGW::FrameArrival, this, [this](const MonitoredFrame& frame) {
        Q_EMIT Heard(AgwHeard::FromFrame(frame, m_clock.Milliseconds()));
    });
    connect(&m_client, &MERAGW::Monitoring, this, &AgwLink::HandleMonitoring);
}

void AgwLink::Open() {
    m_client.SetHost(m_settings.strAgwHost());
    m_client.SetPort(m_settings.intAgwPort());
    m_client.SetLoginId(m_settings.strAgwLoginId());
    m_client.SetPassword(m_settings.strAgwPassword());
    m_client.Connect();
}

void AgwLink::Close() {
    m_client.DisconnectNow();
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
