#pragma once

#include "telemetry/calibration/GridLayout.h"
#include "telemetry/calibration/clsFormula.h"

#include <QByteArrayView>

#include <array>
#include <optional>
#include <vector>

/// The formula of each grid cell, by side (0 A, 1 B), frame type (0 to 3), grid (0 to 2) and row.
class FormulaTable {
public:
    static constexpr int sides = 2;
    static constexpr int frameTypes = 4;
    static constexpr std::size_t fieldsInLine = 8;

    using Fields = std::array<QByteArrayView, fieldsInLine>;

    enum class Store {
        Done,
        UnknownGridOrRow, ///< a mistake in the file that must end the program
        BadFrameType,     ///< not 0 to 3
        TooLarge,         ///< a number beyond its range
    };

    /// The largest row that a line named.
    int RowBound() const { return static_cast<int>(m_rows.size()) - 1; }

    /// How many cells have a formula.
    int Count() const;

    /// Null where no line stored a formula, and outside the table.
    const clsFormula* At(int side, int frameType, int grid, int row) const;

    /// Stores one line of the formula file: side, frame type, grid tag, row name, and the coefficients of
    /// x^3, x^2, x and 1. Blanks around a field and case do not count. A later line for the same cell
    /// replaces its coefficients.
    Store StoreFormulaLine(const Fields& fields);

private:
    using Row =
        std::array<std::array<std::array<std::optional<clsFormula>, GridLayout::grids>, frameTypes>, sides>;

    std::vector<Row> m_rows = std::vector<Row>(1);
};
