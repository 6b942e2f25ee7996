#include "telemetry/replay/FrameLine.h"

#include <algorithm>
#include <charconv>

namespace {

constexpr std::size_t npos = std::string_view::npos;
constexpr std::size_t longestCallsign = 9;
constexpr std::size_t longestBrackets = 64;
constexpr int largestChannel = 255;
constexpr int itemsBefore = 4; // times and brackets before a frame

// Appends `text` with its escapes read.
void AppendUnescaped(std::string_view text, std::string& bytes) {
    constexpr std::string_view opening = "<0x";
    constexpr std::size_t length = 6;
    for (;;) {
        const std::size_t at = text.find(opening);
        bytes.append(text.substr(0, at));
        if (at == npos)
            return;
        text.remove_prefix(at);
        unsigned value = 0;
        const char* const end = text.data() + std::min(length - 1, text.size());
        const bool isEscape = text.size() >= length && *end == '>' &&
                              std::from_chars(text.data() + opening.size(), end, value, 16).ptr == end &&
                              (value <= ' ' || value > '~');
        if (isEscape)
            bytes += static_cast<char>(value);
        else
            bytes.append(opening);
        text.remove_prefix(isEscape ? length : opening.size());
    }
}

// Takes "[...]" off the front of `text`.
bool TakeBrackets(std::string_view& text, FrameLine& line) {
    const std::size_t end = text.find(']');
    if (!text.starts_with('[') || end == npos || end > longestBrackets)
        return false;
    std::string_view inside = text.substr(1, end - 1);
    text.remove_prefix(end + 1);
    int channel = 0;
    const char* const inEnd = inside.data() + inside.size();
    const auto [ptr, error] = std::from_chars(inside.data(), inEnd, channel);
    if (error != std::errc() || channel < 0 || channel > largestChannel)
        return true;
    line.channel = channel;
    inside.remove_prefix(static_cast<std::size_t>(ptr - inside.data()));
    line.isTransmitted = inside.starts_with('L') || inside.starts_with('H');
    if (const std::size_t blank = inside.find(' '); blank != npos) {
        inside.remove_prefix(blank);
        if (std::optional<LineTime> time; TakeTime(inside, time) && inside.empty())
            line.time = time;
    }
    return true;
}

// Takes "(NAME cmd, ...)" off the front of a frame that Dire Wolf names.
void TakeName(std::string_view& information, FrameLine& line) {
    const std::size_t end = information.find(')');
    const std::size_t blank = information.find(' ');
    if (!information.starts_with('(') || end == npos || blank > end)
        return;
    const std::string_view word = information.substr(blank + 1, 4);
    if (word != "cmd," && word != "res," && word != "cmd)" && word != "res)")
        return;
    const std::string_view name = information.substr(1, blank - 1);
    line.kind = name == "UI" ? 'U' : name == "I" ? 'I' : 'S';
    // "n(s)=0, n(r)=0" stand in brackets of their own.
    int depth = 0;
    for (std::size_t i = 0; i < std::min(information.size(), longestBrackets); ++i) {
        depth += information[i] == '(' ? 1 : information[i] == ')' ? -1 : 0;
        if (depth == 0) {
            information.remove_prefix(i + 1);
            return;
        }
    }
}

// Reads "SOURCE,T#...", all of it.
bool ReadTelemetry(std::string_view text, FrameLine& line) {
    const std::size_t comma = text.find(',');
    if (comma == npos || !IsCallsignText(text.substr(0, comma)) || !text.substr(comma + 1).starts_with("T#"))
        return false;
    line.source = text.substr(0, comma);
    AppendUnescaped(text.substr(comma + 1), line.information);
    return true;
}

// Reads "SOURCE>DESTINATION,PATH:information", all of it.
bool ReadMonitored(std::string_view text, bool isNamed, FrameLine& line) {
    const std::size_t greater = text.find('>');
    const std::size_t colon = text.find(':');
    if (greater == npos || colon == npos || greater > colon || !IsCallsignText(text.substr(0, greater)))
        return false;
    const std::string_view addresses = text.substr(greater + 1, colon - greater - 1);
    const std::size_t comma = addresses.find(',');
    line.path.clear();
    if (!IsCallsignText(addresses.substr(0, comma)) ||
        (comma != npos && !AppendPath(addresses.substr(comma + 1), line.path)))
        return false;
    line.source = text.substr(0, greater);
    line.destination = addresses.substr(0, comma);
    std::string_view information = text.substr(colon + 1);
    if (isNamed)
        TakeName(information, line);
    AppendUnescaped(information, line.information);
    return true;
}

} // namespace

bool IsCallsignText(std::string_view text) {
    return !text.empty() && text.size() <= longestCallsign && std::ranges::all_of(text, [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-';
    });
}

bool AppendPath(std::string_view digipeaters, std::string& path) {
    const std::size_t lastMark = digipeaters.rfind('*');
    for (std::size_t at = 0;;) {
        const std::size_t end = std::min(digipeaters.find(',', at), digipeaters.size());
        std::string_view digipeater = digipeaters.substr(at, end - at);
        if (digipeater.ends_with('*'))
            digipeater.remove_suffix(1);
        if (!IsCallsignText(digipeater))
            return false;
        path.append(digipeater);
        if (lastMark != npos && at <= lastMark)
            path += '*';
        if (end == digipeaters.size())
            return true;
        path += ',';
        at = end + 1;
    }
}

std::optional<FrameLine> FrameLine::Read(std::string_view line) {
    FrameLine read;
    bool isNamed = false;
    bool isTimeUnknown = false;
    for (int items = 0; items <= itemsBefore; ++items) {
        // A callsign may begin like a time.
        if (ReadMonitored(line, isNamed, read) || ReadTelemetry(line, read)) {
            if (isTimeUnknown)
                read.time.reset();
            return read;
        }
        std::optional<LineTime> time;
        if (TakeBrackets(line, read)) {
            isNamed = true;
            line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
        } else if (TakeTime(line, time)) {
            isTimeUnknown = isTimeUnknown || !time;
            if (!read.time)
                read.time = time;
        } else {
            break;
        }
    }
    return std::nullopt;
}
