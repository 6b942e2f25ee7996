#include "station/terminal/Transmitter.h"

#include "foundation/messages/mb.h"
#include "link/UnprotoLink.h"
#include "station/identity/FieldRules.h"
#include "station/identity/Station.h"

Transmitter::Transmitter(const Station& station, UnprotoLink& link, const mb& messages,
                         const ProgramVersion& version)
    : m_station(station)
    , m_link(link)
    , m_messages(messages)
    , m_strUivDest(Beacons::strUivDest(version)) {}

void Transmitter::TransmitText(const QStringList& texts, const AddressFields& fields,
                               const std::optional<QString>& destination) const {
    const QString to = destination.value_or(m_strUivDest);
    if (m_station.strCallsign().isEmpty()) {
        Say(QStringLiteral("To be able to transmit, you must input your callsign in 'Station Information'."));
        return;
    }
    if (to.isEmpty()) {
        Say(QStringLiteral("To be able to transmit, you must put a valid AX25 callsign or alias in 'To'."));
        return;
    }
    const std::optional<qint16> port = FieldRules::PortOf(fields.port);
    if (!port) {
        m_messages.MessageBox(m_owner, FieldRules::PortMessage(m_link.PortCount()), MessageStyle::Critical);
        return;
    }
    if (!m_link.blnConectedToAgw())
        Say(QStringLiteral("To be able to transmit, you must be connected to AGWPE."));
    for (const QString& text : texts)
        m_link.SendUnproto(*port, m_station.strCallsign(), to + u' ' + fields.via, text + u'\r');
}

void Transmitter::SendPosition(const AddressFields& fields) const {
    SendBeacon(Beacons::Position(m_station, m_symbol), fields);
}

void Transmitter::SendLocator(const AddressFields& fields) const {
    SendBeacon(Beacons::Locator(m_station, m_symbol), fields);
}

void Transmitter::SendBeacon(const QString& text, const AddressFields& fields) const {
    if (text.isEmpty())
        Say(QStringLiteral("To be able to transmit a beacon, you must input your latitude and longitude in "
                           "'Station Information'."));
    else
        TransmitText({text}, fields);
}

void Transmitter::Say(const QString& text) const {
    m_messages.MessageBox(m_owner, text, MessageStyle::Information);
}
