#include "telemetry/replay/LogHeader.h"

#include "telemetry/replay/FrameLine.h"
#include "telemetry/replay/LineTime.h"

#include <algorithm>
#include <charconv>

namespace {

constexpr std::size_t npos = std::string_view::npos;
constexpr int largestPort = 256;

// Takes what stands before `mark` off `text`, the mark with it.
std::optional<std::string_view> TakeUntil(std::string_view& text, std::string_view mark) {
    const std::size_t end = text.find(mark);
    if (end == npos)
        return std::nullopt;
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(end + mark.size());
    return part;
}

template <class Number>
std::optional<Number> ToNumber(std::string_view text) {
    Number number = 0;
    const char* const end = text.data() + text.size();
    const auto [ptr, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && ptr == end ? std::optional(number) : std::nullopt;
}

} // namespace

std::optional<LogHeader> LogHeader::Read(std::string_view line) {
    LogHeader header;
    const auto timeOfDay = TakeTimeOfDay(line);
    const bool isTransmitted = line.starts_with("T ");
    if (!timeOfDay || (!isTransmitted && !line.starts_with("R ")) || !line.ends_with(">:"))
        return std::nullopt;
    line.remove_prefix(2);
    line.remove_suffix(2);
    const auto source = TakeUntil(line, ">");
    const auto stations = source ? TakeUntil(line, " Port=") : std::nullopt;
    const auto port = stations ? TakeUntil(line, " <") : std::nullopt;
    const auto number = port ? ToNumber<int>(*port) : std::nullopt;
    if (!number || *number < 1 || *number > largestPort)
        return std::nullopt;
    const std::size_t comma = stations->find(',');
    if (!IsCallsignText(*source) || !IsCallsignText(stations->substr(0, comma)) ||
        (comma != npos && !AppendPath(stations->substr(comma + 1), header.path)))
        return std::nullopt;
    header.timeOfDay = *timeOfDay;
    header.isTransmitted = isTransmitted;
    header.source = *source;
    header.destination = stations->substr(0, comma);
    header.port = *number;
    const std::string_view name = line.substr(0, line.find(' '));
    header.kind = name == "UI" ? 'U' : name == "I" ? 'I' : 'S';
    if (TakeUntil(line, " Len="))
        header.length = ToNumber<std::size_t>(line.substr(0, line.find(' '))).value_or(0);
    return header;
}
