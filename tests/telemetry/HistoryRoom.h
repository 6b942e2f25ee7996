#pragma once

#include "support/TemporaryProgramFolder.h"
#include "telemetry/calibration/ChannelMap.h"
#include "telemetry/calibration/FormulaTable.h"
#include "telemetry/history/TelemetryHistory.h"

/// What a history is decoded with: x times 2 for each cell of POWER on both sides, and nothing else.
namespace HistoryRoom {

inline ChannelMap Map() {
    ChannelMap map;
    map.BuildChannelMap();
    return map;
}

/// value = factor x for the rows of POWER, which are channels 0 to 3 of frame type 3 on both sides.
inline FormulaTable PowerTimes(const char* factor) {
    FormulaTable table;
    for (const char* side : {"A", "B"})
        for (const char* row : {"BATT A", "BATT B", "P OUT", "8V REG"})
            if (table.StoreFormulaLine({side, "3", "POWER", row, "0", "0", factor, "0"}) !=
                FormulaTable::Store::Done)
                qFatal("no such cell");
    return table;
}

inline HistorySides Sides() {
    return {{"XQ9ZZ-1", 0}, {"QIRAN-3", 1}};
}

inline constexpr HistoryChannel battA{0, 0, 1};
inline constexpr HistoryChannel battAOfB{1, 0, 1};
inline constexpr HistoryChannel regulator{0, 0, 4};

inline const QByteArray header = "utc,source,side,sequence,raw1,raw2,raw3,raw4,field5,field6,field7,field8\n";

} // namespace HistoryRoom
