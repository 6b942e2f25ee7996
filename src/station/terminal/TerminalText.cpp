#include "station/terminal/TerminalText.h"

#include "telemetry/monitor/DisplayKind.h"

#include <algorithm>

namespace {

constexpr qsizetype trimFrom = 10001;
constexpr qsizetype searchFrom = 5000; // characters from the end
constexpr qsizetype searchTo = 4500;

} // namespace

TerminalText::Colour TerminalText::ColourOf(qint16 kind) {
    return kind == DisplayKind::Transmitted ? Colour::Cyan : Colour::Green;
}

void TerminalText::Append(QByteArrayView text, qint16 kind) {
    Trim();
    if (text.isEmpty())
        return;
    m_bytes.append(text);
    m_fresh += text.size();
    const Colour colour = ColourOf(kind);
    if (m_runs.isEmpty() || m_runs.last().colour != colour)
        m_runs.append({colour, 0});
    m_runs.last().length += text.size();
}

void TerminalText::Clear() {
    m_bytes.clear();
    m_runs.clear();
    m_fresh = 0;
    m_cut = 0;
    m_isReset = true;
}

void TerminalText::Trim() {
    const qsizetype size = m_bytes.size();
    if (size < trimFrom)
        return;
    // Positions are counted from 1: the cut lies just after the position where the search stops.
    const qsizetype last = size - searchTo;
    const qsizetype lineFeed = m_bytes.indexOf('\n', size - searchFrom - 1);
    CutFront(lineFeed >= 0 && lineFeed < last ? lineFeed + 1 : last);
}

void TerminalText::CutFront(qsizetype count) {
    const qsizetype shown = m_bytes.size() - m_fresh; // bytes of it that the pane may show
    const QByteArrayView shownCut = QByteArrayView(m_bytes).first(std::min(count, shown));
    m_cut += shownCut.size() - std::ranges::count(shownCut, '\r');
    if (count >= shown)
        m_isReset = true;
    m_fresh = std::min(m_fresh, m_bytes.size() - count);
    m_bytes.remove(0, count);
    while (count > 0) {
        const qsizetype length = std::min(count, m_runs.first().length);
        count -= length;
        m_runs.first().length -= length;
        if (m_runs.first().length == 0)
            m_runs.removeFirst();
    }
}

TerminalText::Change TerminalText::Take() {
    Change change{
        .isReset = m_isReset, .cut = m_isReset ? 0 : m_cut, .text = m_bytes.last(m_fresh), .runs = {}};
    qsizetype left = m_fresh;
    for (auto run = m_runs.crbegin(); left > 0; ++run) {
        change.runs.prepend({run->colour, std::min(left, run->length)});
        left -= change.runs.first().length;
    }
    m_fresh = 0;
    m_cut = 0;
    m_isReset = false;
    return change;
}
