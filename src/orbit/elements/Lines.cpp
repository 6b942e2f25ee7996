#include "orbit/elements/Lines.h"

#include "foundation/text/ByteOrderMark.h"

#include <algorithm>
#include <string>
#include <vector>

namespace orbitmath {

void ForEachPiece(std::istream& file, const std::function<bool(std::string_view piece)>& take) {
    constexpr std::size_t pieceSize = 65536;
    std::vector<char> piece(pieceSize);
    for (std::int64_t left = mostOfFile; left > 0 && file;) {
        file.read(piece.data(), std::min<std::int64_t>(pieceSize, left));
        std::string_view text(piece.data(), static_cast<std::size_t>(file.gcount()));
        if (left == mostOfFile)
            text = WithoutByteOrderMark(text);
        left -= file.gcount();
        if (!take(text))
            return;
    }
}

void ForEachLine(std::istream& file, const std::function<bool(std::string_view line)>& take) {
    std::string begun; // the line that the last piece broke off
    bool isBegun = false;
    bool isWanted = true;
    ForEachPiece(file, [&](std::string_view text) {
        for (std::size_t end = 0; (end = text.find('\n')) != std::string_view::npos;) {
            std::string_view line = text.substr(0, end);
            if (isBegun)
                line = begun.append(line.substr(0, mostOfLine - std::min(begun.size(), mostOfLine)));
            isWanted = take(line.substr(0, mostOfLine));
            if (!isWanted)
                return false;
            begun.clear();
            isBegun = false;
            text.remove_prefix(end + 1);
        }
        if (!text.empty()) {
            begun.append(text.substr(0, mostOfLine - std::min(begun.size(), mostOfLine)));
            isBegun = true;
        }
        return true;
    });
    if (isBegun && isWanted)
        take(begun);
}

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\v\f\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

} // namespace orbitmath
