#include "core/ChosenLink.h"

#include "link/kiss/KissSettings.h"

ChosenLink::ChosenLink(const AgwSettings& agwSettings, const KissSettings& kissSettings, const Clock& clock,
                       QObject* parent)
    : QObject(parent)
    , m_kissSettings(kissSettings)
    , m_agw(agwSettings, clock, this)
    , m_kiss([this] { return m_kissSettings.Address(); }, clock, this) {
    for (const PacketLink* link : {static_cast<PacketLink*>(&m_agw), static_cast<PacketLink*>(&m_kiss)}) {
        connect(link, &PacketLink::StatusText, this, &ChosenLink::StatusText);
        connect(link, &PacketLink::MonitorEnabled, this, &ChosenLink::MonitorEnabled);
        connect(link, &PacketLink::Heard, this, &ChosenLink::Heard);
    }
}

void ChosenLink::Connect() {
    PacketLink* const chosen =
        m_kissSettings.IsUsed() ? static_cast<PacketLink*>(&m_kiss) : static_cast<PacketLink*>(&m_agw);
    if (chosen != m_used)
        std::exchange(m_used, chosen)->Disconnect();
    m_used->Connect();
}

void ChosenLink::SendUnproto(qint16 port, const QString& source, const QString& destination,
                             const QString& data) {
    m_used->SendUnproto(port, source, destination, data);
}
