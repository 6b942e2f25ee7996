#pragma once

#include <QString>

#include <optional>

class TelemetryGrid;

/// The cell last seen under the mouse. The three grids share one: from a cell of one grid straight to the
/// same cell of another, the second grid's tip stays as it was.
class TipCell {
public:
    /// The mouse is over this cell (row 0: the header; -1: beside the cells). Answers the grid's new tool
    /// tip, nothing when it stays as it is.
    std::optional<QString> MouseMove(const TelemetryGrid& grid, int row, int column);

private:
    int m_row = 0;
    int m_column = 0;
};
