#pragma once

#include "foundation/files/Csv.h"
#include "telemetry/history/HistoryLayout.h"

#include <QFile>

#include <vector>

/// Walks through a history file, whatever its size, with the memory of its longest readable line.
class HistoryWalk {
public:
    enum class Kind {
        Frame,
        Header, ///< of the layout that holds from here on
        Empty,
        Foreign, ///< neither; also a part of a line that is too long to be one
    };

    explicit HistoryWalk(const QString& path)
        : m_file(path) {}

    /// Empty, or why the file cannot be read.
    QString Open();

    /// The next line; false at the end, or when the file cannot be read (Reason says why).
    bool Next();

    Kind What() const { return m_kind; }

    /// The line as it stands there, with its end where it has one. This and what follows holds until the next
    /// call of Next.
    std::string_view Bytes() const { return m_bytes; }

    /// Of a frame: what it tells, and its fields.
    const HistoryLine& Frame() const { return m_frame; }
    HistoryLayout::Fields Fields() const;

    const HistoryLayout& Layout() const { return m_layout; }

    qint64 Position() const { return m_position; } ///< bytes that were walked through
    qint64 Size() const { return m_file.size(); }
    QString Reason() const;

private:
    Kind KindOf(std::string_view line);

    QFile m_file;
    std::vector<char> m_buffer;
    std::size_t m_begin = 0; // of what is in the buffer and was not given yet
    std::size_t m_end = 0;
    bool m_isWithinLine = false; // the piece before was the start of a line that is too long
    qint64 m_position = 0;
    Kind m_kind = Kind::Empty;
    std::string_view m_bytes;
    HistoryLine m_frame;
    HistoryLayout m_layout = HistoryLayout::Newest();
    Csv::Record m_record;
};
