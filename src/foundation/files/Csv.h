#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <array>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

/// Comma-separated values after RFC 4180: a field that holds a comma, a quote or a line end stands between
/// quotes, in which a quote is doubled.
namespace Csv {

/// Adds the field to `line` as it stands there, without a comma.
void AppendField(QByteArray& line, QByteArrayView field);

/// A line of these fields, at least one, ending in LF.
QByteArray Line(std::initializer_list<QByteArrayView> fields);

/// One record, taken apart.
class Record {
public:
    static constexpr std::size_t mostFields = 64;

    /// Takes a record without its line end apart; false, and the fields mean nothing, when a quote is not
    /// closed, when something stands between a closing quote and the comma, or when there are more than
    /// `mostFields`. A quote inside a field that does not begin with one stands for itself.
    bool Split(std::string_view text);

    /// The fields without their quotes; they hold until the next Split, and as long as its text.
    std::span<const std::string_view> Fields() const { return std::span(m_fields).first(m_count); }

private:
    bool TakeQuoted(std::string_view& text);

    std::array<std::string_view, mostFields> m_fields;
    std::size_t m_count = 0;
    std::string m_unquoted; // fields in which quotes were doubled, one after the other
};

/// Reads records one after the other. Lines end in LF or CR LF. A record that cannot be read costs its first
/// line only, so that a quote which somebody forgot, or a line that was torn, does not swallow the rest.
class Reader {
public:
    static constexpr std::size_t longestRecord = 256 * 1024; ///< bytes; longer ones count as damaged

    enum class LineEnds { EndRecords, MayStandInQuotes };

    /// `text` must outlive the reader.
    explicit Reader(std::string_view text, LineEnds lineEnds = LineEnds::MayStandInQuotes)
        : m_rest(text)
        , m_lineEnds(lineEnds) {}

    /// Takes the next record; false at the end. Empty lines are passed over.
    bool Next();

    /// Whether the record could be read; else its line is what Text gives, and there are no fields.
    bool IsSound() const { return m_isSound; }

    std::span<const std::string_view> Fields() const;

    /// The record as it stands there, without its line end.
    std::string_view Text() const { return m_text; }

    /// The number of its first line, from 1.
    std::size_t LineNumber() const { return m_number; }

private:
    std::string_view m_rest;
    LineEnds m_lineEnds;
    std::string_view m_text;
    Record m_record;
    bool m_isSound = false;
    std::size_t m_number = 0;
    std::size_t m_nextNumber = 1;
};

} // namespace Csv
