// A telemetry line, with a formula for every cell: it changes the cells of its side and frame type, or none.

#include "Input.h"
#include "Require.h"
#include "foundation/settings/clsIni.h"
#include "telemetry/calibration/TelemetryDecoder.h"
#include "telemetry/grids/GridValues.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr const char* coefficients[][4] = {
    {"0", "0", "1", "0"},
    {"1E-6", "-0.002", "0.7", "-12.5"},
    {"1e300", "1e300", "-1e300", "1e308"},
    {"0", "-1e-320", "0", "1"},
};

struct Room {
    clsIni ini{QString()};
    ChannelMap map;
    FormulaTable formulae;
    TelemetryGrids grids = MakeTelemetryGrids();
    CallsignList callsigns{ini};
    TelemetryDecoder decoder{map, formulae, callsigns};
    GridValues values{grids, [](qint64) { return 45000.5; }};

    Room() {
        decoder.Decoded().Add([this](const TelemetryFrame& frame) { values.Take(frame); });
        map.BuildChannelMap();
        callsigns.LoadCallsigns();
        for (const auto& grid : grids)
            for (int place = 0; place < 8 * grid->Rows(); ++place) {
                const int row = place / 8 + 1;
                const QByteArray name = grid->TextMatrix(row, TelemetryGrid::Name).toLatin1();
                const QByteArray type = QByteArray::number(place % 4);
                const auto& numbers = coefficients[static_cast<std::size_t>(row) % std::size(coefficients)];
                const auto stored =
                    formulae.StoreFormulaLine({place % 8 < 4 ? "A" : "B", type, grid->Tag(), name, numbers[0],
                                               numbers[1], numbers[2], numbers[3]});
                Require(stored == FormulaTable::Store::Done, "every cell takes a formula");
            }
    }

    bool IsChannel(int side, int type, int grid, int row) const {
        for (int channel = 0; channel < ChannelMap::channels; ++channel)
            if (const ChannelCell* cell = map.At(side, type, channel); cell->grid == grid && cell->row == row)
                return true;
        return false;
    }

    // The frame types to which all cells that are set may belong; -1 when a cell of the other side is set.
    int TypesOfSetCells(int side) const {
        int types = 0xF;
        for (const auto& grid : grids)
            for (int row = 1; row <= grid->Rows(); ++row) {
                if (!grid->TextMatrix(row, TelemetryGrid::ValueA + 1 - side).isEmpty())
                    return -1;
                if (grid->TextMatrix(row, TelemetryGrid::ValueA + side).isEmpty())
                    continue;
                for (int type = 0; type < ChannelMap::frameTypes; ++type)
                    if (!IsChannel(side, type, grid->Index(), row))
                        types &= ~(1 << type);
            }
        return types;
    }
};

void CheckTexts(const TelemetryGrid& grid, int row, int side, QByteArrayView sequence) {
    const QString full = grid.TextMatrix(row, TelemetryGrid::ValueA + side);
    const QString shown = grid.DisplayText(row, TelemetryGrid::ValueA + side);
    const QString label = grid.TextMatrix(row, TelemetryGrid::LabelA + side);
    if (full.isEmpty()) {
        Require(shown.isEmpty() && label.isEmpty(), "a cell that was never set is empty");
        return;
    }
    bool isNumber = false;
    Require(std::isfinite(full.toDouble(&isNumber)) && isNumber, "a value is a number");
    shown.toDouble(&isNumber);
    Require(isNumber && shown.size() < 400, "a value is shown as a number");
    Require(shown != u"-0" && shown != u"-0.0" && shown != u"-0.00", "zero has no sign");
    Require(label.size() >= sequence.size(), "the label holds the sequence");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view line = Input(data, size);
    for (const QByteArrayView source : {QByteArrayView("XQ9ZZ-1"), QByteArrayView("QIRAN")}) {
        Room room;
        const int side = room.decoder.SideIndexOf(source);
        Require(side == (source == "QIRAN" ? 1 : 0), "the callsign tells the side");
        room.decoder.DecodeTelemetry({.source = source}, Bytes(line));
        const int types = room.TypesOfSetCells(side);
        Require(types > 0, "only the cells of one frame type and side are set");
        if (std::ranges::count(line, ',') != 8)
            Require(types == 0xF, "a line without nine fields changes nothing");
        for (const auto& grid : room.grids)
            for (int row = 1; row <= grid->Rows(); ++row)
                CheckTexts(*grid, row, side, Bytes(line.substr(0, line.find(','))));
    }
    return 0;
}
