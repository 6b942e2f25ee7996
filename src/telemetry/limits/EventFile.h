#pragma once

#include "foundation/files/AppendFile.h"
#include "telemetry/limits/LimitJudge.h"

#include <vector>

/// The crossings of limits in events.txt, a line of CSV each: utc, side, grid, row, value, from, to.
class EventFile {
public:
    static constexpr qint64 mostRead = 4 * 1024 * 1024; ///< bytes at the file's end

    /// `failed` is told the reason when the file cannot be written, and again only after it could. The file
    /// is made by the first event.
    EventFile(const QString& path, AppendFile::Failed failed);

    void Append(const LimitEvent& event);

    /// The events at the end of a file, as many as `mostRead` bytes hold, in its order. What is none is
    /// passed over.
    static std::vector<LimitEvent> Read(const QString& path);

    /// The levels in which these events leave the channels.
    static LimitStates StatesAfter(const std::vector<LimitEvent>& events);

private:
    AppendFile m_file;
};
