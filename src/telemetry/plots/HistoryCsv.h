#pragma once

#include "telemetry/history/TelemetryHistory.h"
#include "telemetry/limits/ChannelLimits.h"

#include <functional>

/// The readings of channels between two times (both included) as CSV, a line each, in the order of their
/// times: utc, side, grid, row, raw, value, unit. Names are those of the grids; a value is empty where no
/// formula converts it, a unit where it is not known. `readings`: a channel's in each place. `progress` is
/// told how far it is, in percent; when it answers false, that ends it with no bytes.
QByteArray HistoryCsv(const std::vector<HistoryChannel>& channels,
                      const std::vector<HistoryColumns>& readings, const LimitTable& limits, qint64 from,
                      qint64 to, const std::function<bool(int percent)>& progress = {});

/// The unit of a channel; empty where it is not known.
QString UnitOf(const HistoryChannel& channel, const LimitTable& limits);
