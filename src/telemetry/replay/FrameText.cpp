#include "telemetry/replay/FrameText.h"

#include "foundation/text/ByteOrderMark.h"
#include "telemetry/frames/ByteViews.h"
#include "telemetry/replay/FrameLine.h"

#include <algorithm>
#include <utility>

namespace {

constexpr qsizetype exampleLength = 80;

std::string_view Trimmed(std::string_view line) {
    const std::size_t first = std::min(line.find_first_not_of(' '), line.size());
    return line.substr(first, line.find_last_not_of(' ') + 1 - first);
}

// What the link says into the log.
bool IsStatus(std::string_view line) {
    return line.starts_with("*** ") || line == "Will automatically retry in 30 seconds time.";
}

HeardFrame Replayed(char kind, bool isTransmitted) {
    HeardFrame frame;
    frame.kind = isTransmitted ? HeardFrame::Kind::T : HeardFrame::Kind(kind);
    frame.origin = HeardFrame::Origin::Replayed;
    return frame;
}

} // namespace

FrameText::FrameText(Take take)
    : m_take(std::move(take)) {}

void FrameText::Add(QByteArrayView bytes) {
    std::string_view text = ToView(bytes);
    while (!text.empty()) {
        if (std::exchange(m_hasCarriageReturn, false) && text.front() == '\n') {
            text.remove_prefix(1);
            continue;
        }
        // A search for the one end and then for the other would walk through all of a text that has only one.
        const auto found = std::ranges::find_if(text, [](char c) { return c == '\r' || c == '\n'; });
        const auto end = static_cast<std::size_t>(found - text.begin());
        AddToLine(text.substr(0, end));
        if (end == text.size())
            return;
        m_hasCarriageReturn = text[end] == '\r';
        text.remove_prefix(end + 1);
        EndLine();
    }
}

void FrameText::End() {
    if (!m_line.empty() || m_isTooLong)
        EndLine();
    if (m_header)
        GiveLogged({});
    m_rest = 0;
    m_hasCarriageReturn = false;
    m_lineNumber = 1;
}

void FrameText::AddToLine(std::string_view piece) {
    const std::string_view fitting = piece.substr(0, longestLine - m_line.size());
    m_isTooLong = m_isTooLong || fitting.size() < piece.size();
    m_line.append(fitting);
}

void FrameText::EndLine() {
    std::string_view line = m_line;
    if (m_lineNumber == 1)
        line = WithoutByteOrderMark(line);
    if (m_isTooLong)
        line = line.substr(0, exampleLength);
    ReadLine(Trimmed(line));
    m_line.clear();
    m_isTooLong = false;
    ++m_lineNumber;
}

void FrameText::ReadLine(std::string_view line) {
    if (line.empty() && !m_isTooLong) {
        // The log ends each frame with an empty line.
        if (m_header)
            GiveLogged({});
        m_rest = 0;
        return;
    }
    std::optional<LogHeader> header = m_isTooLong ? std::nullopt : LogHeader::Read(line);
    if (ReadAsInformation(line, header.has_value()))
        return;
    if (header) {
        m_header = std::move(header);
        m_headerLine = m_lineNumber;
    } else if (const auto told = m_isTooLong ? std::nullopt : FrameLine::Read(line)) {
        HeardFrame frame = Replayed(told->kind, told->isTransmitted);
        frame.port = static_cast<qint16>(told->channel + 1);
        frame.source = told->source;
        frame.destination = told->destination;
        frame.path = told->path;
        frame.information = told->information;
        Give(frame, told->time, m_lineNumber);
    } else if (!IsStatus(line)) {
        ++m_notUnderstood;
        if (m_examples.size() < mostExamples)
            m_examples.append(QByteArrayView(line)
                                  .first(std::min(QByteArrayView(line).size(), exampleLength))
                                  .toByteArray());
    }
}

// The information of a logged frame may look like a header or like a frame of another kind: what fits into
// its length is never taken for one, so that nobody can forge frames from the air.
bool FrameText::ReadAsInformation(std::string_view line, bool isHeader) {
    if (!m_header) {
        const bool isRest = line.size() <= m_rest;
        m_rest -= isRest ? std::min(m_rest, line.size() + 1) : m_rest;
        return isRest;
    }
    const std::size_t length = m_header->length;
    const bool isInformation = !m_isTooLong && (!isHeader || line.size() <= length);
    GiveLogged(isInformation ? line : std::string_view());
    m_rest = isInformation ? length - std::min(length, line.size() + 1) : 0;
    return isInformation;
}

void FrameText::GiveLogged(std::string_view information) {
    const LogHeader header = *std::exchange(m_header, std::nullopt);
    HeardFrame frame = Replayed(header.kind, header.isTransmitted);
    frame.port = static_cast<qint16>(header.port);
    frame.source = header.source;
    frame.destination = header.destination;
    frame.path = header.path;
    frame.information = information;
    Give(frame, LineTime{LineTime::Clock::TimeOfDay, header.timeOfDay}, m_headerLine);
}

void FrameText::Give(HeardFrame& frame, const std::optional<LineTime>& time, qint64 line) {
    if (time && time->clock == LineTime::Clock::Utc)
        frame.utc = time->milliseconds;
    ++m_frames;
    m_take({.frame = frame, .time = time, .line = line});
}
