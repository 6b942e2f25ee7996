#include "orbit/map/MapLayers.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr double searchAgain = 1.0 / 24; // days, where there was no pass
constexpr double step = 15 / secondsPerDay;

std::vector<MapGeometry::GeoPoint> WayOf(const clsSats& cSats, const QString& object, const SatPass& pass) {
    const double length = pass.setUtc - pass.riseUtc;
    const int steps = static_cast<int>(std::clamp(length / step, 1.0, MapLayers::mostPassPoints - 1.0));
    std::vector<MapGeometry::GeoPoint> way;
    for (int k = 0; k <= steps; ++k)
        if (const auto position = cSats.PositionAt(object, pass.riseUtc + length * k / steps))
            way.push_back({position->dblLong, position->dblLat});
    return way;
}

} // namespace

MapLayers::MapLayers(const clsSats& cSats, const TrackedSatellites& satellites,
                     PassSteps::PlaceOfStation placeOfStation)
    : m_cSats(cSats)
    , m_satellites(satellites)
    , m_placeOfStation(std::move(placeOfStation)) {}

MapOverlay MapLayers::At(DateTime utc) {
    MapOverlay overlay;
    if (IsShown(MapLayer::Night))
        overlay.night = std::floor(utc * minutesPerDay) / minutesPerDay;
    const std::optional<PassSteps::Place> place = m_placeOfStation();
    if (IsShown(MapLayer::Station) && place)
        overlay.station = MapGeometry::GeoPoint{place->longitude, place->latitude};
    if (IsShown(MapLayer::Other)) {
        const TrackedSatellite& other = m_satellites.At(m_satellites.intObjIndex() == 0 ? 1 : 0);
        overlay.other = GroundTrack::Of(m_cSats, other.strObjNum, utc);
    }
    const QString& object = m_satellites.Selected().strObjNum;
    const auto elements = IsShown(MapLayer::Pass) && place ? m_cSats.ElementsOf(object) : std::nullopt;
    if (elements) {
        const Question question{object, *place, elements->epochUtc};
        if (question != m_question || !HoldsAt(utc)) {
            m_question = question;
            FindPass(utc);
        }
        overlay.passOver = m_passOver;
    }
    return overlay;
}

bool MapLayers::HoldsAt(DateTime utc) const {
    return utc >= m_searchedAt && utc < (m_pass ? m_pass->setUtc : m_searchedAt + searchAgain);
}

void MapLayers::FindPass(DateTime utc) {
    m_searchedAt = utc;
    m_pass = PassSteps(m_cSats, m_question.object, m_question.place).PresentOrNext(utc);
    m_passOver.clear();
    if (m_pass)
        m_passOver = WayOf(m_cSats, m_question.object, *m_pass);
}
