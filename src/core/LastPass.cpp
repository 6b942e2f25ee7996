#include "core/LastPass.h"

#include "core/GroundStation.h"
#include "foundation/text/UtcTime.h"

namespace {

constexpr double daysBack = 2.0;
constexpr double daysWithoutPass = 0.5;

} // namespace

qint64 StartOfLastPass(const GroundStation& station) {
    const DateTime now = station.cSats.datGmtTime();
    DateTime start = now - daysWithoutPass;
    if (station.station.PositionKnown()) {
        constexpr int most = 100;
        const SatPasses answer =
            station.cSats.PassesOf({.object = station.satellites.At(0).strObjNum.toStdString(),
                                    .latitude = station.station.dblLat(),
                                    .longitude = station.station.dblLong(),
                                    .startUtc = now - daysBack,
                                    .days = daysBack,
                                    .most = most});
        for (const SatPass& pass : answer.passes)
            if (pass.riseUtc <= now)
                start = pass.riseUtc;
    }
    return UtcTime::FromDateTime(start);
}
