#include "telemetry/history/HistoryLayout.h"

#include "foundation/files/Csv.h"
#include "foundation/text/IsoTime.h"
#include "foundation/text/Text.h"
#include "telemetry/frames/FrameType.h"

#include <algorithm>

namespace {

constexpr std::size_t longestSource = 32; // AX.25 has nine characters
constexpr std::size_t shortNumber = 9;    // digits of which any number fits into 32 bits

// The value of a raw field. Nearly all are whole numbers of a few digits, which need no parser.
double RawNumber(std::string_view field) {
    unsigned number = 0;
    if (field.size() > shortNumber)
        return Text::LeadingNumber(field);
    for (const char c : field) {
        if (c < '0' || c > '9')
            return Text::LeadingNumber(field);
        number = number * 10 + static_cast<unsigned>(c - '0');
    }
    return number;
}

} // namespace

QByteArray HistoryLayout::Header() {
    QByteArray header;
    for (const std::string_view name : names)
        header.append(name.data(), static_cast<qsizetype>(name.size())).append(',');
    header.back() = '\n';
    return header;
}

HistoryLayout HistoryLayout::Newest() {
    return *Of(names);
}

QByteArray HistoryLayout::LineOf(qint64 utc, std::string_view source, int side, const Fields& fields) {
    const auto append = [](QByteArray& line, std::string_view field) {
        Csv::AppendField(line.append(','), {field.data(), static_cast<qsizetype>(field.size())});
    };
    QByteArray line = IsoTime::Milliseconds(utc);
    append(line, source);
    line.append(side == 1 ? ",B" : ",A");
    for (const std::string_view field : fields)
        append(line, field);
    return line.append('\n');
}

std::optional<HistoryLayout> HistoryLayout::Of(std::span<const std::string_view> header) {
    HistoryLayout layout;
    layout.m_fields = header.size();
    for (std::size_t column = 0; column < Columns; ++column) {
        const auto place = std::ranges::find(header, names[column]);
        layout.m_places[column] =
            place == header.end() ? absent : static_cast<std::size_t>(place - header.begin());
    }
    if (layout.m_places[Utc] == absent || layout.m_places[Source] == absent)
        return std::nullopt;
    for (const Column needed : {Raw1, Raw2, Raw3, Raw4, Field7})
        if (layout.m_places[needed] == absent)
            layout.m_fields = 0;
    return layout;
}

std::optional<HistoryLine> HistoryLayout::Read(std::span<const std::string_view> fields) const {
    if (fields.size() != m_fields)
        return std::nullopt;
    const std::optional<qint64> utc = IsoTime::Read(fields[m_places[Utc]]);
    const std::string_view source = fields[m_places[Source]];
    if (!utc || source.empty() || source.size() > longestSource)
        return std::nullopt;
    HistoryLine line{.utc = *utc,
                     .source = source,
                     .side = Text(fields, Side) == "B" ? 1 : 0,
                     .frameType = FrameTypeOf(fields[m_places[Field7]]),
                     .raw = {}};
    for (std::size_t channel = 0; channel < HistoryLine::channels; ++channel)
        line.raw[channel] = RawNumber(fields[m_places[Raw1 + channel]]);
    return line;
}

std::string_view HistoryLayout::Text(std::span<const std::string_view> fields, Column column) const {
    return m_places[column] < fields.size() ? fields[m_places[column]] : std::string_view();
}
