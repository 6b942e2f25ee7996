#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

/// The time that a line of text tells.
struct LineTime {
    enum class Clock {
        Utc,       ///< milliseconds since 1970-01-01 00:00 UTC
        Unknown,   ///< the same, of a clock whose zone the line does not name
        TimeOfDay, ///< milliseconds since midnight; neither date nor zone
    };

    Clock clock = Clock::Utc;
    std::int64_t milliseconds = 0;

    bool operator==(const LineTime&) const = default;
};

/// Takes a time of day, "hh:mm:ss" and perhaps a fraction behind "." or ",", off the front of `text`: its
/// milliseconds, those after the third digit cut. Nothing is taken when there is none.
std::optional<std::int64_t> TakeTimeOfDay(std::string_view& text);

/// Takes a time and the blanks around it off the front of `text`, up to the next blank or the end: a time of
/// day; "yyyy-mm-dd", "T" or a blank, and a time of day, of the years 1970 to 9999, with a zone ("Z", "UTC",
/// "GMT", "+hh:mm", "+hhmm", "+hh", a blank before it or none) or without one. What looks like a time in
/// another form, or has a zone of another name, is taken too, without telling a time. False when there is
/// nothing like a time.
bool TakeTime(std::string_view& text, std::optional<LineTime>& time);
