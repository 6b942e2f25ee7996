#include "foundation/text/DateTime.h"

#include <QLocale>

#include <chrono>
#include <cmath>

namespace {

using std::chrono::days;
using std::chrono::sys_days;

constexpr sys_days dayZero = std::chrono::year{1899} / 12 / 30;
constexpr double firstDay = -657434.0;     // 0100-01-01
constexpr double afterLastDay = 2958466.0; // 10000-01-01

// As many digits, zeros in front; `value` has no more.
void AppendDigits(QString& text, int value, qsizetype count) {
    const qsizetype end = text.size() + count;
    text.resize(end);
    for (qsizetype k = 1; k <= count; ++k, value /= 10)
        text[end - k] = QChar(u'0' + value % 10);
}

} // namespace

DateTime DateOf(int year, int month, int day) {
    const std::chrono::year_month first = std::chrono::year{year} / 1 + std::chrono::months{month - 1};
    return static_cast<DateTime>((sys_days{first / 1} + days{day - 1} - dayZero).count());
}

DateTime FromCalendar(const CalendarRecord& record) {
    const int second = record.second + (record.milliseconds > 500 ? 1 : 0);
    return DateOf(record.year, record.month, record.day) +
           ((record.minute / 60.0 + record.hour) + second / 3600.0) / 24.0;
}

CalendarRecord ToCalendar(DateTime datT) {
    if (!(datT >= firstDay && datT < afterLastDay))
        datT = 0.0;
    double day = std::floor(datT);
    auto seconds = static_cast<int>(std::lround((datT - day) * secondsPerDay));
    if (seconds >= 86400) {
        seconds = 0;
        day += 1.0;
    }
    const sys_days date = dayZero + days{static_cast<int>(day)};
    const std::chrono::year_month_day ymd{date};
    return {.year = static_cast<int>(ymd.year()),
            .month = static_cast<int>(static_cast<unsigned>(ymd.month())),
            .dayOfWeek = static_cast<int>(std::chrono::weekday{date}.c_encoding()),
            .day = static_cast<int>(static_cast<unsigned>(ymd.day())),
            .hour = seconds / 3600,
            .minute = seconds / 60 % 60,
            .second = seconds % 60,
            .milliseconds = 0};
}

QString FormatDateTime(DateTime datT, QStringView form, MonthNames names) {
    const QLocale locale = names == MonthNames::English ? QLocale::c() : QLocale();
    const CalendarRecord time = ToCalendar(datT);
    QString text;
    for (qsizetype i = 0; i < form.size();) {
        const char16_t unit = form[i].unicode();
        const auto isRepeated = [&](qsizetype count) {
            for (qsizetype k = 1; k < count; ++k)
                if (i + k >= form.size() || form[i + k].unicode() != unit)
                    return false;
            return true;
        };
        if (unit == u'y' && isRepeated(4)) {
            AppendDigits(text, time.year, 4);
            i += 4;
        } else if (unit == u'm' && isRepeated(3)) {
            text += locale.monthName(time.month, QLocale::ShortFormat);
            i += 3;
        } else if ((unit == u'm' || unit == u'd' || unit == u'h' || unit == u'n' || unit == u's') &&
                   isRepeated(2)) {
            AppendDigits(text,
                         unit == u'm'   ? time.month
                         : unit == u'd' ? time.day
                         : unit == u'h' ? time.hour
                         : unit == u'n' ? time.minute
                                        : time.second,
                         2);
            i += 2;
        } else {
            if (unit == u'\\' && i + 1 < form.size())
                ++i;
            text += form[i];
            ++i;
        }
    }
    return text;
}
