#pragma once

#include "orbit/map/MapGeometry.h"
#include "orbit/service/clsSats.h"

#include <QString>

#include <vector>

/// Where a satellite is and will be, one point a minute.
struct GroundTrack {
    std::vector<MapGeometry::GeoPoint> points; ///< the first is where it is; empty when that cannot be known
    double altitude = 0;                       ///< km, at the first point

    /// One orbit from `startUtc` on. It ends before the first point that cannot be known.
    static GroundTrack Of(const clsSats& cSats, const QString& strSat, DateTime startUtc);
};
