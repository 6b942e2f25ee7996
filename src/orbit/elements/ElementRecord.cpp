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
    }
    return "TLE";
}

bool ElementRecord::IsGroupOf(std::string_view number) const {
    return !nameLine.empty() && IsSameNumber(number2, number) && number1.starts_with(number2);
}

} // namespace orbitmath
