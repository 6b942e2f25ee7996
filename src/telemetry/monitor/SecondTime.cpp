#include "telemetry/monitor/SecondTime.h"

#include "foundation/text/Clock.h"

#include <utility>

SecondTime::SecondTime(const Clock& clock, std::function<DateTime()> displayTime)
    : m_clock(clock)
    , m_displayTime(std::move(displayTime)) {}

DateTime SecondTime::Now() {
    // More than 500 milliseconds count as the next second.
    if (const qint64 second = (m_clock.Milliseconds() + 499) / 1000; second != m_second) {
        m_time = m_displayTime();
        m_second = second;
    }
    return m_time;
}
