#include "telemetry/limits/ChannelsFile.h"

#include "foundation/files/BoundedFile.h"
#include "foundation/files/Csv.h"
#include "foundation/text/ByteOrderMark.h"
#include "telemetry/calibration/GridLayout.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <span>
#include <tuple>
#include <utility>

namespace {

constexpr std::size_t fieldsInLine = 9;
constexpr qsizetype longestUnit = 16;  // characters
constexpr qsizetype longestShown = 40; // of a field in a reason

// What a line says, or, in place of a part that it does not say, the reason.
struct Line {
    int firstSide = 0;
    int lastSide = 0;
    int grid = 0;
    int row = 0;
    ChannelLimits limits;
    QString fault;
};

QString Shown(QByteArrayView field) {
    QString text = QString::fromUtf8(field).left(longestShown);
    for (QChar& c : text)
        if (!c.isPrint())
            c = u'?';
    return u'"' + text + u'"';
}

void ReadPlace(Line& line, QByteArrayView side, QByteArrayView grid, QByteArrayView row) {
    const QByteArray upperSide = side.toByteArray().toUpper();
    line.firstSide = upperSide == "B" ? 1 : 0;
    line.lastSide = upperSide == "A" ? 0 : 1;
    line.grid = GridLayout::FindGrid(grid.toByteArray().toUpper());
    line.row = line.grid < 0 ? 0 : GridLayout::FindRow(line.grid, row.toByteArray().toUpper());
    if (upperSide != "A" && upperSide != "B" && upperSide != "*")
        line.fault = QStringLiteral("the side is A, B or *, not %1").arg(Shown(side));
    else if (line.grid < 0)
        line.fault = QStringLiteral("no such grid: %1").arg(Shown(grid));
    else if (line.row == 0)
        line.fault = QStringLiteral("the grid has no such row: %1").arg(Shown(row));
}

void ReadUnit(Line& line, QByteArrayView field) {
    line.limits.unit = QString::fromUtf8(field);
    if (!field.isValidUtf8())
        line.fault = QStringLiteral("the unit is not in UTF-8");
    else if (line.limits.unit.size() > longestUnit)
        line.fault = QStringLiteral("the unit is longer than %1 characters").arg(longestUnit);
    else if (std::ranges::any_of(line.limits.unit, [](QChar c) { return !c.isPrint(); }))
        line.fault = QStringLiteral("the unit holds what cannot be shown");
}

// A whole field as a number; nothing for any other text.
template <class Number>
std::optional<Number> NumberIn(QByteArrayView field) {
    Number number{};
    const char* const end = field.data() + field.size();
    const char* const start = field.startsWith('+') ? field.data() + 1 : field.data();
    const auto read = std::from_chars(start, end, number);
    return read.ec == std::errc() && read.ptr == end ? std::optional(number) : std::nullopt;
}

void ReadLimit(Line& line, std::optional<double>& limit, QByteArrayView field) {
    if (field.isEmpty())
        return;
    limit = NumberIn<double>(field);
    if (!limit || !std::isfinite(*limit))
        line.fault = QStringLiteral("no number: %1").arg(Shown(field));
}

void ReadPersistence(Line& line, QByteArrayView field) {
    if (field.isEmpty())
        return;
    const std::optional<int> readings = NumberIn<int>(field);
    if (readings && *readings >= 1 && *readings <= ChannelLimits::mostPersistence)
        line.limits.persistence = *readings;
    else
        line.fault = QStringLiteral("the persistence is 1 to %1 readings, not %2")
                         .arg(ChannelLimits::mostPersistence)
                         .arg(Shown(field));
}

void CheckOrder(Line& line) {
    const ChannelLimits& limits = line.limits;
    std::optional<double> below;
    bool isBelowLow = false;
    for (const auto& [limit, isLow] :
         {std::pair(limits.lowAlarm, true), std::pair(limits.lowWarning, true),
          std::pair(limits.highWarning, false), std::pair(limits.highAlarm, false)}) {
        if (!limit)
            continue;
        // Warning and alarm may begin at the same value; between low and high there is room.
        if (below && (*limit < *below || (*limit == *below && isLow != isBelowLow)))
            line.fault = QStringLiteral("the limits do not rise from low alarm to high alarm");
        below = limit;
        isBelowLow = isLow;
    }
}

Line ReadLine(std::span<const std::string_view> texts) {
    Line line;
    if (texts.size() != fieldsInLine) {
        line.fault = QStringLiteral("%1 fields in place of %2").arg(texts.size()).arg(fieldsInLine);
        return line;
    }
    std::array<QByteArrayView, fieldsInLine> fields;
    for (std::size_t i = 0; i < fieldsInLine; ++i)
        fields[i] = QByteArrayView(texts[i].data(), static_cast<qsizetype>(texts[i].size())).trimmed();
    // From the last field to the first, so that the fault that is told is the line's first one.
    ReadPersistence(line, fields[8]);
    ReadLimit(line, line.limits.highAlarm, fields[7]);
    ReadLimit(line, line.limits.highWarning, fields[6]);
    ReadLimit(line, line.limits.lowWarning, fields[5]);
    ReadLimit(line, line.limits.lowAlarm, fields[4]);
    ReadUnit(line, fields[3]);
    ReadPlace(line, fields[0], fields[1], fields[2]);
    if (line.fault.isEmpty())
        CheckOrder(line);
    return line;
}

} // namespace

ChannelsFile ChannelsFile::Read(const QString& path) {
    ChannelsFile file;
    if (!QFile::exists(path))
        return file;
    QString reason;
    if (const std::optional<QByteArray> bytes = ReadBoundedFile(path, largestFile, reason))
        return Parse(*bytes);
    file.m_faults.push_back({0, reason});
    return file;
}

ChannelsFile ChannelsFile::Parse(QByteArrayView bytes) {
    ChannelsFile file;
    LimitTable forBoth;
    std::map<std::tuple<int, int, int, int>, std::size_t> lines; // of each sides, grid and row
    Csv::Reader reader(WithoutByteOrderMark({bytes.data(), static_cast<std::size_t>(bytes.size())}),
                       Csv::Reader::LineEnds::EndRecords);
    while (reader.Next()) {
        const std::size_t start = reader.Text().find_first_not_of(" \t");
        if (start == std::string_view::npos || reader.Text()[start] == '#')
            continue;
        Line line = ReadLine(reader.Fields());
        if (!reader.IsSound())
            line.fault = QStringLiteral("a quote is out of place, or the line is too long");
        const std::tuple place(line.firstSide, line.lastSide, line.grid, line.row);
        if (line.fault.isEmpty())
            if (const auto [first, isNew] = lines.try_emplace(place, reader.LineNumber()); !isNew)
                line.fault = QStringLiteral("line %1 is for the same channel").arg(first->second);
        if (!line.fault.isEmpty()) {
            file.m_faults.push_back({reader.LineNumber(), line.fault});
            continue;
        }
        LimitTable& table = line.firstSide == line.lastSide ? file.m_limits : forBoth;
        for (int side = line.firstSide; side <= line.lastSide; ++side)
            table[{side, line.grid, line.row}] = line.limits;
    }
    file.m_limits.merge(forBoth); // keeps what a line for one side has set
    return file;
}
