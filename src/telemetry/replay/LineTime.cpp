#include "telemetry/replay/LineTime.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>

namespace {

constexpr std::string_view digits = "0123456789";
constexpr std::string_view capitals = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr std::string_view blanks = " \t";
constexpr std::int64_t minute = 60'000;
constexpr std::int64_t day = 24 * 60 * minute;

// Takes a number of exactly `count` digits.
std::optional<int> TakeNumber(std::string_view& text, std::size_t count) {
    if (std::min(text.find_first_not_of(digits), text.size()) < count)
        return std::nullopt;
    int number = 0;
    std::from_chars(text.data(), text.data() + count, number);
    text.remove_prefix(count);
    return number;
}

bool Take(std::string_view& text, std::string_view characters) {
    if (text.empty() || characters.find(text.front()) == std::string_view::npos)
        return false;
    text.remove_prefix(1);
    return true;
}

void TakeAll(std::string_view& text, std::string_view characters) {
    text.remove_prefix(std::min(text.find_first_not_of(characters), text.size()));
}

// Takes up to the next blank.
std::string_view TakeWord(std::string_view& text) {
    const std::string_view word = text.substr(0, text.find_first_of(blanks));
    text.remove_prefix(word.size());
    return word;
}

// Takes "yyyy-mm-dd": the milliseconds of its midnight.
std::optional<std::int64_t> TakeDate(std::string_view& text) {
    std::string_view rest = text;
    const auto year = TakeNumber(rest, 4);
    const auto month = year && Take(rest, "-") ? TakeNumber(rest, 2) : std::nullopt;
    const auto dayOfMonth = month && Take(rest, "-") ? TakeNumber(rest, 2) : std::nullopt;
    if (!dayOfMonth || *year < 1970)
        return std::nullopt;
    const std::chrono::year_month_day date{std::chrono::year(*year),
                                           std::chrono::month(static_cast<unsigned>(*month)),
                                           std::chrono::day(static_cast<unsigned>(*dayOfMonth))};
    if (!date.ok())
        return std::nullopt;
    text = rest;
    return std::chrono::sys_days(date).time_since_epoch().count() * day;
}

// The milliseconds by which a zone is ahead of UTC; nothing for a zone of another form.
std::optional<std::int64_t> ZoneOffset(std::string_view zone) {
    constexpr std::array<std::string_view, 3> utcNames{"Z", "UTC", "GMT"};
    if (std::ranges::find(utcNames, zone) != utcNames.end())
        return 0;
    const bool isWest = zone.starts_with('-');
    if (!Take(zone, "+-"))
        return std::nullopt;
    const auto hours = TakeNumber(zone, 2);
    Take(zone, ":");
    const auto minutes = zone.empty() ? std::optional(0) : TakeNumber(zone, 2);
    if (!hours || !minutes || !zone.empty() || *hours > 14 || *minutes > 59)
        return std::nullopt;
    const std::int64_t offset = (*hours * 60 + *minutes) * minute;
    return isWest ? -offset : offset;
}

// Whether a word behind a time and a blank is the name of its zone.
bool IsZoneName(std::string_view word) {
    const bool isOffset = word.size() >= 3 && (word.front() == '+' || word.front() == '-');
    const bool isName =
        word.size() >= 2 && word.size() <= 5 && word.find_first_not_of(capitals) == std::string_view::npos;
    return word == "Z" || isOffset || isName;
}

std::optional<LineTime> InZone(std::int64_t milliseconds, std::string_view zone) {
    if (zone.empty())
        return LineTime{LineTime::Clock::Unknown, milliseconds};
    const std::optional<std::int64_t> offset = ZoneOffset(zone);
    return offset ? std::optional(LineTime{LineTime::Clock::Utc, milliseconds - *offset}) : std::nullopt;
}

bool LooksLikeTime(std::string_view word) {
    return word.size() >= 4 && digits.find(word.front()) != std::string_view::npos &&
           word.find_first_not_of("0123456789:./,+-TZ") == std::string_view::npos;
}

} // namespace

std::optional<std::int64_t> TakeTimeOfDay(std::string_view& text) {
    std::string_view rest = text;
    const auto hour = TakeNumber(rest, 2);
    const auto minutes = hour && Take(rest, ":") ? TakeNumber(rest, 2) : std::nullopt;
    const auto second = minutes && Take(rest, ":") ? TakeNumber(rest, 2) : std::nullopt;
    // A leap second is the next minute's first.
    if (!second || *hour > 23 || *minutes > 59 || *second > 60)
        return std::nullopt;
    std::int64_t milliseconds = (*hour * 60 + *minutes) * minute + *second * 1000;
    if (rest.size() > 1 && digits.find(rest[1]) != std::string_view::npos && Take(rest, ".,")) {
        for (const int weight : {100, 10, 1}) {
            if (const auto digit = TakeNumber(rest, 1))
                milliseconds += *digit * weight;
        }
        TakeAll(rest, digits);
    }
    text = rest;
    return milliseconds;
}

bool TakeTime(std::string_view& text, std::optional<LineTime>& time) {
    std::string_view rest = text;
    TakeAll(rest, blanks);
    const std::string_view start = rest;
    time.reset();
    const auto date = TakeDate(rest);
    if (date && !Take(rest, "T"))
        TakeAll(rest, blanks);
    const auto timeOfDay = TakeTimeOfDay(rest);
    if (!timeOfDay) {
        rest = start;
        if (!LooksLikeTime(TakeWord(rest)))
            return false;
    } else {
        std::string_view zone = TakeWord(rest);
        if (zone.empty()) {
            std::string_view after = rest;
            TakeAll(after, blanks);
            if (const std::string_view word = TakeWord(after); IsZoneName(word)) {
                zone = word;
                rest = after;
            }
        } else if (!IsZoneName(zone)) {
            return false;
        }
        if (date)
            time = InZone(*date + *timeOfDay, zone);
        else if (zone.empty())
            time = LineTime{LineTime::Clock::TimeOfDay, *timeOfDay};
    }
    TakeAll(rest, blanks);
    text = rest;
    return true;
}
