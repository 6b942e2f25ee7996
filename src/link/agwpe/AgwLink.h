#pragma once

#include "link/UnprotoLink.h"
#include "link/agwpe/MERAGW.h"

#include <QTimer>

class AgwSettings;
class Clock;
struct HeardFrame;

/// The program's link to the packet engine: connects, connects again after a loss, and puts what happens into
/// words for the monitor.
class AgwLink : public QObject, public UnprotoLink {
    Q_OBJECT
public:
    /// `settings` and `clock` must outlive this object.
    AgwLink(const AgwSettings& settings, const Clock& clock, QObject* parent = nullptr);

    /// The client, for those who follow its events.
    MERAGW& Client() { return m_client; }

    /// Connects with the settings as they are now. A retry that was waiting is given up for this attempt.
    void Connect();

    /// Ends the connection and connects again with the settings as they are now. The old connection's end is
    /// reported before this returns, without the announcement of a retry.
    void AgwReconnect();

    /// For the end of the program: ends connection and retries without a word.
    void Stop();

    bool blnConectedToAgw() const override { return m_blnConectedToAgw; }
    int PortCount() const override { return m_client.PortCount(); }

    /// Sends the data in Windows-1252. What cannot be sent is reported by ShowLinkError.
    void SendUnproto(qint16 port, const QString& source, const QString& destination,
                     const QString& data) override;

    /// Writes the client's last error, number and text, as a status line.
    void ShowLinkError();

    /// How long after a loss the next attempt follows, milliseconds; 30,000 unless set.
    void SetRetryInterval(int milliseconds) { m_timRetry.setInterval(milliseconds); }

Q_SIGNALS:
    void Heard(const HeardFrame& frame);  ///< any frame that the engine monitors; valid during the call
    void StatusText(const QString& text); ///< lines for the monitor, each ended by CR LF; DisplayKind::Status
    void MonitorEnabled(bool enabled);    ///< whether the monitor pane is to be enabled

private:
    void HandleMonitoring(QByteArrayView data, qint16 kind);
    void HandlePortInformation(const QStringList& descriptions);
    void HandleConnected(const QString& host);
    void HandleDisconnected(const QString& host);
    void HandleError(const QString& description);
    QString AnnounceRetry();

    const AgwSettings& m_settings;
    const Clock& m_clock;
    MERAGW m_client;
    QTimer m_timRetry;
    bool m_blnConectedToAgw = false;
    bool m_reconnecting = false; // while AgwReconnect closes the old connection
};
