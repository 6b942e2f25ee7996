#pragma once

#include "link/PacketLink.h"
#include "link/TcpClient.h"
#include "link/kiss/KissAddress.h"
#include "telemetry/frames/Ax25Heard.h"
#include "telemetry/monitor/ClockText.h"

#include <functional>

class Clock;
class KissReader;

/// The link to a KISS TNC behind TCP: Dire Wolf's KISS port, soundmodem, a serial TNC behind a server. The
/// TNC keeps its own parameters: none are ever set.
class KissLink : public PacketLink {
    Q_OBJECT
public:
    /// `address` is asked at every attempt to connect. `clock`, which must outlive this object, tells when a
    /// frame arrives.
    KissLink(std::function<KissAddress()> address, const Clock& clock, QObject* parent = nullptr);

    /// All that the interface can name: a TNC does not tell which of them it has. 0 while there is no
    /// connection.
    int PortCount() const override { return m_client.IsConnected() ? 16 : 0; }

    QString HostName() const override { return m_host; }

    /// Sends the data in Windows-1252, and hands it on as transmitted, since a TNC echoes nothing. What
    /// cannot be sent is a status line, a number and a text.
    void SendUnproto(qint16 port, const QString& source, const QString& destination,
                     const QString& data) override;

protected:
    void Open() override;
    void Close() override;

private:
    void Receive(KissReader& reader, QByteArrayView bytes, const bool& isAlive);
    void Hand(QByteArrayView raw, int port, bool isTransmitted);
    void Refuse(int number, const QString& text);

    const std::function<KissAddress()> m_address;
    const Clock& m_clock;
    ClockText m_time;
    TcpClient m_client;
    QString m_host; // of the latest attempt
};
