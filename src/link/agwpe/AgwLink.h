#pragma once

#include "link/UnprotoLink.h"
#include "link/agwpe/MERAGW.h"

#include <QTimer>

class AgwSettings;

/// The program's link to the packet engine: connects, connects again after a loss, and puts what happens into
/// words for the monitor.
class AgwLink : public QObject, public UnprotoLink {
    Q_OBJECT
public:
    /// `settings` must outlive this object.
    explicit AgwLink(const AgwSettings& settings, QObject* parent = nullptr);

    /// The client, for those who take its frames.
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
    void StatusText(const QString& text); ///< lines for the monitor, each ended by CR LF; DisplayKind::Status
    void MonitorEnabled(bool enabled);    ///< whether the monitor pane is to be enabled

private:
    void HandlePortInformation(const QStringList& descriptions);
    void HandleConnected(const QString& host);
    void HandleDisconnected(const QString& host);
    void HandleError(const QString& description);
    QString AnnounceRetry();

    const AgwSettings& m_settings;
    MERAGW m_client;
    QTimer m_timRetry;
    bool m_blnConectedToAgw = false;
    bool m_reconnecting = false; // while AgwReconnect closes the old connection
};
