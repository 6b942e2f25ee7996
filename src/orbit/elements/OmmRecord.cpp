#include "orbit/elements/OmmRecord.h"

#include "foundation/text/Text.h"
#include "orbit/elements/Lines.h"

#include <algorithm>

namespace orbitmath {

namespace {

constexpr qsizetype longestName = 64;

bool IsPlain(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; });
}

/// The name on one line; messages are in UTF-8.
QByteArray NameOf(std::string_view name) {
    const QString text = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
    return Text::ToBytes(text.simplified()).left(longestName);
}

} // namespace

bool TakeOmm(ElementRecord record, const OmmFields& fields, const std::optional<ElementFault>& fault,
             const TakeRecord& take) {
    QByteArray converted;
    record.name = fields[ommName].substr(0, longestName);
    if (!IsPlain(fields[ommName])) {
        converted = NameOf(fields[ommName]);
        record.name = {converted.constData(), static_cast<std::size_t>(converted.size())};
    }
    record.name = Trimmed(record.name);
    record.nameLine = record.name;
    record.number1 = fields[ommNumber];
    record.number2 = fields[ommNumber];
    if (fault)
        record.content = *fault;
    else
        record.content = ReadOmm(fields);
    return take(record);
}

} // namespace orbitmath
