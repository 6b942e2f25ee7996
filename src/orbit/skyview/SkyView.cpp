#include "orbit/skyview/SkyView.h"

#include "orbit/sky/Doppler.h"
#include "orbit/sky/Sun.h"
#include "orbit/skyview/SkyTexts.h"

#include <algorithm>
#include <utility>

using orbitmath::DopplerShift;
using orbitmath::FromGeodetic;
using orbitmath::Geodetic;
using orbitmath::LightAt;
using orbitmath::LookAngles;
using orbitmath::Observer;
using orbitmath::radiansPerDegree;
using orbitmath::Sun;

namespace {

/// Where there is no pass to wait for, how often it is searched again.
constexpr double searchAgain = 1.0 / 24;

SkyPoint PointOf(const SatPosition& position, DateTime utc) {
    return {utc, position.dblAz, position.dblEl};
}

template <class File>
void AddFaults(QStringList& lines, const QString& name, const File& file) {
    if (file.Faults().empty())
        return;
    const LineFault& first = file.Faults().front();
    const QString place = first.line > 0 ? QStringLiteral(", line %1").arg(first.line) : QString();
    const std::size_t others = file.Faults().size() - 1;
    lines += QStringLiteral("%1%2: %3").arg(name, place, first.reason) +
             (others > 0 ? QStringLiteral(" (and %1 more)").arg(others) : QString());
}

} // namespace

SkyView::SkyView(const clsSats& cSats, const TrackedSatellites& satellites, PlaceOfStation place,
                 SimulatedTime simulatedTime, const ProgramFolder& folder, HeardBetween heard)
    : m_cSats(cSats)
    , m_satellites(satellites)
    , m_placeOfStation(std::move(place))
    , m_simulatedTime(std::move(simulatedTime))
    , m_heardBetween(std::move(heard))
    , m_horizon(HorizonFile::Read(folder.File(QStringLiteral("horizon.txt"))))
    , m_frequencies(FrequenciesFile::Read(folder.File(QStringLiteral("frequencies.txt")))) {}

bool SkyView::IsStale(const Kept& kept, const QString& object, DateTime now) {
    if (kept.object != object || now < kept.searchedAt)
        return true;
    return kept.pass ? now >= kept.pass->setUtc : now >= kept.searchedAt + searchAgain;
}

void SkyView::Follow(Kept& kept, const QString& object) const {
    if (!IsStale(kept, object, m_now))
        return;
    kept = {.object = object, .pass = Steps(object).PresentOrNext(m_now), .path = {}, .searchedAt = m_now};
    if (kept.pass)
        kept.path = SkyPath::OfPass(m_cSats, object, *kept.pass);
    else if (const auto now = m_cSats.PositionAt(object, m_now); now && now->blnvisible)
        kept.path = SkyPath::OfDay(m_cSats, object, m_now);
}

void SkyView::Show(const SatPass& pass) {
    m_isFollowing = false;
    m_shown = {.object = Object(),
               .pass = pass,
               .path = SkyPath::OfPass(m_cSats, Object(), pass),
               .searchedAt = m_now};
    Refresh();
}

void SkyView::Refresh() {
    const std::optional<DateTime> simulated = m_simulatedTime();
    m_isSimulated = simulated.has_value();
    m_now = simulated.value_or(m_cSats.datGmtTime());
    if (const auto place = m_placeOfStation(); place != m_place) {
        m_place = place;
        Forget();
        return Refresh();
    }
    m_scene = {};
    m_rows.clear();
    if (!m_place)
        return;
    if (m_shown.object != Object())
        m_isFollowing = true;
    if (m_isFollowing)
        Follow(m_shown, Object());
    m_visible = m_horizon.Around().IsKnown()
                    ? m_shown.path.VisibleOver(m_horizon.Around(), m_cSats, m_shown.object)
                    : std::vector<SkySpan>();
    const std::optional<SatPosition> now = m_cSats.PositionAt(Object(), m_now);
    m_scene.tracks.push_back({m_satellites.Selected().strBaseName, m_shown.path, {}});
    if (now && now->blnvisible)
        m_scene.tracks.front().now = PointOf(*now, m_now);
    AddOther();
    PlaceSun();
    PlaceHeard();
    MakeRows();
}

