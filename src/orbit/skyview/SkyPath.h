#pragma once

#include "orbit/service/clsSats.h"
#include "orbit/sky/Horizon.h"

#include <vector>

/// A direction in the sky at a time (UTC), degrees.
struct SkyPoint {
    DateTime utc = 0;
    double azimuth = 0;
    double elevation = 0;
};

/// A time from .. to, UTC.
struct SkySpan {
    DateTime from = 0;
    DateTime to = 0;
};

/// The way of a satellite across a station's sky.
struct SkyPath {
    static constexpr int mostPoints = 401;
    static constexpr int mostTicks = 24;
    static constexpr double longest = 1; ///< days that are drawn of a way that takes longer

    std::vector<SkyPoint> points; ///< evenly in time, both ends among them
    std::vector<SkyPoint>
        ticks; ///< on whole minutes of the clock, or on whole hours where there were too many
    std::optional<SkyPoint> rise; ///< none of the three for a satellite that neither rises nor sets
    std::optional<SkyPoint> culmination;
    std::optional<SkyPoint> set; ///< none either for one that goes on being up

    /// The way of a pass; no points where the satellite's position cannot be known.
    static SkyPath OfPass(const clsSats& cSats, const QString& object, const SatPass& pass);

    /// The way of the day that begins at `utc`, of a satellite that is always up.
    static SkyPath OfDay(const clsSats& cSats, const QString& object, DateTime utc);

    /// When the satellite stands over this horizon and over the flat one, to a tenth of a second: what is
    /// shorter than a part of a way's four hundred may be missed.
    std::vector<SkySpan> VisibleOver(const orbitmath::Horizon& horizon, const clsSats& cSats,
                                     const QString& object) const;
};
