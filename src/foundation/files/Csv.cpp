#include "foundation/files/Csv.h"

#include <algorithm>

namespace Csv {
namespace {

constexpr char quote = '"';

// Behind the closing quote of the field at the start of `text`; npos when it is not closed.
std::size_t QuotedEnd(std::string_view text, std::size_t at) {
    for (;;) {
        at = text.find(quote, at + 1);
        if (at == std::string_view::npos)
            return at;
        if (++at == text.size() || text[at] != quote)
            return at;
    }
}

// Where the record at the start of `text` ends, before its LF; npos when none follows, or a quote is not
// closed.
std::size_t RecordEnd(std::string_view text) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == quote)
            at = QuotedEnd(text, at);
        at = at == std::string_view::npos ? at : text.find_first_of(",\n", at);
        if (at == std::string_view::npos || text[at] == '\n')
            return at;
    }
    return text.size();
}

std::string_view WithoutReturn(std::string_view line) {
    return line.ends_with('\r') ? line.substr(0, line.size() - 1) : line;
}

} // namespace

void AppendField(QByteArray& line, QByteArrayView field) {
    const auto needsQuotes = [](char c) { return c == ',' || c == quote || c == '\n' || c == '\r'; };
    if (std::ranges::none_of(field, needsQuotes)) {
        line.append(field);
        return;
    }
    line.append(quote);
    for (const char c : field)
        c == quote ? line.append(2, quote) : line.append(c);
    line.append(quote);
}

QByteArray Line(std::initializer_list<QByteArrayView> fields) {
    QByteArray line;
    for (const QByteArrayView field : fields) {
        AppendField(line, field);
        line.append(',');
    }
    line.back() = '\n';
    return line;
}

bool Record::Split(std::string_view text) {
    m_count = 0;
    m_unquoted.clear();
    for (;;) {
        if (m_count == mostFields)
            return false;
        if (text.starts_with(quote)) {
            if (!TakeQuoted(text))
                return false;
        } else {
            const std::size_t end = std::min(text.find(','), text.size());
            m_fields[m_count++] = text.substr(0, end);
            text.remove_prefix(end);
        }
        if (text.empty())
            return true;
        if (text.front() != ',')
            return false;
        text.remove_prefix(1);
    }
}

bool Record::TakeQuoted(std::string_view& text) {
    const std::size_t end = QuotedEnd(text, 0);
    if (end == std::string_view::npos)
        return false;
    std::string_view field = text.substr(1, end - 2);
    if (m_unquoted.empty())
        m_unquoted.reserve(text.size()); // what the fields of this record refer to stays where it is
    text.remove_prefix(end);
    if (field.find(quote) == std::string_view::npos) {
        m_fields[m_count++] = field;
        return true;
    }
    const std::size_t start = m_unquoted.size();
    while (!field.empty()) {
        const std::size_t part = std::min(field.find(quote), field.size() - 1) + 1;
        m_unquoted.append(field.substr(0, part));
        field.remove_prefix(std::min(part + (field[part - 1] == quote ? 1 : 0), field.size()));
    }
    m_fields[m_count++] = std::string_view(m_unquoted).substr(start);
    return true;
}

bool Reader::Next() {
    while (!m_rest.empty()) {
        m_number = m_nextNumber;
        const std::size_t lineEnd = std::min(m_rest.find('\n'), m_rest.size());
        std::size_t end = lineEnd;
        if (m_lineEnds == LineEnds::MayStandInQuotes)
            end = std::min(RecordEnd(m_rest.substr(0, longestRecord + 1)), m_rest.size());
        m_text = WithoutReturn(m_rest.substr(0, end));
        m_isSound = m_text.size() <= longestRecord && m_record.Split(m_text);
        if (!m_isSound) {
            end = lineEnd;
            m_text = WithoutReturn(m_rest.substr(0, end));
        }
        m_nextNumber += 1 + static_cast<std::size_t>(std::ranges::count(m_rest.substr(0, end), '\n'));
        m_rest.remove_prefix(std::min(end + 1, m_rest.size()));
        if (!m_text.empty())
            return true;
    }
    return false;
}

std::span<const std::string_view> Reader::Fields() const {
    return m_isSound ? m_record.Fields() : std::span<const std::string_view>();
}

} // namespace Csv
