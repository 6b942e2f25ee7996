#pragma once

#include <QByteArrayView>

#include <span>

/// The three grids of telemetry as a user and the formula file know them: their names, rows and decimals,
/// apart from any window. Rows count from 1; row 0 is the header.
namespace GridLayout {

constexpr int grids = 3; ///< 0 POWER, 1 CURRENT, 2 TEMP

/// The name by which files and records call a grid ("TEMP"). `grid` is 0 to 2 here and below.
QByteArrayView Tag(int grid);

/// The heading of its name column ("TEMPS").
QByteArrayView Heading(int grid);

/// Decimals of its display format.
int Decimals(int grid);

/// The names of its rows, row 1 first.
std::span<const char* const> RowNames(int grid);

/// The name of a row from 1 on; empty outside the grid.
QByteArrayView RowName(int grid, int row);

/// The grid of this tag; -1 when there is none.
int FindGrid(QByteArrayView tag);

/// The first row whose name in upper case is `upperCaseName`; 0 when there is none.
int FindRow(int grid, QByteArrayView upperCaseName);

} // namespace GridLayout
