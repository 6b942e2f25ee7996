#include "cli/commands/Sky.h"

#include "cli/output/Console.h"
#include "cli/table/Options.h"
#include "foundation/settings/ProgramFolder.h"
#include "foundation/settings/Settings.h"
#include "foundation/text/Text.h"
#include "orbit/service/KVRSatLib.h"
#include "station/identity/Station.h"

#include <QFile>

#include <map>

namespace {

std::optional<PlaceOnEarth> PlaceOf(const Session& session) {
    if (const std::optional<PlaceOnEarth> asked = session.call.Get<PlaceOnEarth>(Options::at))
        return asked;
    clsIni ini(session.folder.IniFile());
    Station station(ini);
    station.Peek();
    return station.PositionKnown() ? std::optional(PlaceOnEarth{station.dblLat(), station.dblLong()})
                                   : std::nullopt;
}

QString Stored(const Session& session, const Setting& setting) {
    return Settings::Peek(clsIni(session.folder.IniFile()), setting);
}

bool IsNumber(const QString& text, std::uint32_t number) {
    return text.toUInt() == number;
}

} // namespace

Sky::Sky(const Session& session)
    : m_session(session)
    , m_asked(session.call.Get<QString>(Options::satellite).value_or(QStringLiteral("QIRAN")))
    , m_qiran(Stored(session, Settings::qiranObjNum))
    , m_iss(Stored(session, Settings::issObjNum))
    , m_library(new KVRSatLib([this](const std::string& line) {
        m_damage.append(Text::FromBytes(QByteArray::fromStdString(line)));
    }))
    , m_sats(std::unique_ptr<OrbitLibrary>(m_library), session.clock)
    , m_place(PlaceOf(session)) {
    m_sats.setBlnLocalTime(session.call.Has(Options::local));
    m_sats.setStrKeplerPath(session.folder.KepsFolder());
    if (m_place) {
        m_sats.setDblObsLat(m_place->latitude);
        m_sats.setDblObsLong(m_place->longitude);
    }
}

Satellite Sky::Named(const ElementSource& source) const {
    const QString number = QString::number(source.number);
    Satellite satellite{.name = Text::FromBytes(QByteArray::fromStdString(source.name)),
                        .object = number,
                        .number = source.number};
    if (IsNumber(m_qiran, source.number))
        satellite.name = QStringLiteral("QIRAN");
    else if (IsNumber(m_iss, source.number))
        satellite.name = QStringLiteral("ISS");
    else if (satellite.name.isEmpty())
        satellite.name = number;
    return satellite;
}

std::vector<Satellite> Sky::Satellites() const {
    std::map<std::uint32_t, Satellite> found;
    if (AllAreAsked()) {
        m_sats.ForEachElementSet(
            [&](const ElementSource& source) { found.try_emplace(source.number, Named(source)); });
    } else {
        const QString object = m_asked == u"QIRAN" ? m_qiran : m_asked == u"ISS" ? m_iss : m_asked;
        if (const std::optional<ElementSource> source = m_sats.ElementsOf(object))
            found.emplace(source->number, Named(*source));
    }
    std::vector<Satellite> satellites;
    satellites.reserve(found.size());
    for (const auto& [number, satellite] : found)
        satellites.push_back(satellite);
    if (satellites.empty()) {
        for (const QString& line : m_damage)
            m_session.console.Say(line);
        m_session.console.Say(
            QStringLiteral("there are no orbital elements%1 in %2; 'qirandecode-cli keps fetch' fetches some")
                .arg(AllAreAsked() ? QString() : QStringLiteral(" of ") + m_asked,
                     m_session.folder.KepsFolder()));
    }
    return satellites;
}

void Sky::SayLost(const std::vector<Satellite>& satellites, DateTime utc) const {
    if (satellites.empty())
        return;
    const QString others = satellites.size() > 1
                               ? QStringLiteral(", and %1 more like it").arg(satellites.size() - 1)
                               : QString();
    const std::string why = m_library->WhyNoPosition(satellites.front().object.toStdString(), utc);
    m_session.console.Say(
        QStringLiteral("%1 cannot be tracked - %2%3")
            .arg(satellites.front().name, QFile::decodeName(QByteArray::fromStdString(why)), others));
}
