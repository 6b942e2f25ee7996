#include "link/agwpe/frmAgwpeSetup.h"

#include "foundation/settings/Settings.h"
#include "link/agwpe/AgwLink.h"
#include "link/agwpe/AgwSettings.h"

#include <QLineEdit>

frmAgwpeSetup::frmAgwpeSetup(AgwSettings& settings, AgwLink& link, const mb& messages, QWidget* parent)
    : EngineSetupDialog(QStringLiteral("frmAgwpeSetup"), tr("AGWPE Setup"), Settings::highestEnginePort,
                        messages, parent)
    , m_settings(settings)
    , m_link(link)
    , m_oldHost(settings.strAgwHost())
    , m_oldPort(settings.intAgwPort())
    , m_oldLoginId(settings.strAgwLoginId())
    , m_oldPassword(settings.strAgwPassword()) {
    AddAddress(m_oldHost, m_oldPort);
    txtLoginId = AddField(QStringLiteral("LoginId"), tr("&Log-in Id"), longestText, m_oldLoginId);
    txtPassword = AddField(QStringLiteral("Password"), tr("Pass&word"), longestText, m_oldPassword);
    txtPassword->setEchoMode(QLineEdit::Password);
    Complete();
}

void frmAgwpeSetup::Store() {
    m_settings.setStrAgwHost(EnteredHost(m_oldHost));
    m_settings.setStrAgwPassword(Entered(*txtPassword, m_oldPassword));
    m_settings.setStrAgwLoginId(Entered(*txtLoginId, m_oldLoginId));
    m_settings.setIntAgwPort(static_cast<qint16>(EnteredPort(m_oldPort)));
    // Host names are the same in any case.
    if (m_settings.strAgwHost().toUpper() != m_oldHost.toUpper() ||
        m_settings.strAgwPassword() != m_oldPassword || m_settings.strAgwLoginId() != m_oldLoginId ||
        m_settings.intAgwPort() != m_oldPort)
        m_link.AgwReconnect();
}
