#pragma once

#include "telemetry/calibration/ChannelMap.h"
#include "telemetry/calibration/FormulaTable.h"
#include "telemetry/callsigns/CallsignList.h"
#include "telemetry/grids/TelemetryGrid.h"

#include <functional>

/// Turns the satellite's telemetry lines into values in the grids. What cannot be decoded changes nothing and
/// is not reported.
class TelemetryDecoder {
public:
    /// `displayTime`: the present time as it is shown to the user.
    TelemetryDecoder(const ChannelMap& map, const FormulaTable& formulae, const TelemetryGrids& grids,
                     const CallsignList& callsigns, std::function<DateTime()> displayTime);

    /// Decodes a line of nine fields: sequence, four raw channel values, two unused, one whose 3rd and 4th
    /// characters are the frame type's binary digits, one unused. Texts are Windows-1252.
    void DecodeTelemetry(QByteArrayView source, QByteArrayView line);

    /// 1 when the first entry with this callsign is of side "B", else 0.
    qint16 SideIndexOf(QByteArrayView source) const;

    /// Converts one channel's raw value and writes it and its label into their grid.
    void ShowChannelValue(int side, int frameType, int channel, double raw, const FrameLabel& label);

private:
    const ChannelMap& m_map;
    const FormulaTable& m_formulae;
    const TelemetryGrids& m_grids;
    const CallsignList& m_callsigns;
    const std::function<DateTime()> m_displayTime;
};
