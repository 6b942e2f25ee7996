#pragma once

#include "link/TcpClient.h"
#include "telemetry/frames/MonitoredFrame.h"

#include <QStringList>

class AgwFrameReader;
struct AgwFrame;

/// The client of a packet engine's TCP interface, with the events of TcpClient.
class MERAGW : public TcpClient {
    Q_OBJECT
public:
    explicit MERAGW(QObject* parent = nullptr);

    // Set before Connect; a connection keeps the values that it began with.
    void SetHost(const QString& host) { m_host = host; }
    void SetPort(qint16 port) { m_port = port; }
    void SetLoginId(const QString& loginId) { m_loginId = loginId; } ///< empty: no log-in
    void SetPassword(const QString& password) { m_password = password; }
    const QString& Host() const { return m_host; }
    qint16 Port() const { return m_port; }
    const QString& LoginId() const { return m_loginId; }
    const QString& Password() const { return m_password; }

    /// Opens the connection, logs in when there is a login id, asks version and ports, switches monitoring
    /// on. Ends a connection or an attempt that there is.
    void Connect();

    /// Whether the engine is asked for raw frames too, now and at every connection; it is not, unless told.
    void SetWantsRawFrames(bool wants);

    /// Radio ports that the engine reported; 0 while it has reported none.
    int PortCount() const { return IsConnected() ? m_portCount : 0; }

    /// Sends one UI frame. `port` counts from 1; `destination` is the destination callsign and behind a blank
    /// the digipeaters, separated by commas (none is fine). False, with the last error set, when it cannot be
    /// sent.
    bool SendUnproto(qint16 port, const QString& source, const QString& destination, const QByteArray& data);

    enum ErrorNumber : int {
        NoError = 0,
        NotConnected = 1,
        NoSuchPort = 2,
        BadCallsign = 3,
        TooManyDigipeaters = 4,
        FrameTooLong = 5,
        EngineDoesNotRead = 6,
        ConnectionFault = 7, ///< what Error reported
    };
    int LastErrorNumber() const { return m_lastErrorNumber; }
    const QString& LastErrorText() const { return m_lastErrorText; }

Q_SIGNALS:
    void PortInformation(const QStringList& descriptions); ///< one per radio port, in order
    void Version(const QString& version);

    /// A frame of a connection or one that the engine sent itself; `kind` is a DisplayKind. The view holds as
    /// long as the call.
    void Monitoring(QByteArrayView data, qint16 kind);

    /// A UI frame that the engine heard.
    void FrameArrival(const MonitoredFrame& frame);

    /// A frame that the engine heard, without flags and checksum; `port` counts from 1. The view holds as
    /// long as the call.
    void RawFrame(QByteArrayView raw, qint16 port);

private:
    void AskEngine();
    void ToggleRaw();
    void Receive(AgwFrameReader& reader, QByteArrayView bytes, const bool& isAlive);
    void Dispatch(const AgwFrame& frame);
    void ReportPorts(QByteArrayView data);
    void ReportVersion(QByteArrayView data);
    bool Refuse(ErrorNumber number, const QString& text);
    void SetError(ErrorNumber number, const QString& text);

    QString m_host;
    qint16 m_port = 8000;
    QString m_loginId;
    QString m_password;
    bool m_wantsRawFrames = false;
    bool m_areRawFramesOn = false; // over this connection
    int m_portCount = 0;
    int m_lastErrorNumber = NoError;
    QString m_lastErrorText;
};
