#pragma once

#include "telemetry/frames/Reading.h"
#include "telemetry/grids/TelemetryGrid.h"

#include <functional>

/// Puts readings into the grids: the value of each channel, and the label that names its frame.
class GridValues {
public:
    /// `displayTime`: the time shown to the user of a UTC time in milliseconds since 1970. What is handed
    /// over must outlive this object.
    GridValues(const TelemetryGrids& grids, std::function<DateTime(qint64 utc)> displayTime);

    void Take(const TelemetryFrame& frame);

    /// Shows one channel's value and its label; a reading without a value leaves both as they are.
    void ShowChannelValue(const Reading& reading, DateTime time);

private:
    const TelemetryGrids& m_grids;
    const std::function<DateTime(qint64 utc)> m_displayTime;
};
