#include "orbit/service/TrackedSatellites.h"

#include "foundation/settings/Settings.h"
#include "foundation/text/Text.h"
#include "orbit/elements/ElementFile.h"

#include <QFile>

#include <algorithm>

namespace {

constexpr qint16 updateInterval = 10;

} // namespace

TrackedSatellites::TrackedSatellites() {
    m_satellites[0].strBaseName = QStringLiteral("QIRAN");
    m_satellites[1].strBaseName = QStringLiteral("ISS");
}

void TrackedSatellites::LoadSettings(clsIni& ini) {
    m_satellites[0].strObjNum = Settings::Read(ini, Settings::qiranObjNum);
    m_satellites[1].strObjNum = Settings::Read(ini, Settings::issObjNum);
    setIntObjIndex(Text::LeadingNumber(Settings::Read(ini, Settings::objIndex)));
    for (TrackedSatellite& satellite : m_satellites)
        satellite.intInterval = updateInterval;
}

void TrackedSatellites::SaveSettings(clsIni& ini) const {
    Settings::Save(ini, Settings::objIndex, QString::number(m_intObjIndex));
}

void TrackedSatellites::setIntObjIndex(double intObjIndex) {
    m_intObjIndex = Text::RoundToInt16(intObjIndex) == 1 ? 1 : 0;
}

QString TrackedSatellites::DisplayName() const {
    const QString& base = Selected().strBaseName;
    const QString& name = Selected().strName;
    const QString upper = name.toUpper();
    const bool saysNoMore = m_intObjIndex == 0 ? upper == base : upper.startsWith(base);
    return name.isEmpty() || saysNoMore ? base : base + QStringLiteral(" (") + name + u')';
}

void TrackedSatellites::FindInKeps(const QString& folder) {
    for (TrackedSatellite& satellite : m_satellites)
        satellite.blnFound = false;
    const std::string path = QFile::encodeName(folder).toStdString();
    for (const std::string& file : orbitmath::ElementFilesIn(path).value_or(std::vector<std::string>())) {
        if (AllFound())
            return;
        FindInFile(path, file);
    }
}

bool TrackedSatellites::AllFound() const {
    return std::ranges::all_of(m_satellites, &TrackedSatellite::blnFound);
}

void TrackedSatellites::FindInFile(const std::string& folder, const std::string& file) {
    orbitmath::ReadElementFile(folder + '/' + file, [&](const orbitmath::ElementRecord& record) {
        for (TrackedSatellite& satellite : m_satellites) {
            if (satellite.blnFound || !record.IsGroupOf(satellite.strObjNum.toStdString()))
                continue;
            satellite.strName = Text::FromBytes(record.nameLine);
            satellite.blnFound = true;
            const auto* fault = std::get_if<orbitmath::ElementFault>(&record.content);
            satellite.strFault =
                fault == nullptr ? QString()
                                 : QFile::decodeName(QByteArray::fromStdString(file)) + QStringLiteral(", ") +
                                       QString::fromStdString(orbitmath::FaultText(record, *fault));
        }
        return !AllFound();
    });
}

QStringList TrackedSatellites::UntrackedMessages(const clsSats& cSats) const {
    QStringList messages;
    for (const TrackedSatellite& satellite : m_satellites) {
        if (!satellite.blnFound)
            continue;
        const QString reason = cSats.ElementsOf(satellite.strObjNum)
                                   ? cSats.WhyNoPosition(satellite.strObjNum)
                                   : satellite.strFault;
        if (!reason.isEmpty())
            messages.append(
                QStringLiteral("*** %1 cannot be tracked - %2\r\n").arg(satellite.strBaseName, reason));
    }
    return messages;
}

QString TrackedSatellites::NoKepsMessage() const {
    QStringList names;
    for (const TrackedSatellite& satellite : m_satellites) {
        if (!satellite.blnFound)
            names.append(satellite.strBaseName);
    }
    return names.isEmpty()
               ? QString()
               : QStringLiteral("No Keps found for ") + names.join(QStringLiteral(" and ")) + u'.';
}

bool TrackedSatellites::Tick(bool forced) {
    TrackedSatellite& satellite = Selected();
    ++satellite.intTicks;
    if (!forced && satellite.intTicks < satellite.intInterval)
        return false;
    satellite.intTicks = 0;
    return true;
}
