#include "link/agwpe/AgwLink.h"

#include "foundation/text/Clock.h"
#include "foundation/text/Text.h"
#include "link/agwpe/AgwHeard.h"
#include "link/agwpe/AgwSettings.h"
#include "telemetry/monitor/DisplayKind.h"

#include <algorithm>
#include <chrono>

namespace {

constexpr QLatin1StringView lineEnd("\r\n");

// Milliseconds of a clock that never goes back.
qint64 Now() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

} // namespace

AgwLink::AgwLink(const AgwSettings& settings, const Clock& clock, QObject* parent)
    : PacketLink(QStringLiteral("AGW"), parent)
    , m_settings(settings)
    , m_clock(clock)
    , m_client(this)
    , m_marriage([this](const HeardFrame& frame) { Q_EMIT Heard(frame); })
    , m_timRaw(this) {
    m_timRaw.setObjectName(QStringLiteral("timRaw"));
    m_timRaw.setSingleShot(true);
    m_timRaw.setTimerType(Qt::PreciseTimer);
    connect(&m_timRaw, &QTimer::timeout, this, [this] {
        m_marriage.PassTime(Now());
        AwaitMonitored();
    });
    m_client.setObjectName(QStringLiteral("MERAGW"));
    connect(&m_client, &MERAGW::PortInformation, this, &AgwLink::HandlePortInformation);
    connect(&m_client, &MERAGW::Version, this, [this](const QString& version) {
        Q_EMIT StatusText(QStringLiteral("*** AGWPE V") + version + lineEnd);
    });
    connect(&m_client, &MERAGW::Connected, this, &AgwLink::HandleConnected);
    connect(&m_client, &MERAGW::Disconnected, this, [this](const QString& host) {
        m_marriage.End();
        HandleDisconnected(host);
    });
    connect(&m_client, &MERAGW::Error, this,
            [this](const QString& description) { HandleError(m_client.Host(), description); });
    connect(&m_client, &MERAGW::FrameArrival, this, [this](const MonitoredFrame& frame) {
        TellMonitored(AgwHeard::FromFrame(frame, m_clock.Milliseconds()));
    });
    connect(&m_client, &MERAGW::RawFrame, this, &AgwLink::HandleRawFrame);
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
    TellMonitored(AgwHeard::FromText(data, heard, m_clock.Milliseconds()));
}

void AgwLink::TellMonitored(const HeardFrame& frame) {
    if (m_marriage.Due())
        m_marriage.AddMonitored(frame, Now());
    else
        Q_EMIT Heard(frame); // nothing waits for it
}

void AgwLink::HandleRawFrame(QByteArrayView raw, qint16 port) {
    // Without a text: the monitored form has it.
    const HeardFrame frame =
        m_rawReader.Read(raw, {.utc = m_clock.Milliseconds(), .port = port, .time = {}, .needsText = false});
    m_marriage.AddRaw(frame, Now());
    AwaitMonitored();
}

void AgwLink::AwaitMonitored() {
    const std::optional<qint64> due = m_marriage.Due();
    if (due && !m_timRaw.isActive())
        m_timRaw.start(static_cast<int>(std::max<qint64>(0, *due - Now())));
}

void AgwLink::HandlePortInformation(const QStringList& descriptions) {
    for (const QString& description : descriptions)
        Q_EMIT StatusText(QStringLiteral("*** ") + description + lineEnd);
}
