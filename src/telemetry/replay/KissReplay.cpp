#include "telemetry/replay/KissReplay.h"

#include "telemetry/frames/ByteViews.h"

void KissReplay::Add(QByteArrayView piece) {
    std::string_view bytes = ToView(piece);
    RecordedFrame recorded;
    while (m_reader.Next(bytes, recorded))
        m_take(m_heard.Read({recorded.bytes.data(), static_cast<qsizetype>(recorded.bytes.size())},
                            {.utc = recorded.utc.value_or(0),
                             .port = static_cast<qint16>(recorded.port + 1),
                             .origin = HeardFrame::Origin::Replayed,
                             .time = {}}));
}
