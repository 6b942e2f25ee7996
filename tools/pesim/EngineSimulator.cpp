#include "pesim/EngineSimulator.h"

#include "telemetry/frames/Ax25Frame.h"
#include "telemetry/frames/ByteViews.h"

#include <QRandomGenerator>
#include <QTcpSocket>
#include <QTime>
#include <QtEndian>

#include <algorithm>

namespace {

// A program that does not read loses frames, as it would with a real engine.
constexpr qint64 maxUnsentBytes = 1 << 20;

// Free ports are looked for here: programs keep the port in 16 bits with a sign, and the system hands out
// ports above.
constexpr int firstFreePort = 10000;
constexpr int lastFreePort = 32767;
constexpr int maxAttempts = 1000;

QByteArray ControlPart(const AirFrame& heard) {
    const QByteArray length = QByteArray::number(heard.information.size());
    switch (heard.kind) {
    case AgwKind::MonitoredInformation:
        return "<I R0 S0 pid=F0 Len=" + length + " PF=0 >";
    case AgwKind::MonitoredSupervisory:
        return "<RR R0 PF=0 >";
    default:
        return "<UI pid=F0 Len=" + length + " PF=0 >";
    }
}

} // namespace

struct EngineSimulator::Connection {
    int number = 0;
    QTcpSocket* socket = nullptr; // a child of the server
    AgwFrameReader reader;
    QByteArray dribble; // waits to leave byte by byte
    bool monitoring = false;
    bool raw = false;
    bool closing = false; // nothing that it says is read any more
};

EngineSimulator::EngineSimulator(QObject* parent)
    : QObject(parent)
    , m_server(this)
    , m_dribbleTimer(this)
    , m_ports("1;Port1 simulated radio;") {
    connect(&m_server, &QTcpServer::newConnection, this, &EngineSimulator::TakeConnection);
    connect(&m_dribbleTimer, &QTimer::timeout, this, &EngineSimulator::Dribble);
}

EngineSimulator::~EngineSimulator() {
    for (const auto& connection : m_connections)
        connection->socket->disconnect(this);
}

bool EngineSimulator::Listen(quint16 port) {
    // A random one: a simulator that closes its port for a while must not lose it to the next one that
    // starts.
    const auto candidate = [port] {
        return port != 0 ? port
                         : static_cast<quint16>(
                               QRandomGenerator::global()->bounded(firstFreePort, lastFreePort + 1));
    };
    for (int attempt = 0; !m_server.listen(QHostAddress::LocalHost, candidate()); ++attempt) {
        if (port != 0 || attempt == maxAttempts)
            return false;
    }
    m_port = m_server.serverPort();
    return true;
}

void EngineSimulator::DropConnections() {
    const auto connections = std::exchange(m_connections, {});
    for (const auto& connection : connections) {
        connection->socket->disconnect(this);
        connection->socket->flush();
        connection->socket->close();
        connection->socket->deleteLater();
        Q_EMIT ConnectionClosed(connection->number);
    }
    Q_EMIT MonitoringChanged();
}

int EngineSimulator::MonitoringCount() const {
    return static_cast<int>(
        std::ranges::count_if(m_connections, [](const auto& connection) { return connection->monitoring; }));
}

void EngineSimulator::SetVersion(quint16 majorVersion, quint16 minorVersion) {
    m_majorVersion = majorVersion;
    m_minorVersion = minorVersion;
}

void EngineSimulator::TakeConnection() {
    while (QTcpSocket* socket = m_server.nextPendingConnection()) {
        auto& connection = m_connections.emplace_back(std::make_unique<Connection>());
        const int number = ++m_lastNumber;
        connection->number = number;
        connection->socket = socket;
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        connect(socket, &QTcpSocket::readyRead, this, [this, &held = *connection] { Read(held); });
        connect(socket, &QTcpSocket::disconnected, this, [this, number] { Forget(number); });
        Q_EMIT ConnectionOpened(number);
    }
}

void EngineSimulator::Forget(int number) {
    const auto found =
        std::ranges::find(m_connections, number, [](const auto& held) { return held->number; });
    if (found == m_connections.end())
        return;
    (*found)->socket->deleteLater();
    m_connections.erase(found);
    Q_EMIT ConnectionClosed(number);
    Q_EMIT MonitoringChanged();
}

void EngineSimulator::Read(Connection& connection) {
    AgwFrame frame;
    while (!connection.closing && connection.socket->bytesAvailable() > 0) {
        const std::span<char> room = connection.reader.Room();
        const qint64 count = connection.socket->read(room.data(), static_cast<qint64>(room.size()));
        if (count <= 0)
            return;
        connection.reader.Add(count);
        auto result = AgwFrameReader::Result::NeedMore;
        while (!connection.closing &&
               (result = connection.reader.Next(frame)) == AgwFrameReader::Result::Frame) {
            Q_EMIT FrameReceived(connection.number, frame.ToBytes());
            Answer(connection, frame);
        }
        if (result == AgwFrameReader::Result::BadLength)
            connection.closing = true;
    }
    if (connection.closing)
        connection.socket->disconnectFromHost(); // what was written still leaves; Forget follows
}

