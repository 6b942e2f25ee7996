#pragma once

#include "telemetry/plots/HistoryWorker.h"

#include <array>

/// Which part of the history is shown.
struct HistoryRange {
    enum class Kind { LastPass, Day, Week, Month, All, Typed };

    /// What the user chooses from, in the order of the kinds; a typed range is none of them.
    static constexpr std::array captions{"Last pass", "24 hours", "7 days", "30 days", "All"};

    Kind kind = Kind::LastPass;
    qint64 from = 0; ///< of a typed range, milliseconds since 1970-01-01 00:00 UTC
    qint64 to = 0;   ///< likewise, later than `from`

    /// As the settings keep it: a caption, or two times in ISO 8601 with "/" between them. What is neither is
    /// the last pass.
    QString Text() const;
    static HistoryRange Of(const QString& text);

    /// The times that it stands for, some room on either side of the readings.
    std::pair<qint64, qint64> Times(const HistoryState& history, qint64 now) const;

    bool operator==(const HistoryRange&) const = default;
};
