#include "link/agwpe/AgwSettings.h"

#include "foundation/settings/Settings.h"
#include "link/PortText.h"

namespace {

constexpr qint16 usualPort = 8000;

std::optional<qint16> AsPort(std::optional<int> port) {
    return port ? std::optional(static_cast<qint16>(*port)) : std::nullopt;
}

} // namespace

AgwSettings::AgwSettings(clsIni& ini)
    : m_ini(ini)
    , m_strAgwHost(QString::fromUtf16(Settings::hostAddress.defaultValue))
    , m_intAgwPort(usualPort) {}

void AgwSettings::Load() {
    m_strAgwHost = Settings::Read(m_ini, Settings::hostAddress);
    m_intAgwPort = AsPort(LeadingPort(Settings::Read(m_ini, Settings::hostPort), Settings::highestEnginePort))
                       .value_or(usualPort);
    m_strAgwLoginId = Settings::Read(m_ini, Settings::loginId);
    m_strAgwPassword = Settings::Read(m_ini, Settings::password);
}

void AgwSettings::setStrAgwHost(const QString& host) {
    m_strAgwHost = host;
    Settings::Save(m_ini, Settings::hostAddress, host);
}

void AgwSettings::setIntAgwPort(qint16 port) {
    m_intAgwPort = port;
    Settings::Save(m_ini, Settings::hostPort, QString::number(port));
}

void AgwSettings::setStrAgwLoginId(const QString& loginId) {
    m_strAgwLoginId = loginId;
    Settings::Save(m_ini, Settings::loginId, loginId);
}

void AgwSettings::setStrAgwPassword(const QString& password) {
    m_strAgwPassword = password;
    Settings::Save(m_ini, Settings::password, password);
}

std::optional<qint16> AgwSettings::PortFromText(QStringView text) {
    return AsPort(::PortFromText(text, Settings::highestEnginePort));
}
