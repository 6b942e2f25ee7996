#pragma once

#include "foundation/text/DateTime.h"

#include <functional>

class Clock;

/// The display time for a fast stream of frames: asked for anew only when the clock's second has changed, for
/// time zones are slow to ask about.
class SecondTime {
public:
    SecondTime(const Clock& clock, std::function<DateTime()> displayTime);

    DateTime Now();

    /// What is displayed has changed (from local time to UTC, say): ask anew at the next frame.
    void Forget() { m_second = never; }

private:
    static constexpr qint64 never = -1;

    const Clock& m_clock;
    const std::function<DateTime()> m_displayTime;
    qint64 m_second = never;
    DateTime m_time = 0.0;
};
