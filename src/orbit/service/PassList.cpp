#include "orbit/service/PassList.h"

#include "foundation/text/Text.h"

#include <algorithm>
#include <cmath>

namespace PassList {
namespace {

// Longer than any pass that a list of some days can hold, and far from where date-times end.
constexpr double longestSeconds = 1000.0 * secondsPerDay;

std::vector<std::string_view> Split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    for (;;) {
        const std::size_t end = text.find(separator);
        parts.push_back(text.substr(0, end));
        if (end == std::string_view::npos)
            return parts;
        text.remove_prefix(end + 1);
    }
}

// Right-aligned in three characters, of which no more are kept.
QString InThree(qint16 value) {
    return QString::number(value).rightJustified(3).right(3);
}

} // namespace

std::vector<std::string_view> Items(std::string_view list) {
    return list.empty() ? std::vector<std::string_view>() : Split(list, ',');
}

std::optional<DateTime> StartOf(std::string_view item) {
    constexpr std::size_t digits = 14;
    if (item.size() < digits + 1)
        return std::nullopt;
    const std::string_view text = item.substr(1, digits);
    if (!std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; }))
        return std::nullopt;
    const auto number = [&](std::size_t at, std::size_t length) {
        return static_cast<int>(Text::LeadingNumber(text.substr(at, length)));
    };
    const CalendarRecord start{.year = number(0, 4),
                               .month = number(4, 2),
                               .day = number(6, 2),
                               .hour = number(8, 2),
                               .minute = number(10, 2),
                               .second = number(12, 2)};
    if (start.year < 100 || start.month < 1 || start.month > 12 || start.day < 1 || start.day > 31 ||
        start.hour > 23 || start.minute > 59 || start.second > 60)
        return std::nullopt;
    return FromCalendar(start);
}

std::optional<Pass> Parse(std::string_view item) {
    const std::optional<DateTime> start = StartOf(item);
    if (!start)
        return std::nullopt;
    const std::vector<std::string_view> fields = Split(item.substr(1, item.size() - 2), ' ');
    if (fields.size() < 5 || fields[0].size() != 14)
        return std::nullopt;
    const std::optional<qint16> elevation = Text::RoundToInt16(Text::LeadingNumber(fields[3]));
    const double duration = Text::LeadingNumber(fields[4]);
    if (!elevation || !(duration >= 0.0 && duration <= longestSeconds))
        return std::nullopt;
    return Pass{.startUtc = *start, .durationSeconds = duration, .maxElevation = *elevation};
}

Pass ToWholeSeconds(const SatPass& pass) {
    // Through the two decimals of an item, which round as well.
    const QByteArray elevation = QByteArray::number(pass.maxElevation, 'f', 2);
    return {.startUtc = std::ceil(pass.riseUtc * secondsPerDay) / secondsPerDay,
            .durationSeconds = std::trunc((pass.setUtc - pass.riseUtc) * secondsPerDay),
            .maxElevation = Text::RoundToInt16(Text::LeadingNumber(elevation.toStdString())).value_or(0)};
}

std::optional<DateTime> NextStart(std::string_view list, DateTime nowUtc) {
    DateTime last = 0;
    for (const std::string_view item : Items(list)) {
        const std::optional<DateTime> start = StartOf(item);
        if (!start)
            return std::nullopt;
        last = *start;
        if (last > nowUtc)
            break;
    }
    return last;
}

QString TableLine(DateTime start, const Pass& pass, qint16 startAzimuth, qint16 endAzimuth) {
    const QString gap(6, u' ');
    return FormatDateTime(start, u"yyyy-mmm-dd hh:nn:ss", MonthNames::English).leftJustified(22, u' ', true) +
           u' ' + FormatDateTime(pass.durationSeconds / secondsPerDay, u"hh:nn:ss    ") +
           InThree(startAzimuth) + gap + InThree(endAzimuth) + gap + InThree(pass.maxElevation);
}

QString PrintText(const QString& caption, const QString& table) {
    const QString lineEnd = QStringLiteral("\r\n");
    const QString margin(6, u' ');
    QString text = caption + lineEnd + table;
    text.replace(lineEnd, lineEnd + margin);
    text.prepend(lineEnd + lineEnd + lineEnd + margin);
    qsizetype end = text.size();
    while (end > 0 && text[end - 1].isSpace())
        --end;
    return text.first(end);
}

} // namespace PassList
