#include "telemetry/monitor/FrameIntake.h"

#include "foundation/text/Text.h"
#include "telemetry/frames/ByteViews.h"
#include "telemetry/monitor/DisplayKind.h"
#include "telemetry/monitor/MonitorHeader.h"

#include <utility>

namespace {

constexpr std::size_t npos = std::string_view::npos;
constexpr std::string_view lineEnd = "\r\n";

// Appends the lines of `text`, which end in CR, LF or CR LF, trimmed and each ended by CR LF; no empty ones.
void AppendLines(std::string_view text, std::string& lines) {
    while (!text.empty()) {
        const std::size_t end = std::min(FindLineEnd(text), text.size());
        const std::string_view line = text.substr(0, end);
        if (const std::size_t first = line.find_first_not_of(' '); first != npos)
            lines.append(line.substr(first, line.find_last_not_of(' ') + 1 - first)).append(lineEnd);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

qint16 KindOf(HeardFrame::Kind kind) {
    switch (kind) {
    case HeardFrame::Kind::I:
        return DisplayKind::Information;
    case HeardFrame::Kind::S:
        return DisplayKind::Supervisory;
    case HeardFrame::Kind::T:
        return DisplayKind::Transmitted;
    case HeardFrame::Kind::U:
        break;
    }
    return DisplayKind::Frame;
}

} // namespace

FrameIntake::FrameIntake(const CallsignList& callsigns, MonitorText& monitor,
                         std::function<DateTime(qint64 utc)> displayTime)
    : m_callsigns(callsigns)
    , m_monitor(monitor)
    , m_clock(std::move(displayTime)) {}

void FrameIntake::Take(const HeardFrame& frame) {
    if (frame.engineText.isEmpty() && !frame.raw.isEmpty())
        return; // its bytes alone, for those who keep or forward them
    if (frame.kind == HeardFrame::Kind::U)
        FrameReceived(frame);
    else
        ShowMonitoredFrame(frame.engineText, KindOf(frame.kind), frame.utc);
}

void FrameIntake::FrameReceived(const HeardFrame& frame) {
    ShowMonitoredFrame(frame.engineText, DisplayKind::Frame, frame.utc);
    if (!m_onlyShowQiran || m_callsigns.Find(frame.source) == nullptr)
        return;
    const std::string_view data = ToView(frame.engineText);
    const std::size_t headerEnd = FindLineEnd(data);
    if (headerEnd == npos)
        return; // no information line
    std::string_view line = data.substr(headerEnd + (data.substr(headerEnd).starts_with(lineEnd) ? 2 : 1));
    line = line.substr(0, FindLineEnd(line));
    ShowShortForm(data.substr(0, headerEnd), line, m_clock.At(frame.utc));
}

void FrameIntake::ShowShortForm(std::string_view header, std::string_view line, std::string_view time) {
    m_frameText.clear();
    FormatMonitorHeader(header, DisplayKind::Frame, HeaderForm::Short, time, m_frameText);
    m_frameText.append(lineEnd).append(line).append(lineEnd);
    AddToMonitor(QByteArrayView(m_frameText), DisplayKind::ShortForm);
}

void FrameIntake::ShowMonitoredFrame(QByteArrayView data, qint16 kind, qint64 utc) {
    const std::string_view text = ToView(data);
    const std::size_t headerEnd = text.find('\r');
    if (headerEnd == npos) {
        AddToMonitor(data, kind);
        return;
    }
    m_frameText.clear();
    FormatMonitorHeader(text.substr(0, headerEnd), kind, HeaderForm::Full, m_clock.At(utc), m_frameText);
    m_frameText.append(text.substr(headerEnd));
    AddToMonitor(QByteArrayView(m_frameText), kind);
}

void FrameIntake::AddToMonitor(QByteArrayView text, qint16 kind) {
    m_lines.clear();
    AppendLines(ToView(text), m_lines);
    const std::size_t length = m_lines.size();
    if (kind != DisplayKind::ShortForm && m_showData) {
        if (kind >= DisplayKind::Frame)
            m_lines.append(lineEnd);
        m_showData(m_lines, kind);
    }
    const bool isShown =
        kind == DisplayKind::Status || (kind == DisplayKind::ShortForm ? m_onlyShowQiran : !m_onlyShowQiran);
    if (isShown)
        m_monitor.Append(QByteArrayView(m_lines).first(static_cast<qsizetype>(length)));
}

void FrameIntake::AddToMonitor(const QString& text, qint16 kind) {
    AddToMonitor(QByteArrayView(Text::ToBytes(text)), kind);
}
