#include "orbit/elements/TwoLineReader.h"

#include "orbit/elements/Lines.h"

namespace orbitmath {

namespace {

constexpr std::size_t longestName = 64;
constexpr std::size_t lineLength = 69;
constexpr std::size_t elementLike = 60; // a line this long that begins like an element line was meant as one

/// The second of a line's fields, which blanks separate, when its first is `first`; nothing else is empty.
std::string_view SecondField(std::string_view line, char first) {
    if (line.size() < 3 || line[0] != first || line[1] != ' ')
        return {};
    const std::size_t start = line.find_first_not_of(' ', 1);
    return start == std::string_view::npos ? std::string_view()
                                           : line.substr(start, line.find(' ', start) - start);
}

} // namespace

bool TwoLineReader::TakeLine(std::string_view whole) {
    ++m_line;
    const std::string_view line = Trimmed(whole);
    const bool isSecond = !SecondField(line, '2').empty();
    m_isCut = m_isCut && line.empty();
    if (line.empty()) {
        // Blank lines may stand within a set, but it is no group then.
    } else if (!m_line1.empty() && isSecond) {
        TakeSet(line);
    } else {
        m_isCut = !m_line1.empty();
        MissSecondLine();
        if (!SecondField(line, '1').empty()) {
            m_line1 = line;
            m_line1Number = m_line;
            m_aboveLine1 = m_above;
        } else if (isSecond && line.size() >= elementLike) {
            RefuseHalf(SecondField(line, '2'), m_line, {.line = 2, .what = "its line 1 is missing"});
        } else {
            TakeName(line);
        }
    }
    m_above = line;
    return m_isWanted;
}

void TwoLineReader::End() {
    m_isCut = m_isCut || !m_line1.empty();
    MissSecondLine();
}

void TwoLineReader::TakeSet(std::string_view line2) {
    ElementRecord record;
    record.name = m_name;
    record.nameLine = m_line == m_line1Number + 1 ? m_aboveLine1 : std::string_view();
    record.number1 = SecondField(m_line1, '1');
    record.number2 = SecondField(line2, '2');
    record.lines = {m_name, m_line1, line2};
    m_isCut = line2.size() < lineLength;
    record.content = ReadElements(m_line1, line2);
    const auto* fault = std::get_if<ElementFault>(&record.content);
    record.line = fault != nullptr && fault->line == 2 ? m_line : m_line1Number;
    record.isMeant = m_line1.size() >= elementLike || line2.size() >= elementLike;
    m_isWanted = m_take(record);
    m_line1.clear();
    m_name.clear();
}

/// What begins like a line 1 and has no line 2 after it: half a set when it is long, and else a name.
void TwoLineReader::MissSecondLine() {
    if (m_line1.empty())
        return;
    if (m_line1.size() >= elementLike)
        RefuseHalf(SecondField(m_line1, '1'), m_line1Number, {.line = 1, .what = "its line 2 is missing"});
    else
        TakeName(m_line1);
    m_line1.clear();
}

void TwoLineReader::RefuseHalf(std::string_view number, std::size_t line, const ElementFault& fault) {
    ElementRecord record;
    record.name = m_name;
    record.number1 = number;
    record.number2 = number;
    record.line = line;
    record.content = fault;
    if (m_isWanted)
        m_isWanted = m_take(record);
    m_name.clear();
}

void TwoLineReader::TakeName(std::string_view line) {
    if (line.starts_with("0 "))
        line = Trimmed(line.substr(2));
    m_name = line.substr(0, longestName);
}

} // namespace orbitmath
