#pragma once

#include <string_view>

/// The frame type of a telemetry line, by its eighth field: the third and fourth characters are its binary
/// digits. A character that is missing or no digit counts as 0; other digits lead beyond the types 0 to 3.
constexpr int FrameTypeOf(std::string_view typeField) {
    const auto digit = [&](std::size_t at) {
        return at < typeField.size() && typeField[at] >= '0' && typeField[at] <= '9' ? typeField[at] - '0'
                                                                                     : 0;
    };
    return 2 * digit(2) + digit(3);
}
