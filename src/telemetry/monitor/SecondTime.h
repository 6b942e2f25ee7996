#pragma once

#include "foundation/text/DateTime.h"

#include <functional>

/// The display time of a fast stream of frames: asked for anew only when the second has changed, for time
/// zones are slow to ask about.
class SecondTime {
public:
    /// `displayTime`: the time shown of a UTC time in milliseconds since 1970.
    explicit SecondTime(std::function<DateTime(qint64 utc)> displayTime);

    DateTime At(qint64 utc);

    /// What is displayed has changed (from local time to UTC, say): ask anew at the next frame.
    void Forget() { m_second = never; }

private:
    static constexpr qint64 never = -1;

    const std::function<DateTime(qint64 utc)> m_displayTime;
    qint64 m_second = never;
    DateTime m_time = 0.0;
};
