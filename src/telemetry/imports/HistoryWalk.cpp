#include "telemetry/imports/HistoryWalk.h"

#include "foundation/files/BoundedFile.h"
#include "foundation/text/ByteOrderMark.h"

#include <cstring>
#include <utility>

QString HistoryWalk::Open() {
    m_buffer.resize(2 * Csv::Reader::longestRecord);
    return OpenRegularFile(m_file);
}

bool HistoryWalk::Next() {
    std::string_view held(m_buffer.data() + m_begin, m_end - m_begin);
    std::size_t end = held.find('\n');
    if (end == std::string_view::npos) {
        std::memmove(m_buffer.data(), held.data(), held.size());
        m_begin = 0;
        m_end = held.size();
        qint64 read = 0;
        while (m_end < m_buffer.size() &&
               (read = m_file.read(m_buffer.data() + m_end, static_cast<qint64>(m_buffer.size() - m_end))) >
                   0)
            m_end += static_cast<std::size_t>(read);
        if (read < 0)
            return false;
        held = {m_buffer.data(), m_end};
        end = held.find('\n');
    }
    if (held.empty())
        return false;
    const bool isWhole = end != std::string_view::npos || m_end < m_buffer.size();
    m_bytes = held.substr(0, end == std::string_view::npos ? end : end + 1);
    const bool isPart = std::exchange(m_isWithinLine, !isWhole) || !isWhole;
    m_kind = isPart ? Kind::Foreign : KindOf(held.substr(0, end));
    m_begin += m_bytes.size();
    m_position += static_cast<qint64>(m_bytes.size());
    return true;
}

HistoryWalk::Kind HistoryWalk::KindOf(std::string_view line) {
    if (m_position == 0)
        line = WithoutByteOrderMark(line);
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    if (line.empty())
        return Kind::Empty;
    if (line.size() > Csv::Reader::longestRecord || !m_record.Split(line))
        return Kind::Foreign;
    if (const std::optional<HistoryLine> frame = m_layout.Read(m_record.Fields())) {
        m_frame = *frame;
        return Kind::Frame;
    }
    const std::optional<HistoryLayout> layout = HistoryLayout::Of(m_record.Fields());
    if (layout)
        m_layout = *layout;
    return layout ? Kind::Header : Kind::Foreign;
}

HistoryLayout::Fields HistoryWalk::Fields() const {
    HistoryLayout::Fields fields;
    for (std::size_t i = 0; i < fields.size(); ++i)
        fields[i] =
            m_layout.Text(m_record.Fields(), static_cast<HistoryLayout::Column>(HistoryLayout::Sequence + i));
    return fields;
}

QString HistoryWalk::Reason() const {
    return m_file.error() == QFileDevice::NoError ? QString() : m_file.errorString();
}
