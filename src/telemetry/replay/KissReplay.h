#pragma once

#include "telemetry/frames/Ax25Heard.h"
#include "telemetry/replay/KissRecording.h"

#include <QByteArrayView>

#include <functional>

/// Plays a KISS recording: its frames as they were heard.
class KissReplay {
public:
    /// Is told each frame, replayed; its time is 0 where the recording tells none. Its views hold as long as
    /// the call.
    using Take = std::function<void(const HeardFrame& frame)>;

    /// Whether a file that begins like this is such a recording.
    static bool IsRecording(QByteArrayView start) { return start.startsWith(RecordedFrame::mark); }

    explicit KissReplay(Take take)
        : m_take(std::move(take)) {}

    /// The next bytes of the recording.
    void Add(QByteArrayView piece);

    /// As KissReader::Refused.
    qint64 Refused() const { return static_cast<qint64>(m_reader.Refused()); }

private:
    const Take m_take;
    KissRecordingReader m_reader;
    Ax25Heard m_heard;
};
