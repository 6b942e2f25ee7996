#include "foundation/text/IsoTime.h"

#include <chrono>

namespace IsoTime {
namespace {

constexpr qint64 millisecondsPerDay = 86'400'000;
constexpr std::string_view form = "dddd-dd-ddTdd:dd:dd"; // d stands for a digit

constexpr bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

constexpr bool IsInForm(std::string_view text) {
    if (text.size() <= form.size() || text.back() != 'Z')
        return false;
    for (std::size_t i = 0; i < form.size(); ++i)
        if (form[i] == 'd' ? !IsDigit(text[i]) : text[i] != form[i])
            return false;
    return true;
}

constexpr int Number(std::string_view text, std::size_t at, std::size_t digits) {
    int number = 0;
    for (const char c : text.substr(at, digits))
        number = number * 10 + (c - '0');
    return number;
}

// The milliseconds of ".d" to ".ddddddddd" or nothing; below 0 for anything else.
constexpr int Fraction(std::string_view text) {
    if (text.empty())
        return 0;
    if (text.front() != '.' || text.size() < 2 || text.size() > 10)
        return -1;
    int milliseconds = 0;
    for (std::size_t i = 1; i < text.size(); ++i) {
        if (!IsDigit(text[i]))
            return -1;
        if (i <= 3)
            milliseconds += (text[i] - '0') * (i == 1 ? 100 : i == 2 ? 10 : 1);
    }
    return milliseconds;
}

// The value in two digits, or as many as it is asked for.
void AppendDigits(QByteArray& text, int value, int digits = 2) {
    for (int power = digits == 4 ? 1000 : digits == 3 ? 100 : 10; power > 0; power /= 10)
        text.append(static_cast<char>('0' + value / power % 10));
}

} // namespace

QByteArray Seconds(qint64 utc) {
    using namespace std::chrono;
    const auto day = floor<days>(milliseconds(utc));
    const year_month_day date{sys_days(day)};
    const auto second = static_cast<int>((utc - day.count() * millisecondsPerDay) / 1000);
    QByteArray text;
    text.reserve(24);
    AppendDigits(text, int(date.year()), 4);
    AppendDigits(text.append('-'), static_cast<int>(unsigned(date.month())));
    AppendDigits(text.append('-'), static_cast<int>(unsigned(date.day())));
    AppendDigits(text.append('T'), second / 3600);
    AppendDigits(text.append(':'), second / 60 % 60);
    AppendDigits(text.append(':'), second % 60);
    return text.append('Z');
}

QByteArray Milliseconds(qint64 utc) {
    QByteArray text = Seconds(utc);
    text.back() = '.';
    AppendDigits(text, static_cast<int>((utc % 1000 + 1000) % 1000), 3);
    return text.append('Z');
}

std::optional<qint64> Read(std::string_view text) {
    using namespace std::chrono;
    if (!IsInForm(text))
        return std::nullopt;
    const year_month_day date{year(Number(text, 0, 4)), month(static_cast<unsigned>(Number(text, 5, 2))),
                              day(static_cast<unsigned>(Number(text, 8, 2)))};
    const int hour = Number(text, 11, 2);
    const int minute = Number(text, 14, 2);
    const int second = Number(text, 17, 2);
    const int fraction = Fraction(text.substr(form.size(), text.size() - form.size() - 1));
    if (!date.ok() || hour > 23 || minute > 59 || second > 59 || fraction < 0)
        return std::nullopt;
    return sys_days(date).time_since_epoch().count() * millisecondsPerDay +
           ((hour * 60 + minute) * 60 + second) * 1000 + fraction;
}

} // namespace IsoTime
