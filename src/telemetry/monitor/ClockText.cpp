#include "telemetry/monitor/ClockText.h"

#include <utility>

ClockText::ClockText(std::function<DateTime(qint64 utc)> displayTime)
    : m_displayTime(std::move(displayTime)) {}

std::string_view ClockText::At(qint64 utc) {
    if (const DateTime time = m_displayTime(utc); m_text.empty() || time != m_time) {
        m_time = time;
        m_text = FormatDateTime(time, u"hh\\:nn\\:ss").toStdString();
    }
    return m_text;
}
