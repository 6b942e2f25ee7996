#include "link/kiss/KissSettings.h"

#include "foundation/settings/Settings.h"

KissSettings::KissSettings(clsIni& ini)
    : m_ini(ini)
    , m_address{.host = QString::fromUtf16(Settings::kissHostAddress.defaultValue)} {}

void KissSettings::Load() {
    m_isUsed = Settings::IsOn(m_ini, Settings::kissUse);
    m_address = {.host = Settings::Peek(m_ini, Settings::kissHostAddress),
                 .port = static_cast<quint16>(Settings::NumberOf(m_ini, Settings::kissHostPort))};
}

void KissSettings::SetUsed(bool isUsed) {
    m_isUsed = isUsed;
    Settings::Save(m_ini, Settings::kissUse, clsIni::TrueOrFalse(isUsed));
}

void KissSettings::SetAddress(const KissAddress& address) {
    m_address = address;
    Settings::Save(m_ini, Settings::kissHostAddress, address.host);
    Settings::Save(m_ini, Settings::kissHostPort, QString::number(address.port));
}
