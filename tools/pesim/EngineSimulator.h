#pragma once

#include "link/agwpe/AgwFrameReader.h"

#include <QByteArrayList>
#include <QObject>
#include <QTcpServer>
#include <QTimer>

#include <memory>
#include <vector>

class QTcpSocket;

/// A frame as a packet engine monitors it.
struct AirFrame {
    int port = 1; ///< from 1
    char kind = AgwKind::MonitoredUnproto;
    QByteArray from;
    QByteArray to;
    QByteArrayList via;
    QByteArray information; ///< without the engine's own CR behind it
};

/// The engine's side of the packet engine interface, for tests and demonstrations. It listens on the loopback
/// address only.
class EngineSimulator : public QObject {
    Q_OBJECT
public:
    explicit EngineSimulator(QObject* parent = nullptr);
    ~EngineSimulator() override;

    /// Port 0 takes a free one up to 32767. False when the port cannot be had.
    bool Listen(quint16 port = 0);
    quint16 Port() const { return m_port; }

    /// Closes the port; connections stay.
    void StopListening() { m_server.close(); }
    void DropConnections();

    int ConnectionCount() const { return static_cast<int>(m_connections.size()); }
    int MonitoringCount() const; ///< connections that have switched monitoring on

    void SetVersion(quint16 majorVersion, quint16 minorVersion);
    void SetPorts(const QByteArray& text) { m_ports = text; } ///< without the NUL at its end

    void SetMute(bool mute) { m_mute = mute; }             ///< takes frames and answers nothing
    void SetDribble(bool dribble) { m_dribble = dribble; } ///< sends byte by byte
    void SetCloseAfter(char kind) { m_closeAfter = kind; } ///< closes having answered this kind; NUL: never

    /// Sends the frame to every connection that monitors; before it, as far as it is a UI frame with
    /// callsigns of AX.25, raw to every connection that has switched raw frames on.
    void SendHeard(const AirFrame& heard);

    /// Sends bytes to every connection.
    void SendRaw(const QByteArray& bytes);

    /// The monitored frame on the wire, as real engines write it; `time` is "hh:mm:ss".
    static QByteArray HeardBytes(const AirFrame& heard, const QByteArray& time);

    /// The raw frame on the wire; empty where SendHeard sends none.
    static QByteArray RawBytes(const AirFrame& heard);

Q_SIGNALS:
    void ConnectionOpened(int connection); ///< connections are counted from 1
    void ConnectionClosed(int connection);
    void FrameReceived(int connection, const QByteArray& frame); ///< header and data
    void MonitoringChanged();

private:
    struct Connection;

    void TakeConnection();
    void Read(Connection& connection);
    void Answer(Connection& connection, const AgwFrame& frame);
    void AnswerUnproto(const AgwFrame& frame);
    void Send(Connection& connection, const QByteArray& bytes);
    void Dribble();
    void Forget(int number);

    QTcpServer m_server;
    quint16 m_port = 0;
    QTimer m_dribbleTimer;
    std::vector<std::unique_ptr<Connection>> m_connections;
    int m_lastNumber = 0;
    quint16 m_majorVersion = 2005;
    quint16 m_minorVersion = 127;
    QByteArray m_ports;
    bool m_mute = false;
    bool m_dribble = false;
    char m_closeAfter = 0;
};
