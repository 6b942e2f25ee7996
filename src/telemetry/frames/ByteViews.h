#pragma once

#include <QByteArrayView>

#include <array>
#include <optional>
#include <string_view>

/// The same bytes, as the standard library sees them.
inline std::string_view ToView(QByteArrayView bytes) {
    return {bytes.data(), static_cast<std::size_t>(bytes.size())};
}

/// Where the first CR or LF stands; npos when there is none. Several times as fast as find_first_of.
inline std::size_t FindLineEnd(std::string_view text) {
    const std::size_t carriageReturn = text.find('\r');
    const std::size_t lineFeed = text.substr(0, carriageReturn).find('\n');
    return lineFeed == std::string_view::npos ? carriageReturn : lineFeed;
}

/// The fields of a line between its commas; nothing unless there are exactly `count`.
template <std::size_t count>
std::optional<std::array<std::string_view, count>> SplitAtCommas(std::string_view line) {
    std::array<std::string_view, count> fields;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t comma = line.find(',');
        const bool isLast = i + 1 == count;
        if (isLast != (comma == std::string_view::npos))
            return std::nullopt;
        fields[i] = line.substr(0, comma);
        line.remove_prefix(isLast ? line.size() : comma + 1);
    }
    return fields;
}
