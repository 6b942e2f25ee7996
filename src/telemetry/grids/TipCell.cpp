#include "telemetry/grids/TipCell.h"

#include "telemetry/grids/TelemetryGrid.h"

std::optional<QString> TipCell::MouseMove(const TelemetryGrid& grid, int row, int column) {
    if (row == m_row && column == m_column)
        return std::nullopt;
    m_row = row;
    m_column = column;
    // The label of the value; the header row has none.
    return column <= 0 ? QString() : grid.TextMatrix(row, column + 2);
}
