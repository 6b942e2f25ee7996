#pragma once

#include "station/terminal/Beacons.h"

#include <QStringList>

#include <optional>

class QObject;
class UnprotoLink;
class mb;

/// The address fields as they stand at the moment of sending.
struct AddressFields {
    QString to;
    QString via;
    QString port;
};

/// Sends lines and beacons, or tells the user why not.
class Transmitter {
public:
    Transmitter(const Station& station, UnprotoLink& link, const mb& messages, const ProgramVersion& version);

    /// The window over which messages appear from now on, or none.
    void SetOwner(QObject* owner) { m_owner = owner; }

    /// The symbol that the beacons show from now on.
    void SetSymbol(const AprsSymbol& symbol) { m_symbol = symbol; }

    /// Sends texts, in order, to `destination` or, without one, to the program's own. Refuses without
    /// callsign or destination; without a connection it warns, once, and sends all the same: the link
    /// decides.
    void TransmitText(const QStringList& texts, const AddressFields& fields,
                      const std::optional<QString>& destination = {}) const;

    void SendPosition(const AddressFields& fields) const;
    void SendLocator(const AddressFields& fields) const;

private:
    void SendBeacon(const QString& text, const AddressFields& fields) const;
    void Say(const QString& text) const;

    const Station& m_station;
    UnprotoLink& m_link;
    const mb& m_messages;
    AprsSymbol m_symbol;
    QString m_strUivDest;
    QObject* m_owner = nullptr;
};
