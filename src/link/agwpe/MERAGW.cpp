#include "link/agwpe/MERAGW.h"

#include "foundation/text/Text.h"
#include "link/UnprotoPath.h"
#include "link/agwpe/AgwFrame.h"
#include "link/agwpe/AgwFrameReader.h"
#include "telemetry/monitor/DisplayKind.h"

#include <QtEndian>

#include <algorithm>
#include <memory>
#include <optional>

namespace {

bool FitsCallField(const QByteArray& callsign) {
    return !callsign.isEmpty() && callsign.size() < AgwFrame::callFieldLength &&
           std::all_of(callsign.begin(), callsign.end(), [](char c) { return c > ' ' && c <= '~'; });
}

/// The first callsign that its field cannot take.
std::optional<QByteArray> UnfitCallsign(const QByteArray& source, const UnprotoPath& path) {
    const QByteArrayList callsigns = QByteArrayList{source, path.destination} + path.digipeaters;
    const auto unfit = std::find_if_not(callsigns.begin(), callsigns.end(), FitsCallField);
    return unfit == callsigns.end() ? std::nullopt : std::optional(*unfit);
}

} // namespace

MERAGW::MERAGW(QObject* parent)
    : TcpClient(parent) {
    // Before anybody else hears of it.
    connect(this, &TcpClient::Connected, this, &MERAGW::AskEngine);
    connect(this, &TcpClient::Error, this,
            [this](const QString& description) { SetError(ConnectionFault, description); });
}

void MERAGW::Connect() {
    m_portCount = 0;
    m_areRawFramesOn = false;
    TcpClient::Connect(m_host, static_cast<quint16>(m_port),
                       [this, reader = std::make_shared<AgwFrameReader>()](
                           QByteArrayView bytes, const bool& isAlive) { Receive(*reader, bytes, isAlive); });
}

void MERAGW::AskEngine() {
    const auto ask = [this](char kind) { Send(AgwFrame{.kind = kind}.ToBytes()); };
    if (!m_loginId.isEmpty()) {
        const QByteArray data = AgwData::LogIn(Text::ToBytes(m_loginId), Text::ToBytes(m_password));
        Send(AgwFrame{.kind = AgwKind::LogIn, .data = data}.ToBytes());
    }
    ask(AgwKind::Version);
    ask(AgwKind::Ports);
    ask(AgwKind::ToggleMonitoring);
    if (m_wantsRawFrames)
        ToggleRaw();
}

void MERAGW::SetWantsRawFrames(bool wants) {
    m_wantsRawFrames = wants;
    if (m_areRawFramesOn != wants)
        ToggleRaw();
}

void MERAGW::ToggleRaw() {
    if (Send(AgwFrame{.kind = AgwKind::ToggleRaw}.ToBytes()))
        m_areRawFramesOn = !m_areRawFramesOn;
}

void MERAGW::Receive(AgwFrameReader& reader, QByteArrayView bytes, const bool& isAlive) {
    while (isAlive && !bytes.isEmpty()) {
        const std::span<char> room = reader.Room();
        const qsizetype count = std::min(bytes.size(), static_cast<qsizetype>(room.size()));
        std::copy_n(bytes.data(), count, room.data());
        bytes = bytes.sliced(count);
        reader.Add(count);
        AgwFrame frame;
        auto result = AgwFrameReader::Result::Frame;
        while (isAlive && (result = reader.Next(frame)) == AgwFrameReader::Result::Frame)
            Dispatch(frame);
        if (isAlive && result == AgwFrameReader::Result::BadLength)
            Fail(QStringLiteral("The packet engine announced a frame that is too long"));
    }
}