void EngineSimulator::Answer(Connection& connection, const AgwFrame& frame) {
    if (frame.kind == AgwKind::ToggleMonitoring) {
        connection.monitoring = !connection.monitoring;
        Q_EMIT MonitoringChanged();
    }
    if (frame.kind == AgwKind::ToggleRaw)
        connection.raw = !connection.raw;
    if (!m_mute) {
        QByteArray version(8, '\0');
        switch (frame.kind) {
        case AgwKind::Version:
            qToLittleEndian(m_majorVersion, version.data());
            qToLittleEndian(m_minorVersion, version.data() + 4);
            Send(connection, AgwFrame{.kind = AgwKind::Version, .data = version}.ToBytes());
            break;
        case AgwKind::Ports:
            Send(connection, AgwFrame{.kind = AgwKind::Ports, .data = m_ports + '\0'}.ToBytes());
            break;
        case AgwKind::SendUnproto:
        case AgwKind::SendUnprotoVia:
            AnswerUnproto(frame);
            break;
        default:
            break;
        }
    }
    if (m_closeAfter != 0 && frame.kind == m_closeAfter)
        connection.closing = true;
}

void EngineSimulator::AnswerUnproto(const AgwFrame& frame) {
    AirFrame sent{.port = frame.port + 1,
                  .kind = AgwKind::Transmitted,
                  .from = frame.callFrom.toByteArray(),
                  .to = frame.callTo.toByteArray(),
                  .via = {},
                  .information = frame.data.toByteArray()};
    if (frame.kind == AgwKind::SendUnprotoVia) {
        const qsizetype digipeaters = frame.data.isEmpty() ? 0 : static_cast<quint8>(frame.data.front());
        const qsizetype pathLength = 1 + digipeaters * AgwFrame::callFieldLength;
        if (digipeaters > AgwData::maxDigipeaters || frame.data.size() < pathLength)
            return;
        for (qsizetype i = 0; i < digipeaters; ++i)
            sent.via.append(AgwData::UpToNul(frame.data.sliced(1 + i * AgwFrame::callFieldLength,
                                                               AgwFrame::callFieldLength))
                                .toByteArray());
        sent.information.remove(0, pathLength);
    }
    SendHeard(sent);
}

QByteArray EngineSimulator::HeardBytes(const AirFrame& heard, const QByteArray& time) {
    QByteArray text = ' ' + QByteArray::number(heard.port) + ":Fm " + heard.from + " To " + heard.to;
    if (!heard.via.isEmpty())
        text += " Via " + heard.via.join(',');
    text += ' ' + ControlPart(heard) + '[' + time + "]\r";
    if (heard.kind != AgwKind::MonitoredSupervisory)
        text += heard.information + '\r';
    text += '\0';
    return AgwFrame{.port = static_cast<quint8>(heard.port - 1),
                    .kind = heard.kind,
                    .callFrom = heard.from,
                    .callTo = heard.to,
                    .data = text}
        .ToBytes();
}

QByteArray EngineSimulator::RawBytes(const AirFrame& heard) {
    Ax25Frame frame{.destination = {heard.to.toStdString()},
                    .source = {heard.from.toStdString()},
                    .information = ToView(heard.information)};
    for (const QByteArray& digipeater : heard.via)
        frame.digipeaters.push_back({digipeater.toStdString()});
    const std::optional<std::string> raw = frame.ToBytes();
    if (heard.kind != AgwKind::MonitoredUnproto || !raw)
        return {};
    return AgwFrame{.port = static_cast<quint8>(heard.port - 1),
                    .kind = AgwKind::Raw,
                    .callFrom = heard.from,
                    .callTo = heard.to,
                    .data = static_cast<char>((heard.port - 1) << 4) + QByteArray::fromStdString(*raw)}
        .ToBytes();
}

void EngineSimulator::SendHeard(const AirFrame& heard) {
    const QByteArray bytes =
        HeardBytes(heard, QTime::currentTime().toString(QStringLiteral("hh:mm:ss")).toLatin1());
    const QByteArray raw = RawBytes(heard);
    for (const auto& connection : m_connections) {
        if (connection->raw)
            Send(*connection, raw); // first, as real engines do
        if (connection->monitoring)
            Send(*connection, bytes);
    }
}

void EngineSimulator::SendRaw(const QByteArray& bytes) {
    for (const auto& connection : m_connections)
        Send(*connection, bytes);
}

void EngineSimulator::Send(Connection& connection, const QByteArray& bytes) {
    if (m_dribble || !connection.dribble.isEmpty()) {
        connection.dribble += bytes;
        m_dribbleTimer.start(0);
    } else if (connection.socket->bytesToWrite() + connection.dribble.size() < maxUnsentBytes) {
        connection.socket->write(bytes);
    }
}

void EngineSimulator::Dribble() {
    bool more = false;
    for (const auto& connection : m_connections) {
        if (connection->dribble.isEmpty())
            continue;
        connection->socket->write(connection->dribble.first(1));
        connection->socket->flush();
        connection->dribble.remove(0, 1);
        more = more || !connection->dribble.isEmpty();
    }
    if (!more)
        m_dribbleTimer.stop();
}
