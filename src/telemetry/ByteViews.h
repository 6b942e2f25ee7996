#pragma once

#include <QByteArrayView>

#include <string_view>

/// The same bytes, as the standard library sees them.
inline std::string_view ToView(QByteArrayView bytes) {
    return {bytes.data(), static_cast<std::size_t>(bytes.size())};
}
