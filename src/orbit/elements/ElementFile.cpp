#include "orbit/elements/ElementFile.h"

#include <array>

namespace orbitmath {

namespace {

constexpr std::size_t pieceSize = 65536;
constexpr std::size_t longestLine = 256; // longer ones are neither elements nor names
constexpr std::size_t longestName = 64;
constexpr std::size_t elementLike = 60; // a line this long that begins like an element line was meant as one

std::string_view WithoutEnd(std::string_view line) {
    const std::size_t last = line.find_last_not_of(" \t\r");
    return line.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

std::string_view WithoutStart(std::string_view line) {
    const std::size_t first = line.find_first_not_of(" \t");
    return line.substr(first == std::string_view::npos ? line.size() : first);
}

} // namespace

void ElementFile::Read(std::istream& file) {
    std::array<char, pieceSize> piece{};
    std::string begun; // the line that the last piece broke off
    bool first = true;
    while (file) {
        file.read(piece.data(), piece.size());
        std::string_view text(piece.data(), static_cast<std::size_t>(file.gcount()));
        if (first) {
            if (text.find('\0') != std::string_view::npos)
                return;
            if (text.starts_with("\xEF\xBB\xBF")) // a byte order mark
                text.remove_prefix(3);
            first = false;
        }
        for (std::size_t end = 0; (end = text.find('\n')) != std::string_view::npos;) {
            if (begun.empty()) {
                TakeLine(text.substr(0, end));
            } else {
                begun.append(text.substr(0, std::min(end, longestLine)));
                TakeLine(begun);
                begun.clear();
            }
            text.remove_prefix(end + 1);
        }
        if (begun.size() <= longestLine)
            begun.append(text.substr(0, longestLine + 1));
    }
    TakeLine(begun);
    MissSecondLine();
}

void ElementFile::TakeLine(std::string_view whole) {
    ++m_line;
    const std::string_view line = WithoutEnd(whole);
    if (line.empty())
        return;
    const bool second = line.starts_with("2 ");
    if (!m_line1.empty() && second) {
        const auto read = ReadElements(m_line1, line);
        if (const auto* elements = std::get_if<Elements>(&read))
            m_found(*elements, m_name);
        else
            Damaged(m_line1Number, std::get<std::string_view>(read));
        m_line1.clear();
        m_name.clear();
        return;
    }
    MissSecondLine();
    if (line.starts_with("1 ") && line.size() <= longestLine) {
        m_line1 = line;
        m_line1Number = m_line;
    } else if (second && line.size() >= elementLike) {
        Damaged(m_line, "its line 1 is missing");
        m_name.clear();
    } else {
        TakeName(line);
    }
}

/// What begins like a line 1 and has no line 2 after it: half a set when it is long, and else a name.
void ElementFile::MissSecondLine() {
    if (m_line1.empty())
        return;
    if (m_line1.size() >= elementLike) {
        Damaged(m_line1Number, "its line 2 is missing");
        m_name.clear();
    } else {
        TakeName(m_line1);
    }
    m_line1.clear();
}

void ElementFile::TakeName(std::string_view line) {
    m_name.clear();
    if (line.size() > longestLine)
        return;
    std::string_view name = WithoutStart(line);
    if (name.size() >= elementLike && name.size() < line.size() && name.starts_with("1 ")) {
        Damaged(m_line, "wrong columns");
        return;
    }
    if (name.starts_with("0 "))
        name = WithoutStart(name.substr(2));
    m_name = name.substr(0, longestName);
}

void ElementFile::Damaged(std::size_t line, std::string_view why) {
    if (m_damaged++ > 0)
        return;
    m_firstDamagedLine = line;
    m_firstFault = why;
}

} // namespace orbitmath
