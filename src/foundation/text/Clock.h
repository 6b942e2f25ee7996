#pragma once

#include "foundation/text/DateTime.h"

#include <optional>

/// The operating system's clock and time-zone rules; tests stand their own in its place.
class Clock {
public:
    Clock() = default;
    Clock(const Clock&) = delete;
    Clock& operator=(const Clock&) = delete;
    virtual ~Clock() = default;

    /// Milliseconds since 1970-01-01 00:00 UTC.
    virtual qint64 Milliseconds() const;

    /// UTC now.
    CalendarRecord Utc() const { return UtcAt(Milliseconds()); }

    /// The UTC of a time in milliseconds since 1970-01-01 00:00.
    static CalendarRecord UtcAt(qint64 milliseconds);

    /// Local time now.
    CalendarRecord Local() const { return LocalOf(Utc()); }

    /// The local time of a UTC time; where the operating system has none, UTC.
    CalendarRecord LocalOf(const CalendarRecord& utc) const { return ToLocal(utc).value_or(utc); }

    /// The local time of a UTC time, by the operating system's rules for that date; nothing when it has none.
    virtual std::optional<CalendarRecord> ToLocal(const CalendarRecord& utc) const;
};
