#pragma once

#include "foundation/text/DateTime.h"

#include <functional>
#include <string>
#include <string_view>

/// A UTC time as "hh:mm:ss" of the time shown to the user, for every frame of a fast stream: made anew only
/// when the time has moved on.
class ClockText {
public:
    /// `displayTime`: the time shown of a UTC time in milliseconds since 1970.
    explicit ClockText(std::function<DateTime(qint64 utc)> displayTime);

    /// Holds until the next call.
    std::string_view At(qint64 utc);

private:
    const std::function<DateTime(qint64 utc)> m_displayTime;
    DateTime m_time = 0.0;
    std::string m_text;
};
