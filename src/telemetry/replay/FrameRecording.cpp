#include "telemetry/replay/FrameRecording.h"

#include "telemetry/frames/ByteViews.h"

void FrameRecording::Add(QByteArrayView bytes) {
    std::string_view rest = ToView(bytes);
    RecordedFrame recorded;
    while (m_reader.Next(rest, recorded)) {
        const std::optional<qint64> utc = recorded.utc ? std::optional<qint64>(*recorded.utc) : std::nullopt;
        m_take(m_heard.Read({recorded.bytes.data(), static_cast<qsizetype>(recorded.bytes.size())},
                            {.utc = utc.value_or(0),
                             .port = static_cast<qint16>(recorded.port + 1),
                             .origin = HeardFrame::Origin::Replayed,
                             .time = {}}),
               utc);
    }
}
