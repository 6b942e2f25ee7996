#include "orbit/elements/Elements.h"

#include <array>

namespace orbitmath {

namespace {

constexpr std::size_t lineLength = 69;

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Columns `first` to `last` of a line, counted from 1 as the format's description does.
std::string_view Columns(std::string_view line, std::size_t first, std::size_t last) {
    return line.substr(first - 1, last - first + 1);
}

std::string_view WithoutBlanks(std::string_view text) {
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    return text;
}

/// Digits with at most one point among them, a sign in front where allowed; blanks around them. The columns
/// hold no more than 15 digits, so mantissa and power of ten are exact and their quotient is the nearest
/// double.
std::optional<double> Decimal(std::string_view field) {
    static constexpr std::array<double, 16> powers{1,   1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                   1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    field = WithoutBlanks(field);
    const bool negative = !field.empty() && field.front() == '-';
    if (!field.empty() && (field.front() == '-' || field.front() == '+'))
        field.remove_prefix(1);
    std::int64_t mantissa = 0;
    std::size_t digits = 0;
    std::size_t afterPoint = 0;
    bool point = false;
    for (const char c : field) {
        if (c == '.' && !point) {
            point = true;
        } else if (IsDigit(c) && digits < 15) {
            mantissa = mantissa * 10 + (c - '0');
            ++digits;
            afterPoint += point ? 1 : 0;
        } else {
            return {};
        }
    }
    if (digits == 0)
        return {};
    const double value = static_cast<double>(mantissa) / powers.at(afterPoint);
    return negative ? -value : value;
}

/// The exponent form "s12345-6", meaning s0.12345e-6: the sign of the mantissa may be a blank, a point may
/// stand before its digits, the sign of the exponent may be a blank. An empty field is 0. The columns of a
/// drag term.
std::optional<double> ExponentForm(std::string_view field) {
    field = WithoutBlanks(field);
    if (field.empty())
        return 0.0;
    const bool negative = field.front() == '-';
    if (negative || field.front() == '+')
        field.remove_prefix(1);
    if (!field.empty() && field.front() == '.')
        field.remove_prefix(1);
    double mantissa = 0;
    double unit = 1;
    std::size_t k = 0;
    for (; k < field.size() && IsDigit(field[k]); ++k) {
        mantissa = mantissa * 10 + (field[k] - '0');
        unit *= 10;
    }
    if (k == 0)
        return {};
    int exponent = 0;
    if (k < field.size()) {
        const char sign = field[k];
        const std::string_view digits = field.substr(k + 1);
        if ((sign != '-' && sign != '+' && sign != ' ') || digits.empty() || digits.size() > 2)
            return {};
        for (const char c : digits) {
            if (!IsDigit(c))
                return {};
            exponent = exponent * 10 + (c - '0');
        }
        if (sign == '-')
            exponent = -exponent;
    } else if (mantissa != 0) {
        return {};
    }
    if (mantissa == 0)
        return 0.0;
    for (int n = 0; n < exponent; ++n)
        mantissa *= 10;
    for (int n = 0; n > exponent; --n)
        unit *= 10;
    return (negative ? -mantissa : mantissa) / unit;
}

bool ChecksumIsRight(std::string_view line) {
    unsigned sum = 0;
    for (const char c : line.substr(0, lineLength - 1)) {
        if (IsDigit(c))
            sum += static_cast<unsigned>(c - '0');
        else if (c == '-')
            ++sum;
    }
    return line[lineLength - 1] == static_cast<char>('0' + sum % 10);
}

/// Days from 1899-12-30 to January 0 of a year from 1957 to 2056. Every fourth of these years is a leap year.
int DaysToYear(int year) {
    return 365 * (year - 1900) + (year - 1901) / 4 + 1;
}

/// The date-time of a two-digit year and a day of the year with its fraction (January 1 0h is 1.0).
std::optional<double> Epoch(std::string_view yearField, std::string_view dayField) {
    const std::optional<double> twoDigits = Decimal(yearField);
    const std::optional<double> day = Decimal(dayField);
    if (!twoDigits || !day || *twoDigits != static_cast<int>(*twoDigits) || *twoDigits < 0)
        return {};
    const int year = static_cast<int>(*twoDigits) + (*twoDigits < 57 ? 2000 : 1900);
    const int daysInYear = year % 4 == 0 ? 366 : 365;
    if (!(*day >= 1 && *day < daysInYear + 1))
        return {};
    return DaysToYear(year) + *day;
}

/// What is wrong with line `number` of a set as a whole; nothing when its fields can be read. `separators`
/// are the columns between them.
std::optional<ElementFault> FaultOfLine(std::string_view line, int number,
                                        std::initializer_list<std::size_t> separators) {
    const auto fault = [&](std::size_t column, std::string_view what) {
        return ElementFault{.line = number, .column = column, .what = what};
    };
    if (line.size() < lineLength)
        return fault(line.size() + 1, "the line is too short");
    if (line.size() > lineLength)
        return fault(lineLength + 1, "the line is too long");
    for (std::size_t column = 1; column <= lineLength; ++column) {
        if (line[column - 1] < ' ' || line[column - 1] > '~')
            return fault(column, "a character that is no text");
    }
    if (line[0] != '0' + number)
        return fault(1, "the line does not begin with its number");
    if (!IsDigit(line[lineLength - 1]))
        return fault(lineLength, "the checksum is no digit");
    if (!ChecksumIsRight(line))
        return fault(lineLength, "the checksum is wrong");
    for (const std::size_t column : separators) {
        if (line[column - 1] != ' ')
            return fault(column, "the column between two fields is not blank");
    }
    return {};
}

/// Line 1 but for its number.
std::optional<ElementFault> ReadLine1(std::string_view line, Elements& elements) {
    const std::optional<double> epoch = Epoch(Columns(line, 19, 20), Columns(line, 21, 32));
    if (!epoch)
        return ElementFault{.line = 1, .column = 19, .what = "the epoch is no date"};
    constexpr char otherTheory = '4';
    if (line[63 - 1] == otherTheory)
        return ElementFault{.line = 1, .column = 63, .what = sgp4Xp};
    if (!Decimal(Columns(line, 34, 43)))
        return ElementFault{.line = 1, .column = 34, .what = "the first derivative is no number"};
    if (!ExponentForm(Columns(line, 45, 52)))
        return ElementFault{.line = 1, .column = 45, .what = "the second derivative is no number"};
    const std::optional<double> bstar = ExponentForm(Columns(line, 54, 61));
    if (!bstar)
        return ElementFault{.line = 1, .column = 54, .what = "the drag term is no number"};
    elements.epochUtc = *epoch;
    elements.bstar = *bstar;
    return {};
}

/// Line 2 but for its number.
std::optional<ElementFault> ReadLine2(std::string_view line, Elements& elements) {
    const struct {
        std::size_t first; // column
        double greatest;   // degrees
        double* element;
        std::string_view fault;
    } angles[] = {
        {9, 180, &elements.inclination, "the inclination is no angle from 0 to 180 degrees"},
        {18, 360, &elements.node, "the ascending node is no angle from 0 to 360 degrees"},
        {35, 360, &elements.argumentOfPerigee, "the argument of perigee is no angle from 0 to 360 degrees"},
        {44, 360, &elements.meanAnomaly, "the mean anomaly is no angle from 0 to 360 degrees"},
    };
    for (const auto& angle : angles) {
        const std::optional<double> degrees = Decimal(Columns(line, angle.first, angle.first + 7));
        if (!degrees || !(*degrees >= 0 && *degrees <= angle.greatest))
            return ElementFault{.line = 2, .column = angle.first, .what = angle.fault};
        *angle.element = *degrees * radiansPerDegree;
    }
    const std::string_view eccentricityDigits = Columns(line, 27, 33);
    const std::optional<double> eccentricity = Decimal(eccentricityDigits);
    if (!eccentricity || eccentricityDigits.find_first_of("+-.") != std::string_view::npos)
        return ElementFault{.line = 2, .column = 27, .what = "the eccentricity is no number"};
    const std::optional<double> revolutions = Decimal(Columns(line, 53, 63));
    constexpr double mostRevolutions = 20; // a day; the surface itself is passed 17 times
    if (!revolutions || !(*revolutions > 0 && *revolutions < mostRevolutions))
        return ElementFault{.line = 2, .column = 53, .what = "the mean motion is no number or cannot be"};
    elements.eccentricity = *eccentricity / 1e7;
    elements.meanMotion = *revolutions / (minutesPerDay / twoPi);
    return {};
}

} // namespace

std::optional<std::uint32_t> CatalogueNumber(std::string_view text) {
    constexpr std::size_t mostDigits = 9;
    text = WithoutBlanks(text);
    if (text.empty() || text.size() > mostDigits)
        return {};
    std::uint32_t number = 0;
    const char first = text.front();
    const bool alpha5 = first >= 'A' && first <= 'Z';
    if (alpha5) {
        if (first == 'I' || first == 'O' || text.size() != 5)
            return {};
        number =
            static_cast<std::uint32_t>(first - 'A') + 10U - (first > 'I' ? 1U : 0U) - (first > 'O' ? 1U : 0U);
        text.remove_prefix(1);
    }
    for (const char c : text) {
        if (!IsDigit(c))
            return {};
        number = number * 10 + static_cast<std::uint32_t>(c - '0');
    }
    return number;
}

std::variant<Elements, ElementFault> ReadElements(std::string_view line1, std::string_view line2) {
    if (const auto fault = FaultOfLine(line1, 1, {2, 9, 18, 33, 44, 53, 62, 64}))
        return *fault;
    if (const auto fault = FaultOfLine(line2, 2, {2, 8, 17, 26, 34, 43, 52}))
        return *fault;
    const std::optional<std::uint32_t> number = CatalogueNumber(Columns(line1, 3, 7));
    if (!number)
        return ElementFault{.line = 1, .column = 3, .what = "the catalogue number is none"};
    if (number != CatalogueNumber(Columns(line2, 3, 7)))
        return ElementFault{.line = 2, .column = 3, .what = "the catalogue number is not that of line 1"};
    Elements elements;
    elements.number = *number;
    if (const auto fault = ReadLine1(line1, elements))
        return *fault;
    if (const auto fault = ReadLine2(line2, elements))
        return *fault;
    return elements;
}

} // namespace orbitmath
