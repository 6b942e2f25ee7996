#include "telemetry/TipCell.h"

#include "telemetry/TelemetryGrid.h"

std::optional<QString> TipCell::MouseMove(const TelemetryGrid& grid, int row, int column) {
    if (row == m_row && column == m_column)
        return std::nullopt;
    m_row = row;
    m_column = column;
    if (row <= 0 || column <= 0)
        return QString();
    return grid.TextMatrix(row, column + 2); // the label of the value
}
