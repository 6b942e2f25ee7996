#pragma once

#include "orbit/service/clsSats.h"

#include <functional>

/// From pass to pass of one satellite over one station.
class PassSteps {
public:
    struct Place {
        double latitude = 0;  ///< degrees, north positive
        double longitude = 0; ///< degrees, east positive
        bool operator==(const Place&) const = default;
    };

    /// Asked for the station's place; nothing while that is not known.
    using PlaceOfStation = std::function<std::optional<Place>()>;

    /// How far is searched, in days.
    static constexpr double farthest = 128;

    /// `cSats` outlives it and has the same station.
    PassSteps(const clsSats& cSats, QString object, Place place);

    /// The pass that is under way at a time, or the first one after it.
    std::optional<SatPass> PresentOrNext(DateTime utc) const;

    /// The neighbours of a pass.
    std::optional<SatPass> Earlier(const SatPass& pass) const;
    std::optional<SatPass> Later(const SatPass& pass) const;

    /// The pass that rises at a time, to two seconds.
    std::optional<SatPass> RisingAt(DateTime utc) const;

private:
    std::vector<SatPass> Search(DateTime from, double days, std::size_t most) const;
    std::optional<SatPass> UnderWay(DateTime utc) const;

    const clsSats& m_cSats;
    const QString m_object;
    const Place m_place;
};
