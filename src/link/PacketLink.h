#pragma once

#include "link/UnprotoLink.h"
#include "telemetry/frames/HeardFrame.h"

#include <QObject>
#include <QTimer>

/// The program's link to a packet engine, whatever the engine speaks: connects, connects again after a loss,
/// puts what happens into words for the monitor, and hands on what is heard.
class PacketLink : public QObject, public UnprotoLink {
    Q_OBJECT
public:
    /// Connects with the settings as they are now. A retry that was waiting is given up for this attempt.
    void Connect();

    /// Ends the connection and connects again with the settings as they are now. The old connection's end is
    /// reported before this returns, without the announcement of a retry. Nothing where the link is not in
    /// use.
    void Reconnect();

    /// Ends connection, attempt and retries: another link is used in this one's place. The connection's end
    /// is reported before this returns, without the announcement of a retry.
    void Disconnect();

    /// For the end of the program: ends connection and retries without a word.
    void Stop();

    /// Whether it connects, or tries to: from Connect on, until Disconnect or Stop.
    bool IsInUse() const { return m_isInUse; }

    bool blnConectedToAgw() const override { return m_isConnected; }

    /// Milliseconds until the next attempt; below 0 while none is waited for.
    int RetryIn() const { return m_timRetry.remainingTime(); }

    /// Where the link connects to, as the user named it.
    virtual QString HostName() const = 0;

    /// How long after a loss the next attempt follows, milliseconds; 30,000 unless set.
    void SetRetryInterval(int milliseconds) { m_timRetry.setInterval(milliseconds); }

Q_SIGNALS:
    void StatusText(const QString& text); ///< lines for the monitor, each ended by CR LF; DisplayKind::Status
    void MonitorEnabled(bool enabled);    ///< whether the monitor pane is to be enabled

    /// A frame that was heard, or sent by this station. Its views hold as long as the call.
    void Heard(const HeardFrame& frame);

protected:
    /// `name`: how the status lines call the link, "KISS" for example.
    explicit PacketLink(const QString& name, QObject* parent);

    /// Begins an attempt with the settings as they are now.
    virtual void Open() = 0;

    /// Ends connection or attempt, and has reported the end of a connection when it returns.
    virtual void Close() = 0;

    // What the engine's client reports.
    void HandleConnected(const QString& host);
    void HandleDisconnected(const QString& host);
    void HandleError(const QString& host, const QString& description);

private:
    QString AnnounceRetry();

    const QString m_start; // of the status lines
    QTimer m_timRetry;
    bool m_isInUse = false;
    bool m_isConnected = false;
    bool m_isClosing = false;  // while Disconnect does
    bool m_isStopping = false; // while Stop does
};
