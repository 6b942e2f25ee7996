#pragma once

#include "foundation/text/DateTime.h"

#include <functional>
#include <string>
#include <string_view>

/// The present time as "hh:mm:ss" for every frame of a fast stream: made anew only when the time has moved
/// on.
class ClockText {
public:
    explicit ClockText(std::function<DateTime()> displayTime);

    /// Holds until the next call.
    std::string_view Now();

private:
    const std::function<DateTime()> m_displayTime;
    DateTime m_time = 0.0;
    std::string m_text;
};
