#include "link/agwpe/MERAGW.h"

#include "foundation/text/Text.h"
#include "link/agwpe/AgwFrame.h"
#include "link/agwpe/AgwFrameReader.h"
#include "telemetry/monitor/DisplayKind.h"

#include <QNetworkProxy>
#include <QTcpSocket>
#include <QtEndian>

#include <algorithm>
#include <optional>
#include <system_error>

#ifdef Q_OS_UNIX
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#endif

namespace {

constexpr int connectTimeoutMilliseconds = 20000;

// What the engine has not read yet stays within this.
constexpr qint64 maxUnsentBytes = 256 * 1024;

/// Notices within two minutes that the other end is gone, though nobody said so.
void KeepAlive(QTcpSocket& socket) {
    socket.setSocketOption(QAbstractSocket::KeepAliveOption, 1);
#ifdef TCP_KEEPIDLE
    const auto set = [&socket](int option, int value) {
        setsockopt(static_cast<int>(socket.socketDescriptor()), IPPROTO_TCP, option, &value, sizeof value);
    };
    set(TCP_KEEPIDLE, 60); // seconds of silence
    set(TCP_KEEPINTVL, 15);
    set(TCP_KEEPCNT, 4);
#ifdef TCP_USER_TIMEOUT
    set(TCP_USER_TIMEOUT, 120000); // milliseconds that something sent may stay unacknowledged
#endif
#endif
}

struct UnprotoPath {
    QByteArray destination;
    QByteArrayList digipeaters;
};

/// "DEST", "DEST DIGI,DIGI" or anything between, blanks wherever the user left them.
UnprotoPath SplitPath(const QString& text) {
    UnprotoPath path;
    const QString trimmed = text.trimmed();
    const qsizetype blank = trimmed.indexOf(u' ');
    path.destination = Text::ToBytes(blank < 0 ? trimmed : trimmed.first(blank));
    if (blank < 0)
        return path;
    for (const QString& digipeater :
         trimmed.sliced(blank).replace(u' ', u',').split(u',', Qt::SkipEmptyParts))
        path.digipeaters.append(Text::ToBytes(digipeater));
    return path;
}

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

struct MERAGW::Connection {
    QTcpSocket* socket; // a child of the client, deleted from the event loop
    QString host;
    AgwFrameReader reader;
    bool established = false;
    bool alive = true;    // false once the client has let go of it
    bool reading = false; // its frames are being handed out
    bool closed = false;  // the other end is gone; what it sent may still wait to be read
};

MERAGW::MERAGW(QObject* parent)
    : QObject(parent)
    , m_connectTimer(this) {
    m_connectTimer.setSingleShot(true);
    m_connectTimer.setInterval(connectTimeoutMilliseconds);
    connect(&m_connectTimer, &QTimer::timeout, this,
            [this] { Fail(QString::fromStdString(std::make_error_code(std::errc::timed_out).message())); });
}

MERAGW::~MERAGW() {
    Drop();
}

bool MERAGW::IsConnected() const {
    return m_connection && m_connection->established;
}

void MERAGW::Connect() {
    Disconnect();
    m_connection = std::make_shared<Connection>();
    m_connection->socket = new QTcpSocket(this);
    m_connection->host = m_host;
    m_connectTimer.start();
    // From the event loop, because an attempt may fail at once.
    QMetaObject::invokeMethod(
        this, [this, connection = m_connection] { Open(connection); }, Qt::QueuedConnection);
}

void MERAGW::Open(const std::shared_ptr<Connection>& connection) {
    if (!connection->alive)
        return;
    QTcpSocket& socket = *connection->socket;
    socket.setProxy(QNetworkProxy::NoProxy);
    // A turn of the event loop reads no more than this, so that a flood of frames does not stop the windows.
    socket.setReadBufferSize(AgwFrameReader::chunk);
    connect(&socket, &QTcpSocket::connected, this, &MERAGW::HandleConnected);
    connect(&socket, &QTcpSocket::readyRead, this, [this, connection] { Read(connection); });
    connect(&socket, &QTcpSocket::errorOccurred, this, &MERAGW::HandleClosed);
    connect(&socket, &QTcpSocket::disconnected, this, &MERAGW::HandleClosed);
    socket.connectToHost(connection->host, static_cast<quint16>(m_port));
}

void MERAGW::HandleConnected() {
    m_connectTimer.stop();
    m_connection->established = true;
    QTcpSocket& socket = *m_connection->socket;
    KeepAlive(socket);
    const auto ask = [&socket](char kind) { socket.write(AgwFrame{.kind = kind}.ToBytes()); };
    if (!m_loginId.isEmpty()) {
        const QByteArray data = AgwData::LogIn(Text::ToBytes(m_loginId), Text::ToBytes(m_password));
        socket.write(AgwFrame{.kind = AgwKind::LogIn, .data = data}.ToBytes());
    }
    ask(AgwKind::Version);
    ask(AgwKind::Ports);
    ask(AgwKind::ToggleMonitoring);
    Q_EMIT Connected(m_connection->host);
}

void MERAGW::Read(const std::shared_ptr<Connection>& connection) {
    // A receiver of a frame may run an event loop of its own; its views must not move meanwhile.
    if (connection->reading)
        return;
    connection->reading = true;
    AgwFrame frame;
    while (connection->alive) {
        const std::span<char> room = connection->reader.Room();
        const qint64 count = connection->socket->read(room.data(), static_cast<qint64>(room.size()));
        if (count <= 0)
            break;
        connection->reader.Add(count);
        auto result = AgwFrameReader::Result::Frame;
        while (connection->alive &&
               (result = connection->reader.Next(frame)) == AgwFrameReader::Result::Frame)
            Dispatch(frame);
        if (connection->alive && result == AgwFrameReader::Result::BadLength)
            Fail(QStringLiteral("The packet engine announced a frame that is too long"));
    }
    connection->reading = false;
    if (connection->alive && connection->closed)
        Conclude();
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

void MERAGW::HandleClosed() {
    if (!m_connection)
        return;
    m_connection->closed = true;
    Read(std::shared_ptr(m_connection)); // what came before the end
}

void MERAGW::Conclude() {
    const QTcpSocket& socket = *m_connection->socket;
    if (!m_connection->established || socket.error() != QAbstractSocket::RemoteHostClosedError) {
        Fail(socket.errorString());
        return;
    }
    const QString host = Drop();
    Q_EMIT Disconnected(host);
}

void MERAGW::Fail(const QString& description) {
    if (!m_connection)
        return;
    const bool wasEstablished = m_connection->established;
    const QString host = Drop();
    SetError(ConnectionFault, description);
    Q_EMIT Error(description);
    if (wasEstablished)
        Q_EMIT Disconnected(host);
}

void MERAGW::Disconnect() {
    const bool wasEstablished = IsConnected();
    const QString host = Drop();
    if (wasEstablished)
        QMetaObject::invokeMethod(
            this, [this, host] { Q_EMIT Disconnected(host); }, Qt::QueuedConnection);
}

QString MERAGW::Drop() {
    m_connectTimer.stop();
    m_portCount = 0;
    const std::shared_ptr<Connection> connection = std::move(m_connection);
    if (!connection)
        return {};
    connection->alive = false;
    QTcpSocket* socket = connection->socket;
    socket->disconnect(this);
    socket->flush();
    socket->abort();
    socket->deleteLater();
    return connection->host;
}

bool MERAGW::SendUnproto(qint16 port, const QString& source, const QString& destination,
                         const QByteArray& data) {
    if (!IsConnected())
        return Refuse(NotConnected, QStringLiteral("Not connected to AGWPE"));
    if (port < 1 || port > 256)
        return Refuse(NoSuchPort, QStringLiteral("There is no radio port %1").arg(port));
    const QByteArray from = Text::ToBytes(source.trimmed());
    const UnprotoPath path = SplitPath(destination);
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
    QTcpSocket& socket = *m_connection->socket;
    const AgwFrame frame{.port = static_cast<quint8>(port - 1),
                         .kind = direct ? AgwKind::SendUnproto : AgwKind::SendUnprotoVia,
                         .pid = AgwFrame::noLayer3,
                         .callFrom = from,
                         .callTo = path.destination,
                         .data = body};
    if (socket.bytesToWrite() + AgwFrame::headerLength + body.size() > maxUnsentBytes)
        return Refuse(EngineDoesNotRead, QStringLiteral("AGWPE does not take what is sent to it"));
    socket.write(frame.ToBytes());
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
