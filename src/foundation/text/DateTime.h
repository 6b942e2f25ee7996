#pragma once

#include <QString>

/// A date-time: days since 1899-12-30 00:00, the fraction being the time of day (noon = .5).
using DateTime = double;

/// A date-time taken apart, as an operating system's clock gives it.
struct CalendarRecord {
    int year = 0;
    int month = 0;     ///< 1 to 12
    int dayOfWeek = 0; ///< 0 (Sunday) to 6
    int day = 0;       ///< 1 to 31
    int hour = 0;
    int minute = 0;
    int second = 0;
    int milliseconds = 0;
};

constexpr double secondsPerDay = 86400.0;
constexpr double minutesPerDay = 1440.0;

/// Midnight of a day. `month` and `day` may lie outside their ranges and carry over.
DateTime DateOf(int year, int month, int day);

/// More than 500 milliseconds add a second; 60 seconds simply give the next minute.
DateTime FromCalendar(const CalendarRecord& record);

/// `datT` to the nearest second, milliseconds 0. What is no date (not finite, or outside the years 100 to
/// 9999) is taken apart as 1899-12-30 00:00.
CalendarRecord ToCalendar(DateTime datT);

/// Whose short names of months: the user's language's, which differ in length, or the three English letters.
enum class MonthNames { OfLocale, English };

/// `datT` to the nearest second in the given form: "yyyy", "mmm" (the month's short name), "mm", "dd", "hh"
/// (0 to 23), "nn" (minutes) and "ss" are replaced, "\" quotes the next character, the rest stands as is.
QString FormatDateTime(DateTime datT, QStringView form, MonthNames names = MonthNames::OfLocale);
