#pragma once

#include "telemetry/calibration/ChannelMap.h"
#include "telemetry/calibration/FormulaTable.h"
#include "telemetry/callsigns/CallsignList.h"
#include "telemetry/frames/FanOut.h"
#include "telemetry/frames/Reading.h"

/// Turns the satellite's frames into readings. What cannot be decoded is dropped without a word.
class TelemetryDecoder {
public:
    /// All arguments must outlive the decoder.
    TelemetryDecoder(const ChannelMap& map, const FormulaTable& formulae, const CallsignList& callsigns);

    /// Who takes what is decoded, each telemetry line with its readings.
    FanOut<TelemetryFrame>& Decoded() { return m_decoded; }

    /// Decodes the first information line of a UI frame that comes from one of the satellite's callsigns.
    void Take(const HeardFrame& frame);

    /// Decodes a line of nine fields: sequence, four raw channel values, two unused, one whose 3rd and 4th
    /// characters are the frame type's binary digits, one unused. `frame` tells when and from whom it came.
    void DecodeTelemetry(const HeardFrame& frame, QByteArrayView line);

    /// 1 when the first entry with this callsign is of side "B", else 0.
    qint16 SideIndexOf(QByteArrayView source) const;

    /// A channel's reading, converted where there is a formula; none outside the map. `line` holds what the
    /// readings of a line share.
    std::optional<Reading> ReadChannel(const TelemetryFrame& line, int channel) const;

private:
    const ChannelMap& m_map;
    const FormulaTable& m_formulae;
    const CallsignList& m_callsigns;
    FanOut<TelemetryFrame> m_decoded;
};
