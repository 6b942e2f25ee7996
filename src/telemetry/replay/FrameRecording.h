#pragma once

#include "telemetry/frames/Ax25Heard.h"
#include "telemetry/replay/KissRecording.h"

#include <functional>
#include <optional>

/// Reads heard frames from a recording (see RecordedFrame), fed in pieces of any size, with bounded memory.
class FrameRecording {
public:
    /// A frame of the recording: replayed, its `utc` 0 where the recording tells none. The views hold as long
    /// as the call.
    using Take = std::function<void(const HeardFrame& frame, std::optional<qint64> utc)>;

    explicit FrameRecording(Take take)
        : m_take(std::move(take)) {}

    /// Whether a file that begins so is a recording.
    static bool Begins(QByteArrayView start) { return start.startsWith(RecordedFrame::mark); }

    void Add(QByteArrayView bytes);

    /// Frames that were damaged.
    qint64 Refused() const { return static_cast<qint64>(m_reader.Refused()); }

private:
    Take m_take;
    KissRecordingReader m_reader;
    Ax25Heard m_heard;
};
