#include "orbit/elements/ElementRecord.h"

namespace orbitmath {

namespace {

/// The same text, or the same number where one of the two has a letter for its first digits.
bool IsSameNumber(std::string_view a, std::string_view b) {
    const auto beginsWithLetter = [](std::string_view text) {
        return !text.empty() && text.front() >= 'A' && text.front() <= 'Z';
    };
    if (a == b || !(beginsWithLetter(a) || beginsWithLetter(b)))
        return a == b;
    const std::optional<std::uint32_t> number = CatalogueNumber(a);
    return number && number == CatalogueNumber(b);
}

} // namespace

std::string_view NameOf(ElementFormat format) {
    switch (format) {
    case ElementFormat::TwoLines:
        break;
    case ElementFormat::OmmCsv:
        return "CSV";
    case ElementFormat::OmmJson:
        return "JSON";
    case ElementFormat::OmmXml:
        return "XML";
    }
    return "TLE";
}

bool ElementRecord::IsGroupOf(std::string_view number) const {
    if (nameLine.empty())
        return false;
    if (format == ElementFormat::TwoLines)
        return IsSameNumber(number2, number) && number1.starts_with(number2);
    const std::optional<std::uint32_t> asked = CatalogueNumber(number);
    return asked && asked == CatalogueNumber(number2); // an OMM does not fill up with zeros
}

std::string ElementRecord::Text() const {
    std::string text;
    for (const std::string_view part : lines) {
        if (!part.empty())
            text.append(part).append(1, '\n');
    }
    return text;
}

} // namespace orbitmath
