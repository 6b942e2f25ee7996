#pragma once

#include "foundation/files/AppendFile.h"
#include "telemetry/frames/Reading.h"

/// Keeps every telemetry frame that is heard in the history file tlm.txt: a line of CSV in UTF-8, its fields
/// as they came. On the disk within a second; frames that cannot be written wait, some thousands of them.
class HistoryWriter {
public:
    /// `failed` is told the reason when the file cannot be written, and again only after it could. The file
    /// is made by the first frame.
    HistoryWriter(const QString& path, AppendFile::Failed failed);

    /// Whether frames are kept; they are until told otherwise.
    void SetKept(bool isKept) { m_isKept = isKept; }

    /// Writes what waits for room; whether nothing waits any more, so that the file may be replaced.
    bool Settle() { return m_file.Settle(); }

    /// Replayed frames are not kept.
    void Take(const TelemetryFrame& frame);

private:
    AppendFile m_file;
    bool m_isKept = true;
};
