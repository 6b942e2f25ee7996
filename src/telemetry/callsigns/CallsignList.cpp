#include "telemetry/callsigns/CallsignList.h"

#include "foundation/settings/Settings.h"
#include "foundation/settings/clsIni.h"
#include "foundation/text/Text.h"
#include "telemetry/frames/ByteViews.h"

#include <utility>

namespace {

QString SectionName() {
    return QString::fromUtf16(Settings::callsignsSection);
}

QList<clsCallsign> Defaults() {
    const QString sideA = QStringLiteral("A");
    const QString sideB = QStringLiteral("B");
    QList<clsCallsign> callsigns{{QStringLiteral("NODIGI"), sideA}, {QStringLiteral("XQ9ZZ"), sideA}};
    for (int ssid = 1; ssid <= 15; ++ssid)
        callsigns.append({QStringLiteral("XQ9ZZ-%1").arg(ssid), sideA});
    callsigns.append({QStringLiteral("QIRAN"), sideB});
    for (int ssid = 1; ssid <= 15; ++ssid)
        callsigns.append({QStringLiteral("QIRAN-%1").arg(ssid), ssid <= 2 ? sideA : sideB});
    return callsigns;
}

void Save(clsIni& ini, const QList<clsCallsign>& callsigns) {
    QList<std::pair<QString, QString>> values;
    values.reserve(callsigns.size());
    for (const clsCallsign& callsign : callsigns)
        values.append({callsign.strCallsign, callsign.strSide});
    ini.SaveSection(SectionName(), values);
}

QList<clsCallsign> Stored(const clsIni& ini) {
    QList<clsCallsign> callsigns;
    for (const auto& [key, value] : ini.LoadSection(SectionName()))
        callsigns.append({key, value});
    return callsigns;
}

} // namespace

void CallsignList::InitCallsigns() {
    Save(m_ini, Defaults());
}

void CallsignList::LoadCallsigns() {
    if (Stored(m_ini).isEmpty())
        InitCallsigns();
    PeekCallsigns();
}

void CallsignList::PeekCallsigns() {
    const QList<clsCallsign> callsigns = Stored(m_ini);
    Replace(callsigns.isEmpty() ? Defaults() : callsigns);
}

void CallsignList::setCCallsigns(const QList<clsCallsign>& callsigns) {
    Replace(callsigns);
    Save(m_ini, m_callsigns);
}

void CallsignList::Replace(QList<clsCallsign> callsigns) {
    m_callsigns = std::move(callsigns);
    m_first.clear();
    m_first.reserve(static_cast<std::size_t>(m_callsigns.size()));
    for (qsizetype i = 0; i < m_callsigns.size(); ++i)
        m_first.try_emplace(Text::ToBytes(m_callsigns[i].strCallsign).toStdString(), i);
}

const clsCallsign* CallsignList::Find(QByteArrayView callsign) const {
    const auto found = m_first.find(ToView(callsign));
    return found == m_first.end() ? nullptr : &m_callsigns[found->second];
}
