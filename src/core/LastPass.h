#pragma once

#include "orbit/history/PastPasses.h"

class GroundStation;

/// When the present or last pass of the satellite began.
class LastPass {
public:
    /// The station outlives it.
    explicit LastPass(const GroundStation& station);

    /// Milliseconds since 1970-01-01 00:00 UTC. Where it cannot be known (no position, no elements of that
    /// time, no pass in two days): twelve hours ago. The first call reads the elements that were kept.
    qint64 Start();

private:
    const GroundStation& m_station;
    ElementsHistory m_history;
    PastElements m_elements;
    PastPasses m_passes;
    bool m_isLoaded = false;
};
