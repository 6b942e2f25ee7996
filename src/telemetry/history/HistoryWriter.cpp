#include "telemetry/history/HistoryWriter.h"

#include "foundation/files/Csv.h"
#include "foundation/text/IsoTime.h"
#include "foundation/text/Text.h"
#include "telemetry/history/HistoryLayout.h"

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
    QByteArray line = IsoTime::Milliseconds(frame.utc);
    Csv::AppendField(line.append(','), Utf8(frame.source));
    line.append(frame.side == 1 ? ",B" : ",A");
    for (const QByteArrayView field : frame.fields)
        Csv::AppendField(line.append(','), Utf8(field));
    line.append('\n');
    (void)m_file.Append(line);
}
