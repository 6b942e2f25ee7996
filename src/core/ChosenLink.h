#pragma once

#include "link/agwpe/AgwLink.h"
#include "link/kiss/KissLink.h"

class KissSettings;

/// The station's way to the radio: one of two links, whichever the user has chosen, for those who need not
/// know which.
class ChosenLink : public QObject, public UnprotoLink {
    Q_OBJECT
public:
    /// All must outlive this object.
    ChosenLink(const AgwSettings& agwSettings, const KissSettings& kissSettings, const Clock& clock,
               QObject* parent = nullptr);

    /// Connects by the link that the settings name, and ends the other where that was used until now.
    void Connect();

    /// Ends the connection or the attempt, and connects again.
    void Reconnect() { m_used->Reconnect(); }

    /// For the end of the program: ends connection and retries without a word.
    void Stop() { m_used->Stop(); }

    /// The link to a packet engine, used or not.
    AgwLink& Agw() { return m_agw; }

    /// The link to a KISS TNC, used or not.
    KissLink& Kiss() { return m_kiss; }

    /// As PacketLink has them, of the link in use.
    int RetryIn() const { return m_used->RetryIn(); }
    QString HostName() const { return m_used->HostName(); }

    bool blnConectedToAgw() const override { return m_used->blnConectedToAgw(); }
    int PortCount() const override { return m_used->PortCount(); }
    void SendUnproto(qint16 port, const QString& source, const QString& destination,
                     const QString& data) override;

Q_SIGNALS:
    /// As PacketLink has them.
    void StatusText(const QString& text);
    void MonitorEnabled(bool enabled);
    void Heard(const HeardFrame& frame);

private:
    const KissSettings& m_kissSettings;
    AgwLink m_agw;
    KissLink m_kiss;
    PacketLink* m_used = &m_agw;
};
