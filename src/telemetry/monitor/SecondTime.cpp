#include "telemetry/monitor/SecondTime.h"

#include <utility>

SecondTime::SecondTime(std::function<DateTime(qint64 utc)> displayTime)
    : m_displayTime(std::move(displayTime)) {}

DateTime SecondTime::At(qint64 utc) {
    // More than 500 milliseconds count as the next second.
    if (const qint64 second = (utc + 499) / 1000; second != m_second) {
        m_time = m_displayTime(utc);
        m_second = second;
    }
    return m_time;
}
