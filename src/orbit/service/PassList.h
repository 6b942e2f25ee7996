#pragma once

#include "foundation/text/DateTime.h"
#include "orbit/service/SatPass.h"

#include <QString>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// One pass of a satellite over the observer.
struct Pass {
    DateTime startUtc = 0;
    double durationSeconds = 0;
    qint16 maxElevation = 0; ///< degrees
};

/// The pass list of the orbit library, a text: see OrbitLibrary::ListPasses.
namespace PassList {

/// The items of a list; an empty text has none.
std::vector<std::string_view> Items(std::string_view list);

/// When the pass of an item begins; nothing when its digits are no date-time.
std::optional<DateTime> StartOf(std::string_view item);

/// The whole item; nothing when a field is missing or its number senseless.
std::optional<Pass> Parse(std::string_view item);

/// A pass as an item of the list tells it: its start is the first whole second in view, its duration is cut
/// to whole seconds, its elevation rounded.
Pass ToWholeSeconds(const SatPass& pass);

/// When the first pass begins that has not begun at `nowUtc`; where all have, the start of the last one; 0
/// when there is none. Nothing when an item that had to be read is damaged.
std::optional<DateTime> NextStart(std::string_view list, DateTime nowUtc);

/// The line of a pass in the table of predictions, without line end. `start` is in display time, azimuths are
/// in degrees.
QString TableLine(DateTime start, const Pass& pass, qint16 startAzimuth, qint16 endAzimuth);

/// What a printer gets: the window's caption and the table, with margins.
QString PrintText(const QString& caption, const QString& table);

} // namespace PassList
