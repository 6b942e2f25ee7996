#pragma once

#include <QByteArray>

#include <array>
#include <optional>
#include <span>
#include <string_view>

/// What a line of the history file tells about a telemetry frame. Texts are UTF-8.
struct HistoryLine {
    static constexpr std::size_t channels = 4;

    qint64 utc = 0; ///< of arrival, milliseconds since 1970-01-01 00:00
    std::string_view source;
    int side = 0;      ///< as it was when the frame was heard: 0 A, 1 B
    int frameType = 0; ///< outside 0 to 3 the line names no channels
    std::array<double, channels> raw{};
};

/// Where the columns of the history file tlm.txt stand. Its header line names them, so that they may change
/// their order and grow in number from one release to the next.
class HistoryLayout {
public:
    enum Column {
        Utc,
        Source,
        Side,
        Sequence,
        Raw1,
        Raw2,
        Raw3,
        Raw4,
        Field5,
        Field6,
        Field7,
        Field8,
        Columns
    };

    static constexpr std::array<std::string_view, Columns> names{"utc",    "source", "side",   "sequence",
                                                                 "raw1",   "raw2",   "raw3",   "raw4",
                                                                 "field5", "field6", "field7", "field8"};

    /// The nine fields of a telemetry line as it came.
    using Fields = std::array<std::string_view, Columns - Sequence>;

    /// The header line that this program writes, with its LF.
    static QByteArray Header();

    /// The layout of that header.
    static HistoryLayout Newest();

    /// The layout that a header line gives; none for a line that is no header. Where it lacks a column that a
    /// frame needs, no line of that layout is read.
    static std::optional<HistoryLayout> Of(std::span<const std::string_view> header);

    /// The line of a frame in that layout, with its LF. Texts are UTF-8.
    static QByteArray LineOf(qint64 utc, std::string_view source, int side, const Fields& fields);

    /// What a line of this layout tells; none for a line that is none.
    std::optional<HistoryLine> Read(std::span<const std::string_view> fields) const;

    /// The text in a column; empty where the layout has no such column.
    std::string_view Text(std::span<const std::string_view> fields, Column column) const;

    bool operator==(const HistoryLayout&) const = default;

private:
    static constexpr std::size_t absent = ~std::size_t{0};

    std::array<std::size_t, Columns> m_places{}; // in a line, from 0
    std::size_t m_fields = 0;                    // in each line; 0: none can be read
};
