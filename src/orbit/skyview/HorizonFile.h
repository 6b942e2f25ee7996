#pragma once

#include "orbit/sky/Horizon.h"
#include "orbit/skyview/TableFile.h"

/// horizon.txt: what hides the sky around the station, a line a point, in two fields:
///
///     azimuth, elevation
///
/// in degrees, azimuths 0 to 360 from north over east, in any order, each but once (360 is 0); elevations -10
/// to 90. Between two points the horizon is a straight line.
class HorizonFile {
public:
    static constexpr double lowest = -10;
    static constexpr double highest = 90;

    static HorizonFile Read(const QString& path);

    /// `bytes`: the file's.
    static HorizonFile Parse(QByteArrayView bytes);

    /// A flat one where there is no file or no line that counts.
    const orbitmath::Horizon& Around() const { return m_horizon; }
    const std::vector<LineFault>& Faults() const { return m_faults; }

private:
    orbitmath::Horizon m_horizon;
    std::vector<LineFault> m_faults;
};
