#pragma once

#include "foundation/settings/clsIni.h"
#include "support/TestClock.h"
#include "telemetry/calibration/TelemetryDecoder.h"
#include "telemetry/frames/ByteViews.h"
#include "telemetry/grids/GridValues.h"
#include "telemetry/monitor/FrameIntake.h"

#include <QTemporaryDir>

#include <utility>
#include <vector>

/// Everything between a frame and the grids, with the default callsigns and a formula y = x + 1000 · (frame
/// type + 1)
/// + 10000 · side for every cell, so that a value tells which formula made it.
struct TelemetryRoom {
    QTemporaryDir folder;
    clsIni ini{folder.filePath(QStringLiteral("QiranDecode.INI"))};
    TestClock clock{DateOf(2002, 3, 5) + 14.0 / 24.0 + 7.0 / minutesPerDay + 9.0 / secondsPerDay};
    std::function<DateTime(qint64)> displayTime = [](qint64 utc) { return FromCalendar(Clock::UtcAt(utc)); };
    TelemetryGrids grids = MakeTelemetryGrids();
    ChannelMap map;
    FormulaTable formulae;
    CallsignList callsigns{ini};
    TelemetryDecoder decoder{map, formulae, callsigns};
    GridValues gridValues{grids, displayTime};
    MonitorText monitor;
    FrameIntake intake{callsigns, monitor, displayTime};
    std::vector<std::pair<QByteArray, qint16>> terminal; // what ShowData was given

    TelemetryRoom() {
        map.BuildChannelMap();
        callsigns.LoadCallsigns();
        for (const auto& grid : grids)
            for (int side = 0; side < 2; ++side)
                for (int type = 0; type < 4; ++type)
                    for (int row = 1; row <= grid->Rows(); ++row)
                        Store({side == 0 ? "A" : "B", QByteArray::number(type), grid->Tag().toByteArray(),
                               grid->TextMatrix(row, 0).toLatin1(), "0", "0", "1",
                               QByteArray::number(1000 * (type + 1) + 10000 * side)});
        decoder.Decoded().Add([this](const TelemetryFrame& frame) { gridValues.Take(frame); });
        intake.SetTerminal(
            [this](QByteArrayView text, qint16 kind) { terminal.emplace_back(text.toByteArray(), kind); });
    }

    FormulaTable::Store Store(const std::array<QByteArray, FormulaTable::fieldsInLine>& texts) {
        FormulaTable::Fields fields;
        std::copy(texts.begin(), texts.end(), fields.begin());
        return formulae.StoreFormulaLine(fields);
    }

    /// The text of a grid cell, by names as the user knows them.
    QString Cell(int grid, const char* row, int column) const {
        const TelemetryGrid& model = *grids[static_cast<std::size_t>(grid)];
        return model.TextMatrix(model.FindRow(QByteArray(row).toUpper()), column);
    }

    /// Every cell of the value and label columns that holds a text.
    int FilledCells() const {
        int filled = 0;
        for (const auto& grid : grids)
            for (int row = 1; row <= grid->Rows(); ++row)
                for (int column = 1; column < TelemetryGrid::Columns; ++column)
                    filled += grid->TextMatrix(row, column).isEmpty() ? 0 : 1;
        return filled;
    }

    /// A frame as the packet engine hands it over.
    void Receive(const QByteArray& source, const QByteArray& information) {
        const QByteArray data =
            " 1:Fm " + source + " To APRS Via WIDE2-2 <UI pid=F0 Len=42 PF=0 >[00:16:57]\r" + information;
        Hear(source, data);
    }

    /// A UI frame with this text of the engine: what the link makes of it goes to monitor and decoder.
    void Hear(QByteArrayView source, QByteArrayView engineText) {
        HeardFrame frame{.utc = clock.Milliseconds(), .source = source, .destination = "APRS"};
        frame.engineText = engineText;
        if (const std::size_t end = FindLineEnd(ToView(engineText)); end != std::string_view::npos)
            frame.information =
                ToView(engineText).substr(end + (ToView(engineText).substr(end).starts_with("\r\n") ? 2 : 1));
        intake.Take(frame);
        decoder.Take(frame);
    }

    /// A telemetry line from this callsign, now.
    void Decode(QByteArrayView source, QByteArrayView line) {
        decoder.DecodeTelemetry({.utc = clock.Milliseconds(), .source = source}, line);
    }
};