void SkyView::Forget() {
    m_shown = {};
    m_other = {};
    m_isFollowing = true;
}

void SkyView::AddOther() {
    const TrackedSatellite& other = m_satellites.At(m_satellites.intObjIndex() == 0 ? 1 : 0);
    const std::optional<SatPosition> now = m_cSats.PositionAt(other.strObjNum, m_now);
    if (!now || !now->blnvisible || other.strObjNum == Object())
        return;
    Follow(m_other, other.strObjNum);
    m_scene.tracks.push_back({other.strBaseName, m_other.path, PointOf(*now, m_now)});
}

void SkyView::PlaceSun() {
    const LookAngles look =
        Observer(m_place->latitude, m_place->longitude).Look({Sun::At(m_now).OverEarth(), {}});
    if (look.elevation > 0)
        m_scene.sun = SkyPoint{m_now, look.azimuth / radiansPerDegree, look.elevation / radiansPerDegree};
}

// Frames are the first satellite's, whichever is selected.
void SkyView::PlaceHeard() {
    m_heard = 0;
    if (!m_heardBetween || m_satellites.intObjIndex() != 0 || !m_shown.pass)
        return;
    const std::vector<DateTime> times = m_heardBetween(m_shown.pass->riseUtc, m_shown.pass->setUtc);
    m_heard = times.size();
    for (std::size_t k = 0; k < std::min(times.size(), mostHeard); ++k)
        if (const auto position = m_cSats.PositionAt(Object(), times[k]))
            m_scene.heard.push_back(PointOf(*position, times[k]));
}

bool SkyView::StepEarlier() {
    const auto earlier = m_place && m_shown.pass ? Steps(Object()).Earlier(*m_shown.pass) : std::nullopt;
    if (earlier)
        Show(*earlier);
    return earlier.has_value();
}

bool SkyView::StepLater() {
    const auto later = m_place && m_shown.pass ? Steps(Object()).Later(*m_shown.pass) : std::nullopt;
    if (later)
        Show(*later);
    return later.has_value();
}

bool SkyView::ShowPassAt(DateTime riseUtc) {
    const auto found = m_place ? Steps(Object()).RisingAt(riseUtc) : std::nullopt;
    if (found)
        Show(*found);
    return found.has_value();
}

void SkyView::ShowPresent() {
    m_shown = {};
    m_isFollowing = true;
    Refresh();
}

void SkyView::MakeRows() {
    m_rows.push_back(Countdown());
    if (const auto position = m_cSats.PositionAt(Object(), m_now))
        AddValues(*position);
}

void SkyView::AddValues(const SatPosition& position) {
    const Geodetic place{position.dblLat * radiansPerDegree, position.dblLong * radiansPerDegree,
                         position.dblAltitude};
    m_rows.insert(
        m_rows.end(),
        {{QStringLiteral("Azimuth"), SkyTexts::Degrees(position.dblAz)},
         {QStringLiteral("Elevation"), SkyTexts::Degrees(position.dblEl)},
         {QStringLiteral("Range"), QString::number(position.dblRange, 'f', 0) + QStringLiteral(" km")},
         {QStringLiteral("Range rate"), SkyTexts::Speed(position.dblRangeRate)},
         {QStringLiteral("Altitude"), QString::number(position.dblAltitude, 'f', 0) + QStringLiteral(" km")},
         {QStringLiteral("Light"),
          SkyTexts::OfLight(LightAt(FromGeodetic(place), Sun::At(m_now).OverEarth()))}});
    if (m_horizon.Around().IsKnown() && m_shown.pass)
        m_rows.push_back({QStringLiteral("Visible"), VisibleText()});
    const TrackedSatellite& selected = m_satellites.Selected();
    if (m_heard > 0)
        m_rows.push_back({QStringLiteral("Heard"), m_heard == 1 ? QStringLiteral("1 frame")
                                                                : QStringLiteral("%1 frames").arg(m_heard)});
    for (const SatFrequency& frequency : m_frequencies.Of(selected.strBaseName, selected.strObjNum)) {
        const double shift = DopplerShift(position.dblRangeRate, frequency.megahertz * 1e6);
        m_rows.push_back({QStringLiteral("%1 %2").arg(frequency.name, SkyTexts::Shift(shift)),
                          SkyTexts::Megahertz(frequency.megahertz + shift / 1e6), true});
    }
}

