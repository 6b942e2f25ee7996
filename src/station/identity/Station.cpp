#include "station/identity/Station.h"

#include "foundation/settings/Settings.h"

Station::Station(clsIni& cIni, QObject* parent)
    : QObject(parent)
    , m_cIni(cIni) {}

void Station::Load() {
    Take([this](const Setting& setting) { return Settings::Read(m_cIni, setting); });
}

void Station::Peek() {
    Take([this](const Setting& setting) { return Settings::Peek(m_cIni, setting); });
}

void Station::Take(const std::function<QString(const Setting&)>& valueOf) {
    m_latitude = valueOf(Settings::latitude);
    m_latitudeDegrees = QIRUtil::LatToDegrees(m_latitude);
    m_longitude = valueOf(Settings::longitude);
    m_longitudeDegrees = QIRUtil::LongToDegrees(m_longitude);
    m_locator = valueOf(Settings::locator);
    m_callsign = valueOf(Settings::callsign);
    m_comment = valueOf(Settings::comment);
    Q_EMIT Changed();
}

void Station::setStrCallsign(const QString& callsign) {
    Settings::Save(m_cIni, Settings::callsign, callsign);
    Change(m_callsign, callsign);
}

void Station::setStrComment(const QString& comment) {
    Settings::Save(m_cIni, Settings::comment, comment);
    Change(m_comment, comment);
}

void Station::setStrLoc(const QString& locator) {
    Settings::Save(m_cIni, Settings::locator, locator);
    Change(m_locator, locator);
}

void Station::setStrLat(const QString& latitude) {
    Settings::Save(m_cIni, Settings::latitude, latitude);
    m_latitudeDegrees = QIRUtil::LatToDegrees(latitude);
    Change(m_latitude, latitude);
}

void Station::setStrLong(const QString& longitude) {
    Settings::Save(m_cIni, Settings::longitude, longitude);
    m_longitudeDegrees = QIRUtil::LongToDegrees(longitude);
    Change(m_longitude, longitude);
}

void Station::Change(QString& member, const QString& value) {
    if (member == value)
        return;
    member = value;
    Q_EMIT Changed();
}
