#pragma once

#include "telemetry/limits/ChannelLimits.h"

#include <QByteArrayView>

#include <vector>

/// channels.txt: units and limits of the channels, a line each, in nine fields of CSV:
///
///     side or *, grid, row, unit, low alarm, low warning, high warning, high alarm, persistence
///
/// Blanks around a field and the case of side, grid and row do not count. A field may be empty but for the
/// first three. Empty lines and lines that begin with "#" are notes. A line for one side goes before one
/// for both.
class ChannelsFile {
public:
    static constexpr qint64 largestFile = 256 * 1024;

    /// A line that does not count, and why not.
    struct Fault {
        std::size_t line = 0; ///< from 1; 0: the file as a whole
        QString reason;
    };

    /// Where there is no file there are neither limits nor faults.
    static ChannelsFile Read(const QString& path);

    /// `bytes`: the file's, UTF-8.
    static ChannelsFile Parse(QByteArrayView bytes);

    const LimitTable& Limits() const { return m_limits; }
    const std::vector<Fault>& Faults() const { return m_faults; }

private:
    LimitTable m_limits;
    std::vector<Fault> m_faults;
};
