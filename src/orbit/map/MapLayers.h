#pragma once

#include "orbit/map/GroundTrack.h"
#include "orbit/service/TrackedSatellites.h"
#include "orbit/skyview/PassSteps.h"

#include <array>
#include <optional>
#include <vector>

/// What the map may show beside the selected satellite.
enum class MapLayer { Night, Station, Other, Pass };

/// What of it is drawn; what is not shown or not known is empty.
struct MapOverlay {
    std::optional<DateTime> night; ///< day and night as they are at this UTC, a whole minute
    std::optional<MapGeometry::GeoPoint> station;
    GroundTrack other;                           ///< of the satellite that is not selected
    std::vector<MapGeometry::GeoPoint> passOver; ///< the way of the present or next pass, from rise to set
};

/// The layers over the map, each shown or not. A pass is searched for only when the last one found is over,
/// time has run back, or something that it depends on has changed.
class MapLayers {
public:
    static constexpr int mostPassPoints = 241;

    /// All outlive it.
    MapLayers(const clsSats& cSats, const TrackedSatellites& satellites,
              PassSteps::PlaceOfStation placeOfStation);

    void Show(MapLayer layer, bool isShown) { m_isShown[Index(layer)] = isShown; }
    bool IsShown(MapLayer layer) const { return m_isShown[Index(layer)]; }

    MapOverlay At(DateTime utc);

private:
    /// What a pass depends on.
    struct Question {
        QString object;
        PassSteps::Place place;
        DateTime epoch = 0; // of the elements
        bool operator==(const Question&) const = default;
    };

    static std::size_t Index(MapLayer layer) { return static_cast<std::size_t>(layer); }
    bool HoldsAt(DateTime utc) const;
    void FindPass(DateTime utc);

    const clsSats& m_cSats;
    const TrackedSatellites& m_satellites;
    const PassSteps::PlaceOfStation m_placeOfStation;
    std::array<bool, 4> m_isShown{};

    Question m_question;
    std::optional<SatPass> m_pass;
    DateTime m_searchedAt = 0;
    std::vector<MapGeometry::GeoPoint> m_passOver;
};
