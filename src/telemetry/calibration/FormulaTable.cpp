#include "telemetry/calibration/FormulaTable.h"

#include "foundation/text/Text.h"
#include "telemetry/calibration/Inside.h"
#include "telemetry/frames/ByteViews.h"

#include <cmath>

namespace {

double Number(QByteArrayView field) {
    return Text::LeadingNumber(ToView(field), Text::Exponent::Yes);
}

} // namespace

const clsFormula* FormulaTable::At(int side, int frameType, int grid, int row) const {
    if (!Inside(side, sides) || !Inside(frameType, frameTypes) || !Inside(grid, GridLayout::grids) ||
        !Inside(row, RowBound() + 1))
        return nullptr;
    const auto& entry = m_rows[static_cast<std::size_t>(row)][static_cast<std::size_t>(side)]
                              [static_cast<std::size_t>(frameType)][static_cast<std::size_t>(grid)];
    return entry ? &*entry : nullptr;
}

int FormulaTable::Count() const {
    int count = 0;
    for (int side = 0; side < sides; ++side)
        for (int frameType = 0; frameType < frameTypes; ++frameType)
            for (int grid = 0; grid < GridLayout::grids; ++grid)
                for (int row = 0; row <= RowBound(); ++row)
                    count += At(side, frameType, grid, row) != nullptr ? 1 : 0;
    return count;
}

FormulaTable::Store FormulaTable::StoreFormulaLine(const Fields& fields) {
    std::array<QByteArray, fieldsInLine> texts;
    for (std::size_t i = 0; i < fieldsInLine; ++i)
        texts[i] = fields[i].trimmed().toByteArray().toUpper();

    const std::size_t side = texts[0] == "A" ? 0 : 1;
    const std::optional<qint16> frameType = Text::RoundToInt16(Number(texts[1]));
    const double dblA = Number(texts[4]);
    const double dblB = Number(texts[5]);
    const double dblC = Number(texts[6]);
    const double dblD = Number(texts[7]);
    if (!frameType || !std::isfinite(dblA) || !std::isfinite(dblB) || !std::isfinite(dblC) ||
        !std::isfinite(dblD))
        return Store::TooLarge;

    const int grid = GridLayout::FindGrid(texts[2]);
    const int row = grid < 0 ? 0 : GridLayout::FindRow(grid, texts[3]);
    if (row == 0)
        return Store::UnknownGridOrRow;
    if (row > RowBound())
        m_rows.resize(static_cast<std::size_t>(row) + 1);
    if (!Inside(*frameType, frameTypes))
        return Store::BadFrameType;

    auto& entry = m_rows[static_cast<std::size_t>(row)][side][static_cast<std::size_t>(*frameType)]
                        [static_cast<std::size_t>(grid)];
    clsFormula& formula = entry ? *entry : entry.emplace();
    formula.dblA = dblA;
    formula.dblB = dblB;
    formula.dblC = dblC;
    formula.dblD = dblD;
    return Store::Done;
}
