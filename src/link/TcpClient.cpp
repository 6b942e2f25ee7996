#include "link/TcpClient.h"

#include <QCoreApplication>
#include <QEvent>
#include <QNetworkProxy>
#include <QTcpSocket>

#include <system_error>
#include <utility>

#ifdef Q_OS_UNIX
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#endif

namespace {

constexpr int connectTimeoutMilliseconds = 20000;

// A turn of the event loop reads no more than this, so that a flood of frames does not stop the windows.
constexpr qint64 chunk = 128 * 1024;

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

} // namespace

struct TcpClient::Connection {
    QTcpSocket* socket; // a child of the client, deleted from the event loop
    QString host;
    Receiver receiver;
    std::unique_ptr<char[]> buffer = std::make_unique_for_overwrite<char[]>(chunk);
    bool established = false;
    bool alive = true;    // false once the client has let go of it
    bool reading = false; // its bytes are being handed out
    bool closed = false;  // the other end is gone; what it sent may still wait to be read
};

TcpClient::TcpClient(QObject* parent)
    : QObject(parent)
    , m_connectTimer(this) {
    m_connectTimer.setSingleShot(true);
    m_connectTimer.setInterval(connectTimeoutMilliseconds);
    connect(&m_connectTimer, &QTimer::timeout, this,
            [this] { Fail(QString::fromStdString(std::make_error_code(std::errc::timed_out).message())); });
}

TcpClient::~TcpClient() {
    Drop();
}

bool TcpClient::IsConnected() const {
    return m_connection && m_connection->established;
}

void TcpClient::Connect(const QString& host, quint16 port, Receiver receiver) {
    Disconnect();
    m_connection = std::make_shared<Connection>();
    m_connection->socket = new QTcpSocket(this);
    m_connection->host = host;
    m_connection->receiver = std::move(receiver);
    m_connectTimer.start();
    // From the event loop, because an attempt may fail at once.
    QMetaObject::invokeMethod(
        this, [this, connection = m_connection, port] { Open(connection, port); }, Qt::QueuedConnection);
}

void TcpClient::Open(const std::shared_ptr<Connection>& connection, quint16 port) {
    if (!connection->alive)
        return;
    QTcpSocket& socket = *connection->socket;
    socket.setProxy(QNetworkProxy::NoProxy);
    socket.setReadBufferSize(chunk);
    connect(&socket, &QTcpSocket::connected, this, &TcpClient::HandleConnected);
    connect(&socket, &QTcpSocket::readyRead, this, [this, connection] { Read(connection); });
    connect(&socket, &QTcpSocket::errorOccurred, this, &TcpClient::HandleClosed);
    connect(&socket, &QTcpSocket::disconnected, this, &TcpClient::HandleClosed);
    socket.connectToHost(connection->host, port);
}

void TcpClient::HandleConnected() {
    m_connectTimer.stop();
    m_connection->established = true;
    KeepAlive(*m_connection->socket);
    const QString host = m_connection->host; // whoever hears of it may end the connection
    Q_EMIT Connected(host);
}

void TcpClient::Read(const std::shared_ptr<Connection>& connection) {
    // The receiver may run an event loop of its own; its bytes must not move meanwhile.
    if (connection->reading)
        return;
    connection->reading = true;
    while (connection->alive) {
        const qint64 count = connection->socket->read(connection->buffer.get(), chunk);
        if (count <= 0)
            break;
        connection->receiver({connection->buffer.get(), count}, connection->alive);
    }
    connection->reading = false;
    if (connection->alive && connection->closed)
        Conclude();
}

void TcpClient::HandleClosed() {
    if (!m_connection)
        return;
    m_connection->closed = true;
    Read(std::shared_ptr(m_connection)); // what came before the end
}

void TcpClient::Conclude() {
    const QTcpSocket& socket = *m_connection->socket;
    if (!m_connection->established || socket.error() != QAbstractSocket::RemoteHostClosedError) {
        Fail(socket.errorString());
        return;
    }
    const QString host = Drop();
    Q_EMIT Disconnected(host);
}

void TcpClient::Fail(const QString& description) {
    if (!m_connection)
        return;
    const bool wasEstablished = m_connection->established;
    const QString host = Drop();
    Q_EMIT Error(description);
    if (wasEstablished)
        Q_EMIT Disconnected(host);
}

void TcpClient::Disconnect() {
    const bool wasEstablished = IsConnected();
    const QString host = Drop();
    if (wasEstablished)
        QMetaObject::invokeMethod(
            this, [this, host] { Q_EMIT Disconnected(host); }, Qt::QueuedConnection);
}

void TcpClient::DisconnectNow() {
    Disconnect();
    // Only the client's own events run here: a turn of the whole event loop could close the window that
    // called.
    QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
}

QString TcpClient::Drop() {
    m_connectTimer.stop();
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

bool TcpClient::Send(QByteArrayView bytes) {
    if (!IsConnected())
        return false;
    QTcpSocket& socket = *m_connection->socket;
    if (socket.bytesToWrite() + bytes.size() > maxUnsentBytes)
        return false;
    socket.write(bytes.data(), bytes.size());
    return true;
}
