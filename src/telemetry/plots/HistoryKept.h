#pragma once

#include "telemetry/history/TelemetryHistory.h"

/// Channels as the settings keep them: "A/POWER/Batt A;B/TEMP/X+".
namespace HistoryKept {

QString Text(const std::vector<HistoryChannel>& channels);

/// Those of `all` that the text names, in the order of `all`.
std::vector<HistoryChannel> Channels(const QString& text, const std::vector<HistoryChannel>& all);

} // namespace HistoryKept
