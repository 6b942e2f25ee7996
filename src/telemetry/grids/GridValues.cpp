#include "telemetry/grids/GridValues.h"

#include <utility>

GridValues::GridValues(const TelemetryGrids& grids, std::function<DateTime(qint64 utc)> displayTime)
    : m_grids(grids)
    , m_displayTime(std::move(displayTime)) {}

void GridValues::Take(const TelemetryFrame& frame) {
    const DateTime time = m_displayTime(frame.utc);
    for (const Reading& reading : frame.Readings())
        ShowChannelValue(reading, time);
}

void GridValues::ShowChannelValue(const Reading& reading, DateTime time) {
    if (reading.value)
        m_grids[static_cast<std::size_t>(reading.grid)]->SetValue(reading.row, reading.side, *reading.value,
                                                                  {reading.sequence, time, reading.utc});
}
