#pragma once

#include "foundation/text/Clock.h"

#include <cmath>

/// A clock that stands still where a test sets it. Time zones are the operating system's (set TZ) unless the
/// test gives a fixed offset.
class TestClock : public Clock {
public:
    explicit TestClock(DateTime utc = DateOf(2026, 11, 21)) { Set(utc); }

    /// Sets UTC, to the nearest millisecond.
    void Set(DateTime utc) {
        m_milliseconds = std::llround((utc - DateOf(1970, 1, 1)) * secondsPerDay * 1000.0);
    }
    void SetMilliseconds(qint64 sinceEpoch) { m_milliseconds = sinceEpoch; }
    void Advance(double seconds) { m_milliseconds += static_cast<qint64>(seconds * 1000.0); }
    void SetOffsetHours(double hours) { m_offset = hours; }

    qint64 Milliseconds() const override { return m_milliseconds; }

    std::optional<CalendarRecord> ToLocal(const CalendarRecord& utc) const override {
        return m_offset ? ToCalendar(FromCalendar(utc) + *m_offset / 24.0) : Clock::ToLocal(utc);
    }

private:
    qint64 m_milliseconds = 0;
    std::optional<double> m_offset;
};
