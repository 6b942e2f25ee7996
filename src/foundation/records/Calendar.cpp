#include "foundation/records/Calendar.h"

#include <QDateTime>

namespace {

constexpr qsizetype longestLine = 75; // bytes

// A character is not cut in two: bytes 80 to BF go on with one.
bool GoesOn(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

void AddLine(QByteArray& calendar, QByteArray line) {
    while (line.size() > longestLine) {
        qsizetype cut = longestLine;
        while (GoesOn(line[cut]))
            --cut;
        calendar += line.first(cut) + "\r\n";
        line = ' ' + line.sliced(cut);
    }
    calendar += line + "\r\n";
}

QByteArray TextOf(const QString& text) {
    QString escaped = text;
    escaped.replace(u'\\', QStringLiteral("\\\\"))
        .replace(u';', QStringLiteral("\\;"))
        .replace(u',', QStringLiteral("\\,"));
    escaped.replace(u'\n', QStringLiteral("\\n"));
    QByteArray bytes;
    for (const char c : escaped.toUtf8())
        if (static_cast<unsigned char>(c) >= 0x20 && c != 0x7F)
            bytes += c;
    return bytes;
}

QByteArray TimeOf(qint64 utc) {
    return QDateTime::fromMSecsSinceEpoch(utc, Qt::UTC)
        .toString(QStringLiteral("yyyyMMdd'T'hhmmss'Z'"))
        .toLatin1();
}

void AddEvent(QByteArray& calendar, const CalendarEvent& event, qint64 now) {
    AddLine(calendar, "BEGIN:VEVENT");
    AddLine(calendar, "UID:" + TextOf(event.uid));
    AddLine(calendar, "DTSTAMP:" + TimeOf(now));
    AddLine(calendar, "DTSTART:" + TimeOf(event.start));
    AddLine(calendar, "DTEND:" + TimeOf(event.end));
    AddLine(calendar, "SUMMARY:" + TextOf(event.summary));
    AddLine(calendar, "TRANSP:TRANSPARENT"); // nobody is busy because a satellite passes
    if (event.alarmMinutes > 0) {
        AddLine(calendar, "BEGIN:VALARM");
        AddLine(calendar, "ACTION:DISPLAY");
        AddLine(calendar, "DESCRIPTION:" + TextOf(event.summary));
        AddLine(calendar, "TRIGGER:-PT" + QByteArray::number(event.alarmMinutes) + 'M');
        AddLine(calendar, "END:VALARM");
    }
    AddLine(calendar, "END:VEVENT");
}

// A calendar without any component would be none.
void AddZone(QByteArray& calendar) {
    for (const char* line : {"BEGIN:VTIMEZONE", "TZID:UTC", "BEGIN:STANDARD", "DTSTART:19700101T000000",
                             "TZOFFSETFROM:+0000", "TZOFFSETTO:+0000", "END:STANDARD", "END:VTIMEZONE"})
        AddLine(calendar, line);
}

} // namespace

QByteArray Calendar(const QList<CalendarEvent>& events, const QString& program, qint64 now) {
    QByteArray calendar;
    AddLine(calendar, "BEGIN:VCALENDAR");
    AddLine(calendar, "VERSION:2.0");
    AddLine(calendar, "PRODID:-//QiranDecode//" + TextOf(program) + "//EN");
    if (events.isEmpty())
        AddZone(calendar);
    for (const CalendarEvent& event : events)
        AddEvent(calendar, event, now);
    AddLine(calendar, "END:VCALENDAR");
    return calendar;
}
