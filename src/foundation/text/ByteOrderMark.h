#pragma once

#include <string_view>

/// A text file's bytes without the UTF-8 byte-order mark that some editors put in front.
constexpr std::string_view WithoutByteOrderMark(std::string_view text) {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    return text.starts_with(mark) ? text.substr(mark.size()) : text;
}
