#include "orbit/service/TrackedSatellites.h"

#include "foundation/settings/Settings.h"
#include "foundation/text/Text.h"
#include "orbit/elements/KepsFile.h"

#include <QDirIterator>
#include <QStringList>

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
    QDirIterator files(folder, QDir::Files);
    while (!AllFound() && files.hasNext()) {
        const QString path = files.next();
        if (files.fileInfo().isFile()) // no pipe, which would wait for ever
            FindInFile(path);
    }
}

bool TrackedSatellites::AllFound() const {
    return std::ranges::all_of(m_satellites, &TrackedSatellite::blnFound);
}

void TrackedSatellites::FindInFile(const QString& path) {
    KepsFile::ForEachGroup(path, [this](const KepsGroup& group) {
        for (TrackedSatellite& satellite : m_satellites) {
            const QByteArray number = satellite.strObjNum.toUtf8();
            if (!satellite.blnFound && group.number2 == number && group.number1.startsWith(number)) {
                satellite.strName = group.name;
                satellite.blnFound = true;
            }
        }
        return !AllFound();
    });
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
