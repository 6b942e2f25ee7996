#pragma once

#include "telemetry/frames/HeardFrame.h"

#include <functional>
#include <utility>
#include <vector>

/// Hands each value (a HeardFrame, a TelemetryFrame) to every sink, in the order of their adding. A sink
/// keeps its failures to itself: it says so once and harms no other.
template <class Value>
class FanOut {
public:
    using Sink = std::function<void(const Value&)>;

    enum class Takes { Live, LiveAndReplayed };

    /// The sink, and all that it refers to, must outlive the last value.
    void Add(Sink sink, Takes takes = Takes::Live) { m_sinks.push_back({std::move(sink), takes}); }

    void Hand(const Value& value) const {
        for (const Entry& entry : m_sinks)
            if (value.origin == HeardFrame::Origin::Live || entry.takes == Takes::LiveAndReplayed)
                entry.sink(value);
    }

private:
    struct Entry {
        Sink sink;
        Takes takes;
    };

    std::vector<Entry> m_sinks;
};
