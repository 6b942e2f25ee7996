#pragma once

#include <QByteArrayView>

#include <cstddef>
#include <cstdint>
#include <string_view>

/// The fuzzer's bytes as text.
inline std::string_view Input(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

inline QByteArrayView Bytes(std::string_view text) {
    return {text.data(), static_cast<qsizetype>(text.size())};
}

inline std::string_view View(QByteArrayView bytes) {
    return {bytes.data(), static_cast<std::size_t>(bytes.size())};
}

/// Takes what stands before the first `mark` off `text`, the mark with it; all of it when there is none.
inline std::string_view TakeUntil(std::string_view& text, char mark) {
    const std::size_t end = text.find(mark);
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return part;
}
