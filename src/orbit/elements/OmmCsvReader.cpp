#include "orbit/elements/OmmCsvReader.h"

#include "orbit/elements/Lines.h"

#include <algorithm>

namespace orbitmath {

namespace {

constexpr std::size_t none = ommKeywords.size();

} // namespace

bool OmmCsvReader::IsHeader(std::string_view line) {
    Csv::Record record;
    if (!record.Split(Trimmed(line)))
        return false;
    const auto names = [&](std::string_view keyword) {
        return std::ranges::any_of(record.Fields(),
                                   [&](std::string_view field) { return Trimmed(field) == keyword; });
    };
    return names(ommKeywords[ommNumber]) && names("EPOCH");
}

bool OmmCsvReader::TakeLine(std::string_view whole) {
    ++m_line;
    const bool isTooLong = whole.size() >= mostOfLine; // and has been cut
    const std::string_view line = Trimmed(whole);
    if (line.empty())
        return true;
    if (m_places.empty() || line == m_header) {
        TakeHeader(line);
        return true;
    }
    m_isCut = false;
    if (!isTooLong)
        return TakeFields(line);
    ElementRecord record{.format = ElementFormat::OmmCsv, .line = m_line};
    return TakeOmm(record, {}, ElementFault{.what = "the line is too long"}, m_take);
}

void OmmCsvReader::TakeHeader(std::string_view line) {
    m_header = line;
    m_places.clear();
    if (!m_record.Split(line))
        return;
    for (const std::string_view field : m_record.Fields())
        m_places.push_back(OmmPlace(Trimmed(field)).value_or(none));
}

bool OmmCsvReader::TakeFields(std::string_view line) {
    ElementRecord record{.format = ElementFormat::OmmCsv, .line = m_line, .lines = {m_header, line, {}}};
    OmmFields fields;
    if (!m_record.Split(line)) {
        m_isCut = true; // a quote is open
        return TakeOmm(record, fields, ElementFault{.what = "the quotes do not match"}, m_take);
    }
    const auto found = m_record.Fields();
    for (std::size_t k = 0; k < std::min(found.size(), m_places.size()); ++k) {
        if (m_places[k] != none)
            fields[m_places[k]] = Trimmed(found[k]);
    }
    m_isCut = found.size() < m_places.size();
    if (found.size() != m_places.size())
        return TakeOmm(record, fields, ElementFault{.what = "it has not as many fields as the header"},
                       m_take);
    return TakeOmm(record, fields, {}, m_take);
}

} // namespace orbitmath
