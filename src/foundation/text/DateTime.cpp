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

QString Digits(int value, int width) {
    return QStringLiteral("%1").arg(value, width, 10, QChar(u'0'));
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
        const QStringView rest = form.sliced(i);
        if (rest.startsWith(u"yyyy")) {
            text += Digits(time.year, 4);
            i += 4;
        } else if (rest.startsWith(u"mmm")) {
            text += locale.monthName(time.month, QLocale::ShortFormat);
            i += 3;
        } else if (rest.startsWith(u"mm") || rest.startsWith(u"dd") || rest.startsWith(u"hh") ||
                   rest.startsWith(u"nn") || rest.startsWith(u"ss")) {
            const char16_t unit = rest[0].unicode();
            text += Digits(unit == u'm'   ? time.month
                           : unit == u'd' ? time.day
                           : unit == u'h' ? time.hour
                           : unit == u'n' ? time.minute
                                          : time.second,
                           2);
            i += 2;
        } else {
            if (rest[0] == u'\\' && rest.size() > 1)
                ++i;
            text += form[i];
            ++i;
        }
    }
    return text;
}
