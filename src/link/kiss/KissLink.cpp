#include "link/kiss/KissLink.h"

#include "foundation/text/Clock.h"
#include "foundation/text/Text.h"
#include "link/UnprotoPath.h"
#include "telemetry/frames/Ax25Frame.h"
#include "telemetry/frames/ByteViews.h"
#include "telemetry/frames/KissReader.h"
#include "telemetry/monitor/SecondTime.h"

#include <utility>

namespace {

constexpr qint16 ports = 16;

// The numbers that status lines have for what cannot be sent; those of the other link.
enum ErrorNumber : int {
    NotConnected = 1,
    NoSuchPort = 2,
    BadCallsign = 3,
    TooManyDigipeaters = 4,
    FrameTooLong = 5,
    EngineDoesNotRead = 6,
};

bool IsCallsign(const QByteArray& callsign) {
    return Ax25Frame{.destination = {callsign.toStdString()}, .source = {"A"}}.ToBytes().has_value();
}

SecondTime LocalTime(const Clock& clock) {
    return SecondTime([&clock](qint64 utc) { return FromCalendar(clock.LocalOf(Clock::UtcAt(utc))); });
}

} // namespace

KissLink::KissLink(std::function<KissAddress()> address, const Clock& clock, QObject* parent)
    : PacketLink(QStringLiteral("KISS"), parent)
    , m_address(std::move(address))
    , m_clock(clock)
    , m_time([time = LocalTime(clock)](qint64 utc) mutable { return time.At(utc); })
    , m_client(this) {
    m_client.setObjectName(QStringLiteral("KissClient"));
    connect(&m_client, &TcpClient::Connected, this, [this](const QString& host) { HandleConnected(host); });
    connect(&m_client, &TcpClient::Disconnected, this,
            [this](const QString& host) { HandleDisconnected(host); });
    connect(&m_client, &TcpClient::Error, this,
            [this](const QString& description) { HandleError(m_host, description); });
}

void KissLink::Open() {
    const KissAddress address = m_address();
    m_host = address.host;
    m_client.Connect(address.host, address.port,
                     [this, reader = std::make_shared<KissReader>()](
                         QByteArrayView bytes, const bool& isAlive) { Receive(*reader, bytes, isAlive); });
}

void KissLink::Close() {
    m_client.DisconnectNow();
}

void KissLink::Receive(KissReader& reader, QByteArrayView bytes, const bool& isAlive) {
    std::string_view stream = ToView(bytes);
    KissFrame frame;
    while (isAlive && reader.Next(stream, frame)) {
        if (frame.command == KissFrame::dataCommand)
            Hand({frame.data.data(), static_cast<qsizetype>(frame.data.size())}, frame.port, false);
    }
}

void KissLink::Hand(QByteArrayView raw, int port, bool isTransmitted) {
    const qint64 utc = m_clock.Milliseconds();
    const std::string_view time = m_time.At(utc);
    // A receiver may run an event loop of its own in which the next frame comes: that one makes a reader.
    std::unique_ptr<Ax25Heard> reader = std::move(m_reader);
    if (!reader)
        reader = std::make_unique<Ax25Heard>();
    Q_EMIT Heard(reader->Read(raw, {.utc = utc,
                                    .port = static_cast<qint16>(port + 1),
                                    .isTransmitted = isTransmitted,
                                    .time = {time.data(), static_cast<qsizetype>(time.size())}}));
    m_reader = std::move(reader);
}

void KissLink::SendUnproto(qint16 port, const QString& source, const QString& destination,
                           const QString& data) {
    if (!m_client.IsConnected())
        return Refuse(NotConnected, QStringLiteral("Not connected to a KISS TNC"));
    if (port < 1 || port > ports)
        return Refuse(NoSuchPort, QStringLiteral("There is no radio port %1").arg(port));
    const QByteArray from = Text::ToBytes(source.trimmed());
    const UnprotoPath path = UnprotoPath::FromText(destination);
    for (const QByteArray& callsign : QByteArrayList{from, path.destination} + path.digipeaters)
        if (!IsCallsign(callsign))
            return Refuse(
                BadCallsign,
                QStringLiteral("\"%1\" cannot be sent as a callsign").arg(Text::FromBytes(callsign)));
    // A UI frame is a command: the destination bears the mark.
    const QByteArray information = Text::ToBytes(data);
    Ax25Frame frame{.destination = {path.destination.toStdString(), true},
                    .source = {from.toStdString()},
                    .information = ToView(information)};
    for (const QByteArray& digipeater : path.digipeaters)
        frame.digipeaters.push_back({digipeater.toStdString()});
    const std::optional<std::string> raw = frame.ToBytes();
    if (!raw)
        return Refuse(TooManyDigipeaters,
                      QStringLiteral("At most %1 digipeaters can be used").arg(Ax25Frame::maxDigipeaters));
    if (raw->size() > KissFrame::longestData)
        return Refuse(FrameTooLong, QStringLiteral("The text is too long to be sent"));
    std::string stream;
    KissFrame{.port = static_cast<std::uint8_t>(port - 1), .data = *raw}.AppendTo(stream);
    if (!m_client.Send({stream.data(), static_cast<qsizetype>(stream.size())}))
        return Refuse(EngineDoesNotRead, QStringLiteral("The KISS TNC does not take what is sent to it"));
    Hand({raw->data(), static_cast<qsizetype>(raw->size())}, port - 1, true);
}

void KissLink::Refuse(int number, const QString& text) {
    Q_EMIT StatusText(QString::number(number) + u' ' + text + QStringLiteral("\r\n"));
}
