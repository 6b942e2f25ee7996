#pragma once

#include "telemetry/history/TelemetryHistory.h"

#include <limits>
#include <optional>
#include <vector>

/// What is drawn, and listed, of channels' readings. Times are milliseconds since 1970-01-01 00:00 UTC.
namespace PlotPoints {

constexpr qint64 longestLine = qint64{10} * 60 * 1000; ///< between two readings

struct Point {
    double seconds = 0.0; ///< since 1970-01-01 00:00 UTC
    double value = 0.0;   ///< no number (NaN) where the line is broken
};

/// The points between two times, and one more on either side so that lines leave the picture. Of the readings
/// that share one of `pixels` columns the first, the lowest, the highest and the last are given, so that a
/// spike of one reading stays visible. The line is broken where there is no reading for longer than
/// `longestLine`; a reading that stands alone gets a line of half a column.
std::vector<Point> Visible(const HistoryColumns& readings, qint64 from, qint64 to, int pixels);

/// The place of the reading that is nearest to a time; none where there are no readings.
std::optional<std::size_t> Nearest(const HistoryColumns& readings, qint64 utc);

/// A reading of one of several channels.
struct Place {
    std::size_t channel = 0; ///< among the channels
    std::size_t at = 0;      ///< in its readings

    bool operator==(const Place&) const = default;
};

/// The readings of all channels between two times, both included, in the order of their times; no more than
/// the first `most`.
std::vector<Place> InOrder(const std::vector<HistoryColumns>& readings, qint64 from, qint64 to,
                           std::size_t most = std::numeric_limits<std::size_t>::max());

/// The last reading until a time, of whatever channel, and the first one after it; none where there is none.
std::optional<Place> LastUntil(const std::vector<HistoryColumns>& readings, qint64 utc);
std::optional<Place> FirstAfter(const std::vector<HistoryColumns>& readings, qint64 utc);

} // namespace PlotPoints
