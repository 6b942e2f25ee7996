#include "telemetry/imports/IncomingFrames.h"

#include <algorithm>
#include <functional>
#include <string>
#include <unordered_map>

namespace {

std::size_t HashOf(std::string_view source, const HistoryLayout::Fields& fields) {
    std::string line(source);
    for (const std::string_view field : fields)
        line.append(1, '\n').append(field);
    return std::hash<std::string_view>()(line);
}

} // namespace

void IncomingFrames::AddKnown(qint64 utc, std::string_view source, const HistoryLayout::Fields& fields) {
    m_seen.push_back({HashOf(source, fields), utc});
}

bool IncomingFrames::Add(qint64 utc, std::string_view source, int side, const HistoryLayout::Fields& fields) {
    const QByteArray line = HistoryLayout::LineOf(utc, source, side, fields);
    if (m_lines.size() + line.size() > mostBytes)
        return false;
    m_frames.push_back({utc, HashOf(source, fields), m_lines.size(), line.size()});
    m_lines.append(line);
    return true;
}

void IncomingFrames::Sort() {
    std::ranges::sort(m_seen);
    std::ranges::stable_sort(m_frames, {}, &Frame::utc);
    std::unordered_map<std::size_t, qint64> taken; // when each line came in last
    const auto isKnown = [&](const Frame& frame) {
        const auto seen = std::ranges::lower_bound(m_seen, Seen{frame.hash, frame.utc - knownWithin});
        const auto last = taken.find(frame.hash);
        if ((seen != m_seen.end() && seen->hash == frame.hash && seen->utc <= frame.utc + knownWithin) ||
            (last != taken.end() && frame.utc - last->second <= knownWithin))
            return true;
        taken[frame.hash] = frame.utc;
        return false;
    };
    m_known += static_cast<qint64>(std::erase_if(m_frames, isKnown));
}

std::string_view IncomingFrames::Line(std::size_t index) const {
    const Frame& frame = m_frames[index];
    return {m_lines.constData() + frame.offset, static_cast<std::size_t>(frame.length)};
}
