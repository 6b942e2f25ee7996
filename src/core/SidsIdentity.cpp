#include "core/SidsIdentity.h"

#include "core/Texts.h"
#include "station/identity/Station.h"

SidsStation SidsStationOf(const Station& station, const QString& number) {
    return {station.strCallsign(),
            station.PositionKnown(),
            station.dblLat(),
            station.dblLong(),
            number,
            QStringLiteral("QiranDecode-") + Texts::VersionNumber()};
}
