#pragma once

#include "cli/table/Session.h"
#include "telemetry/limits/ChannelLimits.h"

#include <optional>
#include <vector>

/// What of the kept readings and events the user asks for.
struct Kept {
    qint64 from;                  ///< milliseconds since 1970-01-01 00:00 UTC
    qint64 to;                    ///< likewise, included
    std::vector<LimitCell> cells; ///< in the order of sides, grids and rows

    bool Has(const LimitCell& cell, qint64 utc) const;

    /// Nothing, and why is said, when there is no such channel.
    static std::optional<Kept> Read(const Session& session);
};
