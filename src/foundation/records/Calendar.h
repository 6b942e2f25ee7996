#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// An entry of a calendar. Times are milliseconds since 1970-01-01 00:00 UTC.
struct CalendarEvent {
    QString uid; ///< the same for the same entry, whenever it is printed
    qint64 start = 0;
    qint64 end = 0;
    QString summary;
    int alarmMinutes = 0; ///< before the start; 0: no alarm
};

/// The entries as an iCalendar object (RFC 5545), made by `program` at `now`.
QByteArray Calendar(const QList<CalendarEvent>& events, const QString& program, qint64 now);
