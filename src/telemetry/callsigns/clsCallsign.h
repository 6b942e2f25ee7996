#pragma once

#include <QString>

/// One of the satellite's callsigns.
class clsCallsign {
public:
    QString strCallsign; ///< with SSID, as the packet engine reports sources
    QString strSide;     ///< the transmitting side, "A" or "B"

    bool operator==(const clsCallsign&) const = default;
};
