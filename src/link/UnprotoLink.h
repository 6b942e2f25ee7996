#pragma once

#include <QString>

/// The way out to the radio, as those see it who only want to send.
class UnprotoLink {
public:
    UnprotoLink() = default;
    UnprotoLink(const UnprotoLink&) = delete;
    UnprotoLink& operator=(const UnprotoLink&) = delete;
    virtual ~UnprotoLink() = default;

    /// True between the packet engine's "connected" and "disconnected" events.
    virtual bool blnConectedToAgw() const = 0;

    /// Radio ports that the packet engine reported; 0 while it has reported none.
    virtual int PortCount() const = 0;

    /// Hands one UI frame to the packet engine. `port` counts from 1; `destination` is the destination
    /// callsign, a blank, and the digipeaters separated by commas (possibly none).
    virtual void SendUnproto(qint16 port, const QString& source, const QString& destination,
                             const QString& data) = 0;
};
