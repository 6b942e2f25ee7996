#pragma once

#include "link/PacketLink.h"
#include "link/agwpe/FrameMarriage.h"
#include "link/agwpe/MERAGW.h"
#include "telemetry/frames/Ax25Heard.h"

class AgwSettings;
class Clock;

/// The link to a packet engine that speaks the AGWPE interface.
class AgwLink : public PacketLink {
    Q_OBJECT
public:
    /// `settings` and `clock` must outlive this object.
    AgwLink(const AgwSettings& settings, const Clock& clock, QObject* parent = nullptr);

    /// The client, for those who follow its events.
    MERAGW& Client() { return m_client; }

    /// Reconnect, by the system's own name.
    void AgwReconnect() { Reconnect(); }

    /// Whether frames are to come with their raw bytes too, as far as the engine gives them.
    void SetWantsRawFrames(bool wants) { m_client.SetWantsRawFrames(wants); }

    int PortCount() const override { return m_client.PortCount(); }
    QString HostName() const override { return m_client.Host(); }

    /// Sends the data in Windows-1252. What cannot be sent is reported by ShowLinkError.
    void SendUnproto(qint16 port, const QString& source, const QString& destination,
                     const QString& data) override;

    /// Writes the client's last error, number and text, as a status line.
    void ShowLinkError();

protected:
    void Open() override;
    void Close() override;

private:
    void HandleMonitoring(QByteArrayView data, qint16 kind);
    void TellMonitored(const HeardFrame& frame);
    void HandleRawFrame(QByteArrayView raw, qint16 port);
    void AwaitMonitored();
    void HandlePortInformation(const QStringList& descriptions);

    const AgwSettings& m_settings;
    const Clock& m_clock;
    MERAGW m_client;
    FrameMarriage m_marriage;
    Ax25Heard m_rawReader;
    QTimer m_timRaw; // until a raw frame has waited long enough
};
