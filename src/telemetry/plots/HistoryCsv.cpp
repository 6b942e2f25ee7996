#include "telemetry/plots/HistoryCsv.h"

#include "foundation/files/Csv.h"
#include "foundation/text/IsoTime.h"
#include "foundation/text/Text.h"
#include "telemetry/calibration/GridLayout.h"
#include "telemetry/plots/PlotPoints.h"

#include <cmath>

QString UnitOf(const HistoryChannel& channel, const LimitTable& limits) {
    const auto found = limits.find({channel.side, channel.grid, channel.row});
    return found == limits.end() ? QString() : found->second.unit;
}

QByteArray HistoryCsv(const std::vector<HistoryChannel>& channels,
                      const std::vector<HistoryColumns>& readings, const LimitTable& limits, qint64 from,
                      qint64 to, const std::function<bool(int percent)>& progress) {
    constexpr std::size_t tellEvery = 8192; // lines
    const std::vector<PlotPoints::Place> places = PlotPoints::InOrder(readings, from, to);
    QByteArray csv = "utc,side,grid,row,raw,value,unit\n";
    for (std::size_t i = 0; i < places.size(); ++i) {
        if (progress && i % tellEvery == 0 && !progress(static_cast<int>(100 * i / places.size())))
            return {};
        const auto& [which, at] = places[i];
        const HistoryChannel& channel = channels[which];
        const double value = readings[which].value[at];
        csv += Csv::Line({IsoTime::Milliseconds(readings[which].utc[at]), channel.side == 1 ? "B" : "A",
                          GridLayout::Tag(channel.grid), GridLayout::RowName(channel.grid, channel.row),
                          Text::GeneralNumber(readings[which].raw[at]).toLatin1(),
                          std::isnan(value) ? QByteArray() : Text::GeneralNumber(value).toLatin1(),
                          UnitOf(channel, limits).toUtf8()});
    }
    return csv;
}
