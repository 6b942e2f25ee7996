#include "link/PortText.h"

#include "foundation/text/Text.h"

#include <algorithm>
#include <cmath>

namespace {

/// A sign, digits and at most one ".", with at least one digit.
bool IsNumber(QStringView text) {
    if (text.startsWith(u'+') || text.startsWith(u'-'))
        text = text.sliced(1);
    const auto isDigit = [](QChar c) { return c >= u'0' && c <= u'9'; };
    const auto digits = std::count_if(text.begin(), text.end(), isDigit);
    const auto points = std::count(text.begin(), text.end(), u'.');
    return digits > 0 && points <= 1 && digits + points == text.size();
}

} // namespace

std::optional<int> PortFromText(QStringView text, int greatest) {
    const QStringView number = text.trimmed();
    return IsNumber(number) ? LeadingPort(number, greatest) : std::nullopt;
}

std::optional<int> LeadingPort(QStringView text, int greatest) {
    const double value = Text::LeadingNumber(text);
    if (value < 1.0 || value > greatest)
        return std::nullopt;
    return static_cast<int>(std::nearbyint(value));
}
