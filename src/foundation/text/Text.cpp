#include "foundation/text/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

namespace Text {
namespace {

// Windows-1252 is Latin-1 but for these; bytes that it leaves undefined keep their number.
constexpr std::array<char16_t, 32> highControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

char ToByte(char16_t character) {
    if (character < 0x80 || (character >= 0xA0 && character <= 0xFF))
        return static_cast<char>(character);
    const auto* found = std::ranges::find(highControls, character);
    return found == highControls.end() ? '?' : static_cast<char>(0x80 + (found - highControls.begin()));
}

constexpr bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

// The length of the number that starts at the front of `text`, 0 when there is none; no sign.
std::size_t NumberLength(std::string_view text, Exponent exponent) {
    const auto digitsFrom = [&](std::size_t at) {
        while (at < text.size() && IsDigit(text[at]))
            ++at;
        return at;
    };
    std::size_t end = digitsFrom(0);
    bool hasDigits = end > 0;
    if (end < text.size() && text[end] == '.') {
        const std::size_t fraction = digitsFrom(end + 1);
        hasDigits = hasDigits || fraction > end + 1;
        end = fraction;
    }
    if (!hasDigits)
        return 0;
    if (exponent == Exponent::Yes && end < text.size() && (text[end] == 'E' || text[end] == 'e')) {
        std::size_t digits = end + 1;
        if (digits < text.size() && (text[digits] == '+' || text[digits] == '-'))
            ++digits;
        if (const std::size_t last = digitsFrom(digits); last > digits)
            end = last;
    }
    return end;
}

// What from_chars leaves out of range is vanishingly small or too large: the power of ten of its first digit
// that is not 0 tells which.
double OutOfRange(std::string_view number) {
    const std::size_t mark = std::min(number.find_first_of("Ee"), number.size());
    const std::size_t point = std::min(number.find('.'), mark);
    const std::size_t digit = number.find_first_of("123456789");
    constexpr long long most = 1'000'000'000'000; // far beyond any text's length
    long long exponent = 0;
    for (const char c : number.substr(std::min(mark + 1, number.size())))
        if (IsDigit(c))
            exponent = std::min(most, exponent * 10 + (c - '0'));
    if (mark + 1 < number.size() && number[mark + 1] == '-')
        exponent = -exponent;
    const long long power = exponent + static_cast<long long>(point) - static_cast<long long>(digit);
    return power > 0 ? std::numeric_limits<double>::infinity() : 0.0;
}

} // namespace

QByteArray ToBytes(QStringView text) {
    QByteArray bytes;
    bytes.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        bytes.append(ToByte(text[i].unicode()));
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate())
            ++i; // one character, one "?"
    }
    return bytes;
}

QString FromBytes(QByteArrayView bytes) {
    QString text(bytes.size(), Qt::Uninitialized);
    std::ranges::transform(bytes, text.data(), [](char byte) {
        const auto value = static_cast<unsigned char>(byte);
        return QChar(value >= 0x80 && value < 0xA0 ? highControls[value - 0x80U] : value);
    });
    return text;
}

double LeadingNumber(std::string_view text, Exponent exponent) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+'))
        text.remove_prefix(1);
    const std::string_view number = text.substr(0, NumberLength(text, exponent));
    if (number.empty())
        return 0.0;
    double value = 0.0;
    if (std::from_chars(number.data(), number.data() + number.size(), value).ec ==
        std::errc::result_out_of_range)
        value = OutOfRange(number);
    return negative ? -value : value;
}

double LeadingNumber(QStringView text, Exponent exponent) {
    // A number is ASCII: whatever is not becomes a character that ends it.
    std::string ascii(static_cast<std::size_t>(text.size()), '\0');
    std::ranges::transform(text, ascii.begin(),
                           [](QChar c) { return c.unicode() < 0x80 ? c.toLatin1() : '?'; });
    return LeadingNumber(std::string_view(ascii), exponent);
}

std::optional<qint16> RoundToInt16(double value) {
    const double rounded = std::nearbyint(value); // the default rounding mode: half to even
    if (!(rounded >= std::numeric_limits<qint16>::min() && rounded <= std::numeric_limits<qint16>::max()))
        return std::nullopt;
    return static_cast<qint16>(rounded);
}

QString GeneralNumber(double value) {
    return QString::number(value == 0.0 ? 0.0 : value, 'G', 15); // no "-0"
}

QString OneLine(const QString& text, qsizetype longest) {
    QString line = text.simplified().left(longest);
    for (QChar& character : line)
        if (!character.isPrint() && !character.isSurrogate())
            character = u'?';
    return line;
}

} // namespace Text
