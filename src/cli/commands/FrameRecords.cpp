#include "cli/commands/FrameRecords.h"

#include "foundation/text/Text.h"
#include "telemetry/calibration/GridLayout.h"
#include "telemetry/frames/Ax25Frame.h"
#include "telemetry/frames/ByteViews.h"
#include "telemetry/frames/Reading.h"
#include "telemetry/limits/LimitJudge.h"

namespace {

constexpr qsizetype longestLine = 300;

FieldValue TimeOf(qint64 utc) {
    return utc == 0 ? FieldValue() : FieldValue(utc);
}

FieldValue TextOf(QByteArrayView bytes) {
    return bytes.isEmpty() ? FieldValue() : FieldValue(Text::FromBytes(bytes));
}

FieldValue PathOf(QByteArrayView path) {
    return path.isEmpty() ? FieldValue() : FieldValue(Text::FromBytes(path).split(u','));
}

// All of the information, where anybody tells it.
std::optional<QByteArrayView> CompleteInformation(const HeardFrame& frame) {
    if (frame.isComplete)
        return frame.information;
    const std::optional<Ax25Frame> raw = Ax25Frame::FromBytes(ToView(frame.raw));
    if (!raw)
        return std::nullopt;
    return QByteArrayView(raw->information.data(), static_cast<qsizetype>(raw->information.size()));
}

QString UnitOf(const Reading& reading, const LimitTable& channels) {
    const auto found = channels.find({.side = reading.side, .grid = reading.grid, .row = reading.row});
    return found == channels.end() ? QString() : found->second.unit;
}

QString SideOf(int side) {
    return side == 0 ? QStringLiteral("A") : QStringLiteral("B");
}

} // namespace

Record RecordOf(const HeardFrame& frame) {
    const std::optional<QByteArrayView> complete = CompleteInformation(frame);
    // A frame of which its bytes alone came is not shown, but its text is no secret.
    const QByteArrayView text = frame.engineText.isEmpty() && complete ? *complete : frame.information;
    const bool hasText = !text.isEmpty() || (frame.kind != HeardFrame::Kind::S && !frame.source.isEmpty());
    return {TimeOf(frame.utc),
            qint64{frame.port},
            QString(QChar::fromLatin1(static_cast<char>(frame.kind))),
            TextOf(frame.source),
            TextOf(frame.destination),
            PathOf(frame.path),
            frame.pid ? FieldValue(qint64{*frame.pid}) : FieldValue(),
            hasText ? FieldValue(Text::FromBytes(text)) : FieldValue(),
            complete ? FieldValue(QString::fromLatin1(complete->toByteArray().toHex().toUpper()))
                     : FieldValue()};
}

Record RecordOf(const Reading& reading, const LimitTable& channels) {
    const QString unit = UnitOf(reading, channels);
    return {TimeOf(reading.utc),
            TextOf(reading.source),
            SideOf(reading.side),
            Text::FromBytes(reading.sequence),
            qint64{reading.frameType},
            qint64{reading.channel + 1},
            QString::fromLatin1(GridLayout::Tag(reading.grid)),
            QString::fromLatin1(GridLayout::RowName(reading.grid, reading.row)),
            reading.raw,
            FieldOf(reading.value),
            unit.isEmpty() ? FieldValue() : FieldValue(unit)};
}

Record RecordOf(const LimitEvent& event) {
    return {event.utc,
            SideOf(event.cell.side),
            QString::fromLatin1(GridLayout::Tag(event.cell.grid)),
            QString::fromLatin1(GridLayout::RowName(event.cell.grid, event.cell.row)),
            event.value,
            QString::fromLatin1(LevelName(event.from)),
            QString::fromLatin1(LevelName(event.to))};
}

QString LineOf(const HeardFrame& frame) {
    if (frame.source.isEmpty()) // bytes that are no AX.25 frame, or a header that nobody knows
        return Text::OneLine(Text::FromBytes(frame.engineText), longestLine);
    const QString path = frame.path.isEmpty() ? QString() : u',' + Text::FromBytes(frame.path);
    return QStringLiteral("%1>%2%3: %4")
        .arg(Text::FromBytes(frame.source), Text::FromBytes(frame.destination), path,
             Text::FromBytes(frame.information));
}

QString LineOf(const Reading& reading, const LimitTable& channels) {
    const QString line = QStringLiteral("%1 %2 %3 %4 = %5")
                             .arg(Text::FromBytes(reading.source), SideOf(reading.side),
                                  QString::fromLatin1(GridLayout::Tag(reading.grid)),
                                  QString::fromLatin1(GridLayout::RowName(reading.grid, reading.row)),
                                  reading.value ? Text::GeneralNumber(*reading.value) : QStringLiteral("-"));
    const QString unit = UnitOf(reading, channels);
    return unit.isEmpty() ? line : line + u' ' + unit;
}

QString LineOf(const LimitEvent& event) {
    return QStringLiteral("%1 %2 %3 = %4: %5, was %6")
        .arg(SideOf(event.cell.side), QString::fromLatin1(GridLayout::Tag(event.cell.grid)),
             QString::fromLatin1(GridLayout::RowName(event.cell.grid, event.cell.row)),
             Text::GeneralNumber(event.value), QString::fromLatin1(LevelName(event.to)),
             QString::fromLatin1(LevelName(event.from)));
}
