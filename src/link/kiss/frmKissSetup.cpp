#include "link/kiss/frmKissSetup.h"

#include "foundation/settings/Settings.h"
#include "link/PacketLink.h"
#include "link/kiss/KissSettings.h"

frmKissSetup::frmKissSetup(KissSettings& settings, PacketLink& link, const mb& messages, QWidget* parent)
    : EngineSetupDialog(QStringLiteral("frmKissSetup"), tr("KISS Setup"), Settings::highestPort, messages,
                        parent)
    , m_settings(settings)
    , m_link(link)
    , m_old(settings.Address()) {
    AddAddress(m_old.host, m_old.port);
    Complete();
}

void frmKissSetup::Store() {
    const KissAddress address{.host = EnteredHost(m_old.host),
                              .port = static_cast<quint16>(EnteredPort(m_old.port))};
    m_settings.SetAddress(address);
    // Host names are the same in any case.
    if (address.host.toUpper() != m_old.host.toUpper() || address.port != m_old.port)
        m_link.Reconnect();
}
