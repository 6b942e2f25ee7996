#include "telemetry/calibration/GridLayout.h"

#include <QByteArray>

#include <array>

namespace GridLayout {
namespace {

struct Layout {
    const char* tag;
    const char* heading; // of the name column; files know only the tag
    std::span<const char* const> rows;
    int decimals; // of the display format
};

constexpr std::array powerRows{"Batt A", "Batt B", "P Out", "8V Reg"};
constexpr std::array currentRows{"X+", "X-", "Y+", "Y-", "Z+", "Z-", "Batt"};
constexpr std::array tempRows{"X+", "X-", "Y+", "Y-", "Z+", "Z-", "Stack", "Batt", "Xmtr"};

constexpr std::array<Layout, grids> layouts{{
    {"POWER", "POWER", powerRows, 2},
    {"CURRENT", "CURRENT", currentRows, 0},
    {"TEMP", "TEMPS", tempRows, 1},
}};

const Layout& Of(int grid) {
    return layouts.at(static_cast<std::size_t>(grid));
}

} // namespace

QByteArrayView Tag(int grid) {
    return Of(grid).tag;
}

QByteArrayView Heading(int grid) {
    return Of(grid).heading;
}

int Decimals(int grid) {
    return Of(grid).decimals;
}

std::span<const char* const> RowNames(int grid) {
    return Of(grid).rows;
}

QByteArrayView RowName(int grid, int row) {
    const auto rows = RowNames(grid);
    return row >= 1 && static_cast<std::size_t>(row) <= rows.size() ? rows[static_cast<std::size_t>(row - 1)]
                                                                    : QByteArrayView();
}

int FindGrid(QByteArrayView tag) {
    for (int grid = 0; grid < grids; ++grid)
        if (Tag(grid) == tag)
            return grid;
    return -1;
}

int FindRow(int grid, QByteArrayView upperCaseName) {
    const auto rows = RowNames(grid);
    for (std::size_t i = 0; i < rows.size(); ++i)
        if (QByteArray(rows[i]).toUpper() == upperCaseName)
            return static_cast<int>(i) + 1;
    return 0;
}

} // namespace GridLayout
