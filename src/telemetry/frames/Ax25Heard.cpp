#include "telemetry/frames/Ax25Heard.h"

#include "telemetry/frames/ByteViews.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr qsizetype shownBytes = 64;

void AppendHex(unsigned byte, std::string& text) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    (text += digits[byte >> 4U]) += digits[byte & 0x0FU];
}

const char* SupervisoryName(unsigned control) {
    constexpr std::array names{"RR", "RNR", "REJ", "SREJ"};
    return names[control >> 2U & 0x03U];
}

const char* UnnumberedName(unsigned control) {
    constexpr std::array names{std::pair{0x2FU, "SABM"}, std::pair{0x6FU, "SABME"}, std::pair{0x43U, "DISC"},
                               std::pair{0x0FU, "DM"},   std::pair{0x63U, "UA"},    std::pair{0x87U, "FRMR"},
                               std::pair{0xAFU, "XID"},  std::pair{0xE3U, "TEST"}};
    const auto* const found = std::ranges::find(names, control & ~unsigned{Ax25Frame::pollFinal},
                                                [](const auto& name) { return name.first; });
    return found == names.end() ? "U" : found->second;
}

// A command of version 2 asks ("P"), a response ends ("F"); before version 2 nobody told which it was.
void AppendPollFinal(const Ax25Frame& frame, std::string& text) {
    text += frame.destination.isMarked == frame.source.isMarked ? " PF"
            : frame.destination.isMarked                        ? " P"
                                                                : " F";
    text += (frame.control & Ax25Frame::pollFinal) != 0 ? "=1" : "=0";
}

void AppendLength(const Ax25Frame& frame, std::string& text) {
    text.append(" Len=").append(std::to_string(frame.information.size()));
}

// What stands between "<" and " >".
void AppendControl(const Ax25Frame& frame, std::string& text) {
    const std::string next = std::to_string(frame.control >> 5U);
    switch (frame.FrameType()) {
    case Ax25Frame::Type::UI:
        AppendHex(frame.pid, text += "UI pid=");
        AppendLength(frame, text);
        break;
    case Ax25Frame::Type::I:
        text.append("I S").append(std::to_string(frame.control >> 1U & 0x07U)).append(" R").append(next);
        AppendHex(frame.pid, text += " pid=0x");
        AppendLength(frame, text);
        break;
    case Ax25Frame::Type::Supervisory:
        text.append(SupervisoryName(frame.control)).append(" R").append(next);
        break;
    case Ax25Frame::Type::Unnumbered:
        text += UnnumberedName(frame.control);
        break;
    }
    AppendPollFinal(frame, text);
    if (frame.FrameType() == Ax25Frame::Type::Unnumbered && !frame.information.empty())
        AppendLength(frame, text);
}

HeardFrame::Kind KindOf(const Ax25Frame& frame, bool isTransmitted) {
    if (isTransmitted)
        return HeardFrame::Kind::T;
    switch (frame.FrameType()) {
    case Ax25Frame::Type::UI:
        return HeardFrame::Kind::U;
    case Ax25Frame::Type::I:
        return HeardFrame::Kind::I;
    default:
        return HeardFrame::Kind::S;
    }
}

} // namespace

HeardFrame Ax25Heard::Read(QByteArrayView raw, const Arrival& arrival) {
    HeardFrame heard;
    heard.utc = arrival.utc;
    heard.origin = arrival.origin;
    heard.port = arrival.port;
    heard.raw = raw;
    m_text.clear();
    if (arrival.needsText)
        (m_text += ' ').append(std::to_string(arrival.port)) += ':';
    if (m_frame.Read(ToView(raw))) {
        heard.kind = KindOf(m_frame, arrival.isTransmitted);
        heard.source = m_frame.source.callsign;
        heard.destination = m_frame.destination.callsign;
        m_path.clear();
        for (const Ax25Address& digipeater : m_frame.digipeaters)
            m_path.append(m_path.empty() ? "" : ",")
                .append(digipeater.callsign)
                .append(digipeater.isMarked ? "*" : "");
        heard.path = m_path;
        if (m_frame.HasPid())
            heard.pid = m_frame.pid;
        heard.information = m_frame.information;
        heard.isComplete = true;
        if (arrival.needsText)
            ShowFrame(arrival);
    } else if (arrival.needsText) {
        ShowBytes(raw);
    }
    heard.engineText = m_text;
    return heard;
}

void Ax25Heard::ShowFrame(const Arrival& arrival) {
    m_text.append("Fm ").append(m_frame.source.callsign).append(" To ").append(m_frame.destination.callsign);
    for (const Ax25Address& digipeater : m_frame.digipeaters)
        m_text.append(&digipeater == &m_frame.digipeaters.front() ? " Via " : ",")
            .append(digipeater.callsign);
    AppendControl(m_frame, m_text += " <");
    m_text.append(" >[").append(ToView(arrival.time)).append("]\r");
    m_text.append(m_frame.information).append("\r");
}

void Ax25Heard::ShowBytes(QByteArrayView raw) {
    m_text.append("Not an AX.25 frame, ").append(std::to_string(raw.size())).append(" bytes\r");
    for (const char byte : raw.first(std::min(raw.size(), shownBytes))) {
        AppendHex(static_cast<unsigned char>(byte), m_text);
        m_text += ' ';
    }
    m_text.append(raw.size() > shownBytes ? "...\r" : "\r");
}
