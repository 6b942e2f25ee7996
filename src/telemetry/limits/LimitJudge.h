#pragma once

#include "telemetry/frames/Reading.h"
#include "telemetry/limits/ChannelLimits.h"

#include <QByteArray>

#include <deque>
#include <functional>

/// A channel's value has crossed a limit.
struct LimitEvent {
    qint64 utc = 0; ///< of the reading, milliseconds since 1970-01-01 00:00
    LimitCell cell;
    double value = 0.0; ///< in the channel's unit
    Level from = Level::Normal;
    Level to = Level::Normal;
};

using LimitStates = std::map<LimitCell, Level>;

/// Judges the readings that are heard by the limits of their channels.
class LimitJudge {
public:
    using Sink = std::function<void(const LimitEvent&)>;

    explicit LimitJudge(Sink sink)
        : m_sink(std::move(sink)) {}

    /// From now on these limits hold. Levels stay until a reading changes them.
    void SetLimits(LimitTable limits);

    /// The levels in which an earlier run left the channels; others are normal.
    void TakeUp(const LimitStates& states);

    /// Judges a frame's readings. A line that was heard from the same source within five minutes, and
    /// replayed frames, change nothing.
    void Take(const TelemetryFrame& frame);

    /// Normal for a channel without limits.
    Level LevelAt(const LimitCell& cell) const;

    const LimitTable& Limits() const { return m_limits; }

    /// Null where nothing is known of a channel.
    const ChannelLimits* LimitsOf(const LimitCell& cell) const;

private:
    struct Channel {
        Level level = Level::Normal;
        std::deque<double> last; // values, as many as the persistence says
    };
    struct Heard {
        qint64 utc = 0;
        QByteArray line; // with its source
    };

    bool IsRepeated(const TelemetryFrame& frame);
    void Judge(const Reading& reading);

    const Sink m_sink;
    LimitTable m_limits;
    std::map<LimitCell, Channel> m_channels;
    std::deque<Heard> m_heard;
};
