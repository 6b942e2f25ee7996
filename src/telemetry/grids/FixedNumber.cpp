#include "telemetry/grids/FixedNumber.h"

#include <array>
#include <charconv>
#include <cmath>
#include <string>

namespace {

// The digits of |value| before and behind the point, rounded to 15 significant ones.
struct Decimal {
    std::string whole;
    std::string fraction;
};

Decimal ToDecimal(double value) {
    std::array<char, 32> buffer{}; // "d.dddddddddddddde-308"
    const auto end =
        std::to_chars(buffer.begin(), buffer.end(), std::abs(value), std::chars_format::scientific, 14).ptr;
    std::string digits(buffer.begin(), end);
    const std::size_t mark = digits.find('e');
    const int exponent = std::stoi(digits.substr(mark + 1));
    digits.erase(mark);
    digits.erase(1, 1); // "."
    Decimal number;
    if (exponent < 0) {
        number.whole.assign(1, '0');
        number.fraction.assign(static_cast<unsigned>(-exponent) - 1U, '0').append(digits);
    } else {
        const auto wholeDigits = static_cast<std::size_t>(exponent) + 1;
        if (digits.size() < wholeDigits)
            digits.append(wholeDigits - digits.size(), '0');
        number.whole = digits.substr(0, wholeDigits);
        number.fraction = digits.substr(wholeDigits);
    }
    return number;
}

} // namespace

QString FixedNumber(double value, int decimals) {
    if (!std::isfinite(value))
        return {};
    auto [whole, fraction] = ToDecimal(value);
    const auto places = static_cast<std::size_t>(decimals);
    const bool up = fraction.size() > places && fraction[places] >= '5';
    fraction.resize(places, '0');
    std::string digits = whole + fraction;
    if (up) {
        std::size_t at = digits.size();
        while (at > 0 && digits[at - 1] == '9')
            digits[--at] = '0';
        if (at == 0)
            digits.insert(0, 1, '1');
        else
            ++digits[at - 1];
    }
    const bool isZero = digits.find_first_not_of('0') == std::string::npos;
    if (decimals > 0)
        digits.insert(digits.size() - places, 1, '.');
    if (value < 0.0 && !isZero)
        digits.insert(0, 1, '-');
    return QString::fromStdString(digits);
}
