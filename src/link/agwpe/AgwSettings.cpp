#include "link/agwpe/AgwSettings.h"

#include "foundation/settings/Settings.h"
#include "foundation/text/Text.h"

#include <algorithm>

namespace {

constexpr double leastPort = 1;
constexpr double greatestPort = 32767;
constexpr qint16 usualPort = 8000;

std::optional<qint16> PortOf(QStringView number) {
    const double value = Text::LeadingNumber(number);
    return value >= leastPort && value <= greatestPort ? Text::RoundToInt16(value) : std::nullopt;
}

/// A sign, digits and at most one ".", with at least one digit.
bool IsNumber(QStringView text) {
    if (text.startsWith(u'+') || text.startsWith(u'-'))
        text = text.sliced(1);
    const auto isDigit = [](QChar c) { return c >= u'0' && c <= u'9'; };
    const auto digits = std::count_if(text.begin(), text.end(), isDigit);
    const auto points = std::count(text.begin(), text.end(), u'.');
    return digits > 0 && points <= 1 && digits + points == text.size();
}

} // namespace

AgwSettings::AgwSettings(clsIni& ini)
    : m_ini(ini)
    , m_strAgwHost(QString::fromUtf16(Settings::hostAddress.defaultValue))
    , m_intAgwPort(usualPort) {}

void AgwSettings::Load() {
    m_strAgwHost = Settings::Read(m_ini, Settings::hostAddress);
    m_intAgwPort = PortOf(Settings::Read(m_ini, Settings::hostPort)).value_or(usualPort);
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
    const QStringView number = text.trimmed();
    return IsNumber(number) ? PortOf(number) : std::nullopt;
}