SkyRow SkyView::Countdown() const {
    if (!m_shown.pass)
        return {QStringLiteral("Pass"),
                m_shown.path.points.empty() ? QStringLiteral("none") : QStringLiteral("always up"), true};
    const SatPass& pass = *m_shown.pass;
    if (m_now < pass.riseUtc)
        return {QStringLiteral("Rises in"), SkyTexts::Duration((pass.riseUtc - m_now) * secondsPerDay), true};
    if (!pass.sets)
        return {QStringLiteral("Sets"), QStringLiteral("not within a year"), true};
    if (m_now < pass.setUtc)
        return {QStringLiteral("Sets in"), SkyTexts::Duration((pass.setUtc - m_now) * secondsPerDay), true};
    return {QStringLiteral("Set before"), SkyTexts::Duration((m_now - pass.setUtc) * secondsPerDay), true};
}

QString SkyView::VisibleText() const {
    QStringList spans;
    for (const SkySpan& span : m_visible)
        spans += QStringLiteral("from %1 to %2").arg(TimeOfDay(span.from), TimeOfDay(span.to));
    return spans.isEmpty() ? QStringLiteral("not over your horizon") : spans.join(QStringLiteral(", "));
}

QString SkyView::TimeOfDay(DateTime utc) const {
    return FormatDateTime(m_cSats.ToDisplayTime(utc), u"hh:nn:ss");
}

QString SkyView::MinuteOfDay(DateTime utc) const {
    return FormatDateTime(m_cSats.ToDisplayTime(utc), u"hh:nn");
}

QString SkyView::TimeText() const {
    return FormatDateTime(m_cSats.ToDisplayTime(m_now), u"yyyy-mmm-dd hh:nn:ss") +
           (m_cSats.blnLocalTime() ? QStringLiteral(" local time") : QStringLiteral(" UTC")) +
           (m_isSimulated ? QStringLiteral(", simulated by the map") : QString());
}

QString SkyView::PassText() const {
    const QString name = m_satellites.DisplayName() + QStringLiteral(": ");
    if (!m_place)
        return QStringLiteral("Your position is not known. Enter it in Station Information.");
    if (!m_cSats.PositionAt(Object(), m_now))
        return name + QStringLiteral("there are no elements that tell where it is.");
    if (m_shown.path.points.empty())
        return name + QStringLiteral("no pass in the next %1 days.").arg(PassSteps::farthest);
    if (!m_shown.path.rise)
        return name + QStringLiteral("always above the horizon; its way of one day is drawn.");
    const SkyPath& path = m_shown.path;
    QString text = name + FormatDateTime(m_cSats.ToDisplayTime(path.rise->utc), u"yyyy-mmm-dd") +
                   QStringLiteral(", rises %1 at %2")
                       .arg(TimeOfDay(path.rise->utc), SkyTexts::Azimuth(path.rise->azimuth));
    if (path.culmination)
        text += QStringLiteral(", highest %1 at %2")
                    .arg(SkyTexts::Degrees(path.culmination->elevation), TimeOfDay(path.culmination->utc));
    if (path.set)
        text += QStringLiteral(", sets %1 at %2")
                    .arg(TimeOfDay(path.set->utc), SkyTexts::Azimuth(path.set->azimuth));
    return text;
}

QStringList SkyView::FileFaults() const {
    QStringList lines;
    AddFaults(lines, QStringLiteral("horizon.txt"), m_horizon);
    AddFaults(lines, QStringLiteral("frequencies.txt"), m_frequencies);
    return lines;
}
