#include "telemetry/limits/EventFile.h"

#include "foundation/files/BoundedFile.h"
#include "foundation/files/Csv.h"
#include "foundation/text/ByteOrderMark.h"
#include "foundation/text/IsoTime.h"
#include "foundation/text/Text.h"
#include "telemetry/calibration/GridLayout.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace {

constexpr std::size_t fieldsInLine = 7;

std::optional<LimitEvent> ReadEvent(std::span<const std::string_view> fields) {
    if (fields.size() < fieldsInLine) // more may come to stand behind them
        return std::nullopt;
    const std::optional<qint64> utc = IsoTime::Read(fields[0]);
    const int grid = GridLayout::FindGrid(QByteArrayView(fields[2]));
    const int row =
        grid < 0 ? 0 : GridLayout::FindRow(grid, QByteArrayView(fields[3]).toByteArray().toUpper());
    const std::optional<Level> from = LevelOf(QByteArrayView(fields[5]));
    const std::optional<Level> to = LevelOf(QByteArrayView(fields[6]));
    double value = 0.0;
    const char* const end = fields[4].data() + fields[4].size();
    const auto read = std::from_chars(fields[4].data(), end, value);
    if (!utc || (fields[1] != "A" && fields[1] != "B") || row == 0 || !from || !to ||
        read.ec != std::errc() || read.ptr != end)
        return std::nullopt;
    return LimitEvent{*utc, {fields[1] == "B" ? 1 : 0, grid, row}, value, *from, *to};
}

} // namespace

EventFile::EventFile(const QString& path, AppendFile::Failed failed)
    : m_file(path,
             {.header = QByteArrayLiteral("utc,side,grid,row,value,from,to\n"),
              .isSynced = true,
              .mostKept = 65536},
             std::move(failed)) {}

void EventFile::Append(const LimitEvent& event) {
    const LimitCell& cell = event.cell;
    (void)m_file.Append(
        Csv::Line({IsoTime::Milliseconds(event.utc), cell.side == 1 ? "B" : "A", GridLayout::Tag(cell.grid),
                   GridLayout::RowName(cell.grid, cell.row), Text::GeneralNumber(event.value).toLatin1(),
                   LevelName(event.from), LevelName(event.to)}));
}

std::vector<LimitEvent> EventFile::Read(const QString& path) {
    std::vector<LimitEvent> events;
    QFile file(path);
    if (!OpenRegularFile(file).isEmpty() || !file.seek(std::max<qint64>(file.size() - mostRead, 0)))
        return events;
    const QByteArray bytes = file.read(mostRead); // may begin within a line, which then is none
    Csv::Reader reader(WithoutByteOrderMark({bytes.constData(), static_cast<std::size_t>(bytes.size())}),
                       Csv::Reader::LineEnds::EndRecords);
    while (reader.Next())
        if (const std::optional<LimitEvent> event = ReadEvent(reader.Fields()))
            events.push_back(*event);
    return events;
}

LimitStates EventFile::StatesAfter(const std::vector<LimitEvent>& events) {
    LimitStates states;
    for (const LimitEvent& event : events)
        states[event.cell] = event.to;
    return states;
}
