#include "link/agwpe/AgwFrameReader.h"

#include <QtEndian>

#include <cstring>

namespace {

constexpr qsizetype longestFrame = AgwFrame::headerLength + AgwFrame::maxDataLength;
constexpr qsizetype capacity = AgwFrameReader::chunk + longestFrame;

} // namespace

AgwFrameReader::AgwFrameReader()
    : m_buffer(std::make_unique_for_overwrite<char[]>(capacity)) {}

std::span<char> AgwFrameReader::Room() {
    // Only the beginning of one frame is left, so this moves little.
    if (m_begin > 0) {
        std::memmove(m_buffer.get(), m_buffer.get() + m_begin, static_cast<size_t>(m_end - m_begin));
        m_end -= m_begin;
        m_begin = 0;
    }
    return {m_buffer.get() + m_end, static_cast<size_t>(capacity - m_end)};
}

AgwFrameReader::Result AgwFrameReader::Next(AgwFrame& frame) {
    const qsizetype available = m_end - m_begin;
    if (available < AgwFrame::headerLength)
        return Result::NeedMore;
    const char* header = m_buffer.get() + m_begin;
    const auto dataLength = qFromLittleEndian<quint32>(header + 28);
    if (dataLength > AgwFrame::maxDataLength)
        return Result::BadLength;
    if (available < AgwFrame::headerLength + dataLength)
        return Result::NeedMore;
    frame.port = static_cast<quint8>(header[0]);
    frame.kind = header[4];
    frame.pid = static_cast<quint8>(header[6]);
    frame.callFrom = AgwData::UpToNul({header + 8, AgwFrame::callFieldLength});
    frame.callTo = AgwData::UpToNul({header + 18, AgwFrame::callFieldLength});
    frame.data = {header + AgwFrame::headerLength, static_cast<qsizetype>(dataLength)};
    m_begin += AgwFrame::headerLength + dataLength;
    return Result::Frame;
}
