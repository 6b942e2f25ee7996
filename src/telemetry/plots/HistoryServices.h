#pragma once

#include "foundation/text/DateTime.h"
#include "telemetry/limits/LimitJudge.h"
#include "telemetry/plots/ChannelTable.h"

#include <functional>
#include <optional>
#include <vector>

class Clock;
class QPrinter;
class QWidget;
class clsIni;
class mb;

/// What the history window stands on; all of it must outlive the window. Times are milliseconds since
/// 1970-01-01 00:00 UTC.
struct HistoryServices {
    clsIni& ini;
    const Clock& clock;
    const mb& messages;
    const ChannelMap& map;
    LimitTable limits;
    ChannelTable::DisplayTime displayTime;
    std::function<bool()> isLocalTime; ///< whether displayTime gives local time

    /// A sentence about the next pass; empty where nobody knows.
    std::function<QString()> nextPass;

    /// The passes over the station between two times, from rise to set.
    std::function<std::vector<std::pair<qint64, qint64>>(qint64 from, qint64 to)> passes;

    /// The crossings of limits, oldest first.
    std::function<std::vector<LimitEvent>()> events;

    /// New formulae and callsigns where they have changed since the last call.
    struct Decoding {
        FormulaTable formulae;
        HistorySides sides;
    };
    std::function<std::optional<Decoding>()> newDecoding;

    /// False when the user does not want to print.
    std::function<bool(QPrinter& printer, QWidget* window)> choosePrinter;

    /// The path of a file to write that ends in `ending`; empty when the user does not want to.
    std::function<QString(QWidget* window, const QString& caption, const QString& ending)> chooseFile;

    /// Lets the user import; where there is none, no button offers it.
    std::function<void(QWidget* window)> import;
};
