#include "telemetry/replay/FrameRecorder.h"

#include "telemetry/frames/ByteViews.h"
#include "telemetry/frames/HeardFrame.h"
#include "telemetry/replay/KissRecording.h"

#include <QFileInfo>

namespace {

constexpr qsizetype mostKept = 1024 * 1024;

} // namespace

FrameRecorder::FrameRecorder(const AppendFile::Failed& failed)
    : m_file({}, {.isSynced = true, .mostKept = mostKept}, failed) {}

bool FrameRecorder::Start(const QString& path) {
    Stop();
    QFile file(path);
    if (QFileInfo info(path); info.exists() && !info.isFile())
        return false;
    m_piece.clear();
    char first = RecordedFrame::mark;
    char last = RecordedFrame::mark;
    if (file.open(QIODevice::ReadOnly) && file.getChar(&first) && file.seek(file.size() - 1))
        (void)file.getChar(&last);
    if (first != RecordedFrame::mark)
        return false;
    if (last != RecordedFrame::mark)
        m_piece = RecordedFrame::tornEnd;
    m_path = path;
    if (m_file.Open(path) && !m_piece.empty())
        (void)m_file.Append(QByteArrayView(m_piece));
    return true;
}

void FrameRecorder::Stop() {
    m_file.Close();
    m_path.clear();
}

void FrameRecorder::Take(const HeardFrame& frame) {
    if (!IsRecording() || frame.raw.isEmpty() || frame.kind == HeardFrame::Kind::T)
        return;
    m_piece.clear();
    RecordedFrame{
        .utc = frame.utc, .port = static_cast<std::uint8_t>(frame.port - 1), .bytes = ToView(frame.raw)}
        .AppendTo(m_piece);
    (void)m_file.Append(QByteArrayView(m_piece));
}
