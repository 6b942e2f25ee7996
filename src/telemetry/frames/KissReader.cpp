#include "telemetry/frames/KissReader.h"

#include <algorithm>

namespace {

constexpr char mark = KissFrame::mark;
constexpr char escape = '\xDB';
constexpr char escapedMark = '\xDC'; // behind an escape, as the next one
constexpr char escapedEscape = '\xDD';

constexpr std::size_t longest = 1 + KissFrame::longestData;

void AppendEscaped(char c, std::string& stream) {
    if (c == mark)
        (stream += escape) += escapedMark;
    else if (c == escape)
        (stream += escape) += escapedEscape;
    else
        stream += c;
}

} // namespace

void KissFrame::AppendTo(std::string& stream) const {
    stream += mark;
    AppendEscaped(static_cast<char>((port & 0x0FU) << 4U | (command & 0x0FU)), stream);
    for (const char c : data)
        AppendEscaped(c, stream);
    stream += mark;
}

bool KissReader::Next(std::string_view& stream, KissFrame& frame) {
    if (m_isGiven)
        m_frame.clear();
    m_isGiven = false;
    while (!stream.empty()) {
        const std::size_t end = stream.find(mark);
        Take(stream.substr(0, end));
        if (end == std::string_view::npos) {
            stream = {};
            return false;
        }
        stream.remove_prefix(end + 1);
        if (m_isEscaped)
            Refuse(); // an escape that escapes nothing
        m_isPassing = false;
        if (m_frame.empty())
            continue;
        const auto first = static_cast<unsigned char>(m_frame.front());
        frame = {.port = static_cast<std::uint8_t>(first >> 4U),
                 .command = static_cast<std::uint8_t>(first & 0x0FU),
                 .data = std::string_view(m_frame).substr(1)};
        m_isGiven = true;
        return true;
    }
    return false;
}

void KissReader::Take(std::string_view piece) {
    while (!piece.empty() && !m_isPassing) {
        if (m_isEscaped) {
            if (piece.front() != escapedMark && piece.front() != escapedEscape)
                return Refuse();
            m_frame += piece.front() == escapedMark ? mark : escape;
            m_isEscaped = false;
            piece.remove_prefix(1);
        } else {
            const std::size_t plain = std::min(piece.find(escape), piece.size());
            m_frame.append(piece.substr(0, std::min(plain, longest + 1 - m_frame.size())));
            m_isEscaped = plain < piece.size();
            piece.remove_prefix(plain + (m_isEscaped ? 1 : 0));
        }
        if (m_frame.size() > longest)
            return Refuse();
    }
}

void KissReader::Refuse() {
    m_frame.clear();
    m_isEscaped = false;
    m_isPassing = true;
    ++m_refused;
}
