#include "telemetry/history/HistoryWriter.h"

#include "foundation/text/Text.h"
#include "telemetry/frames/ByteViews.h"
#include "telemetry/history/HistoryLayout.h"

#include <algorithm>
#include <utility>

namespace {

constexpr qsizetype mostKept = 1024 * 1024;

QByteArray Utf8(QByteArrayView windows1252) {
    return Text::FromBytes(windows1252).toUtf8();
}

} // namespace

HistoryWriter::HistoryWriter(const QString& path, AppendFile::Failed failed)
    : m_file(path, {.header = HistoryLayout::Header(), .isSynced = true, .mostKept = mostKept},
             std::move(failed)) {}

void HistoryWriter::Take(const TelemetryFrame& frame) {
    if (!m_isKept || frame.origin != HeardFrame::Origin::Live)
        return;
    std::array<QByteArray, TelemetryFrame::fieldsInLine> texts;
    std::ranges::transform(frame.fields, texts.begin(), Utf8);
    HistoryLayout::Fields fields;
    std::ranges::transform(texts, fields.begin(), [](const QByteArray& text) { return ToView(text); });
    const QByteArray source = Utf8(frame.source);
    const QByteArray line = HistoryLayout::LineOf(frame.utc, ToView(source), frame.side, fields);
    (void)m_file.Append(line);
}
