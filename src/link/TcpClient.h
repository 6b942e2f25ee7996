#pragma once

#include <QByteArrayView>
#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>

/// A TCP connection to a packet engine that is opened, read, kept alive and ended.
///
/// Every event arrives from the event loop, never inside Connect or Disconnect. An attempt to connect that
/// does not succeed ends in one Error. A connection that was established and ends raises Disconnected once,
/// whatever ended it; where the cause was a fault, Error comes first. An attempt that Disconnect gives up
/// says nothing.
class TcpClient : public QObject {
    Q_OBJECT
public:
    /// Takes what came over one connection; it lives as long as that connection, and as long as it runs. When
    /// `isAlive` turns false, the client has let go of the connection, and the rest of the bytes counts no
    /// more. It may run an event loop of its own: it is not called again meanwhile.
    using Receiver = std::function<void(QByteArrayView bytes, const bool& isAlive)>;

    explicit TcpClient(QObject* parent = nullptr);
    ~TcpClient() override;

    /// How long an attempt to connect may hang, milliseconds.
    void SetConnectTimeout(int milliseconds) { m_connectTimer.setInterval(milliseconds); }

    /// Ends a connection or an attempt that there is, and opens one.
    void Connect(const QString& host, quint16 port, Receiver receiver);

    /// Ends the connection or the attempt. Disconnected follows as an event posted to this object.
    void Disconnect();

    /// Disconnect, whose event comes before this returns.
    void DisconnectNow();

    /// Ends the connection as a fault of the network does: Error, then Disconnected, before this returns.
    void Fail(const QString& description);

    bool IsConnected() const;

    /// Sends all of `bytes`; false, and nothing is sent, where there is no connection or the other end has
    /// not read enough of what was sent before.
    bool Send(QByteArrayView bytes);

Q_SIGNALS:
    void Connected(const QString& host);
    void Disconnected(const QString& host);
    void Error(const QString& description);

private:
    struct Connection;

    void Open(const std::shared_ptr<Connection>& connection, quint16 port);
    void HandleConnected();
    void Read(const std::shared_ptr<Connection>& connection);
    void HandleClosed();
    void Conclude();
    QString Drop(); // lets go of the connection and answers its host, empty when there is none

    std::shared_ptr<Connection> m_connection; // none while idle
    QTimer m_connectTimer;
};
