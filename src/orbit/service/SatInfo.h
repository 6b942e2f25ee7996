#pragma once

#include <QString>

/// Where a satellite is at one time. Angles in degrees.
struct SatPosition {
    bool blnvisible = false; ///< in view of the observer
    bool blnSouth = false;   ///< the library's south flag
    double dblAz = 0;        ///< from the observer, from north over east
    double dblEl = 0;
    double dblLat = 0;       ///< of the sub-satellite point, north positive
    double dblLong = 0;      ///< likewise, east positive, at most 180
    double dblRange = 0;     ///< km
    double dblRangeRate = 0; ///< km/s, positive: going away
    double dblAltitude = 0;  ///< km
    double dblPhase = 0;     ///< mean anomaly, 0 to 256
};

/// The same with the texts that a display shows.
struct SatInfo : SatPosition {
    QString strLat;
    QString strLong;
    QString strDue; ///< "Now!", or when the next pass begins as "hh:nn:ss"; empty unless asked for
};
