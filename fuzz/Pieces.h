#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <vector>

/// Cuts a text into pieces of 1 to `longest` bytes; where, the text itself decides, so that the same input
/// always takes the same way.
inline std::vector<std::string_view> Pieces(std::string_view text, std::size_t longest) {
    std::uint64_t state = 0xcbf29ce484222325U; // FNV-1a, then an xorshift
    for (const char c : text)
        state = (state ^ static_cast<unsigned char>(c)) * 0x100000001b3U;
    state |= 1U;
    std::vector<std::string_view> pieces;
    while (!text.empty()) {
        state ^= state << 13U;
        state ^= state >> 7U;
        state ^= state << 17U;
        const std::size_t length = std::min<std::size_t>(text.size(), state % longest + 1);
        pieces.push_back(text.substr(0, length));
        text.remove_prefix(length);
    }
    return pieces;
}
