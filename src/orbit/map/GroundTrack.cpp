#include "orbit/map/GroundTrack.h"

#include <cmath>

GroundTrack GroundTrack::Of(const clsSats& cSats, const QString& strSat, DateTime startUtc) {
    GroundTrack track;
    const std::optional<ElementSource> elements = cSats.ElementsOf(strSat);
    const int length = MapGeometry::TrackLength(elements ? elements->meanMotion : 0.0);
    track.points.reserve(static_cast<std::size_t>(length) + 1);
    for (int i = 0; i <= length; ++i) {
        const std::optional<SatPosition> position = cSats.PositionAt(strSat, startUtc + i / minutesPerDay);
        if (!position || !std::isfinite(position->dblLong) || !std::isfinite(position->dblLat))
            break;
        if (i == 0)
            track.altitude = position->dblAltitude;
        track.points.push_back({position->dblLong, position->dblLat});
    }
    return track;
}
