#include "telemetry/limits/LimitJudge.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace {

constexpr qint64 repeatedWithin = 5 * 60 * 1000; // milliseconds
constexpr std::size_t mostHeard = 1024;          // no channel carries as many lines in five minutes

} // namespace

void LimitJudge::SetLimits(LimitTable limits) {
    m_limits = std::move(limits);
    for (auto& [cell, channel] : m_channels)
        channel.last.clear();
}

void LimitJudge::TakeUp(const LimitStates& states) {
    for (const auto& [cell, level] : states)
        m_channels[cell].level = level;
}

void LimitJudge::Take(const TelemetryFrame& frame) {
    if (frame.origin != HeardFrame::Origin::Live || m_limits.empty() || IsRepeated(frame))
        return;
    for (const Reading& reading : frame.Readings())
        Judge(reading);
}

// A digipeater sends a line once more. What counts is the time at which the line was judged, so that a
// satellite that keeps saying the same is heard every five minutes.
bool LimitJudge::IsRepeated(const TelemetryFrame& frame) {
    const QByteArray line = frame.source.toByteArray() + '\0' + frame.line.toByteArray();
    const bool isRepeated = std::ranges::any_of(m_heard, [&](const Heard& heard) {
        return std::abs(frame.utc - heard.utc) < repeatedWithin && heard.line == line;
    });
    if (isRepeated)
        return true;
    m_heard.push_back({frame.utc, line});
    while (m_heard.size() > mostHeard || std::abs(frame.utc - m_heard.front().utc) >= repeatedWithin)
        m_heard.pop_front();
    return false;
}

void LimitJudge::Judge(const Reading& reading) {
    const LimitCell cell{reading.side, reading.grid, reading.row};
    const ChannelLimits* limits = LimitsOf(cell);
    if (limits == nullptr || !reading.value)
        return;
    Channel& channel = m_channels[cell];
    channel.last.push_back(*reading.value);
    if (channel.last.size() > static_cast<std::size_t>(limits->persistence))
        channel.last.pop_front();
    if (channel.last.size() < static_cast<std::size_t>(limits->persistence))
        return;
    // All of them beyond the present level, on one side of it: then it is the nearest of theirs.
    Level lowest = Level::HighAlarm;
    Level highest = Level::LowAlarm;
    for (const double value : channel.last) {
        const Level level = limits->Judge(value, channel.level);
        lowest = std::min(lowest, level);
        highest = std::max(highest, level);
    }
    const Level before = channel.level;
    channel.level = std::clamp(before, lowest, highest);
    if (channel.level != before)
        m_sink({reading.utc, cell, *reading.value, before, channel.level});
}

Level LimitJudge::LevelAt(const LimitCell& cell) const {
    const auto channel = m_channels.find(cell);
    return channel == m_channels.end() || !m_limits.contains(cell) ? Level::Normal : channel->second.level;
}

const ChannelLimits* LimitJudge::LimitsOf(const LimitCell& cell) const {
    const auto limits = m_limits.find(cell);
    return limits == m_limits.end() ? nullptr : &limits->second;
}