void MERAGW::Dispatch(const AgwFrame& frame) {
    switch (frame.kind) {
    case AgwKind::MonitoredUnproto:
        Q_EMIT FrameArrival({.port = static_cast<qint16>(frame.port + 1),
                             .source = frame.callFrom,
                             .destination = frame.callTo,
                             .data = AgwData::WithoutEndMark(frame.data)});
        break;
    case AgwKind::MonitoredInformation:
        Q_EMIT Monitoring(AgwData::WithoutEndMark(frame.data), DisplayKind::Information);
        break;
    case AgwKind::MonitoredSupervisory:
        Q_EMIT Monitoring(AgwData::WithoutEndMark(frame.data), DisplayKind::Supervisory);
        break;
    case AgwKind::Transmitted:
        Q_EMIT Monitoring(AgwData::WithoutEndMark(frame.data), DisplayKind::Transmitted);
        break;
    case AgwKind::Raw:
        if (m_areRawFramesOn && !frame.data.isEmpty())
            Q_EMIT RawFrame(frame.data.sliced(1), static_cast<qint16>(frame.port + 1));
        break;
    case AgwKind::Ports:
        ReportPorts(frame.data);
        break;
    case AgwKind::Version:
        ReportVersion(frame.data);
        break;
    default: // not asked for
        break;
    }
}

void MERAGW::ReportPorts(QByteArrayView data) {
    QStringList descriptions = Text::FromBytes(AgwData::UpToNul(data)).split(u';');
    if (descriptions.last().isEmpty())
        descriptions.removeLast(); // every item is ended by ";"
    const QString head = descriptions.isEmpty() ? QString() : descriptions.takeFirst();
    // An engine may list items behind its ports that are none.
    const double announced = std::max(0.0, Text::LeadingNumber(head));
    if (announced < static_cast<double>(descriptions.size()))
        descriptions.resize(static_cast<qsizetype>(announced));
    m_portCount = static_cast<int>(descriptions.size());
    Q_EMIT PortInformation(descriptions);
}

void MERAGW::ReportVersion(QByteArrayView data) {
    constexpr qsizetype minorOffset = 4;
    if (data.size() < minorOffset + 2)
        return;
    const auto majorVersion = qFromLittleEndian<quint16>(data.data());
    const auto minorVersion = qFromLittleEndian<quint16>(data.data() + minorOffset);
    Q_EMIT Version(QStringLiteral("%1.%2").arg(majorVersion).arg(minorVersion));
}

bool MERAGW::SendUnproto(qint16 port, const QString& source, const QString& destination,
                         const QByteArray& data) {
    if (!IsConnected())
        return Refuse(NotConnected, QStringLiteral("Not connected to AGWPE"));
    if (port < 1 || port > 256)
        return Refuse(NoSuchPort, QStringLiteral("There is no radio port %1").arg(port));
    const QByteArray from = Text::ToBytes(source.trimmed());
    const UnprotoPath path = UnprotoPath::FromText(destination);
    if (const std::optional<QByteArray> unfit = UnfitCallsign(from, path))
        return Refuse(BadCallsign,
                      QStringLiteral("\"%1\" cannot be sent as a callsign").arg(Text::FromBytes(*unfit)));
    if (path.digipeaters.size() > AgwData::maxDigipeaters)
        return Refuse(TooManyDigipeaters,
                      QStringLiteral("At most %1 digipeaters can be used").arg(AgwData::maxDigipeaters));
    const bool direct = path.digipeaters.isEmpty();
    const QByteArray body = direct ? data : AgwData::Via(path.digipeaters, data);
    if (body.size() > AgwFrame::maxDataLength)
        return Refuse(FrameTooLong, QStringLiteral("The text is too long to be sent"));
    const AgwFrame frame{.port = static_cast<quint8>(port - 1),
                         .kind = direct ? AgwKind::SendUnproto : AgwKind::SendUnprotoVia,
                         .pid = AgwFrame::noLayer3,
                         .callFrom = from,
                         .callTo = path.destination,
                         .data = body};
    if (!Send(frame.ToBytes()))
        return Refuse(EngineDoesNotRead, QStringLiteral("AGWPE does not take what is sent to it"));
    return true;
}

bool MERAGW::Refuse(ErrorNumber number, const QString& text) {
    SetError(number, text);
    return false;
}

void MERAGW::SetError(ErrorNumber number, const QString& text) {
    m_lastErrorNumber = number;
    m_lastErrorText = text;
}
