#include "foundation/text/DateTime.h"

#include "foundation/text/Clock.h"
#include "support/TestClock.h"

#include <QDateTime>
#include <QLocale>
#include <QTest>

#include <cmath>
#include <limits>

using namespace Qt::Literals::StringLiterals;

namespace {

CalendarRecord Record(int year, int month, int day, int hour = 0, int minute = 0, int second = 0,
                      int ms = 0) {
    return {.year = year,
            .month = month,
            .dayOfWeek = 0,
            .day = day,
            .hour = hour,
            .minute = minute,
            .second = second,
            .milliseconds = ms};
}

QString Shown(DateTime datT) {
    return FormatDateTime(datT, u"yyyy-mm-dd hh:nn:ss");
}

// The local time of a UTC time in a time zone.
QString Local(const char* zone, const CalendarRecord& utc) {
    const QByteArray before = qgetenv("TZ");
    qputenv("TZ", zone);
    const std::optional<CalendarRecord> local = Clock().ToLocal(utc);
    before.isNull() ? qunsetenv("TZ") : qputenv("TZ", before);
    return local ? Shown(FromCalendar(*local)) : u"none"_s;
}

} // namespace

class DateTimeTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void dayZeroAndKnownDays();
    void moreThan500MillisecondsAddASecond();
    void sixtySecondsGiveTheNextMinute();
    void calendarRecordOfADateTime();
    void calendarRoundsToTheNearestSecondAcrossMidnight();
    void everyMinuteOfADaySurvivesTheRoundTrip();
    void whatIsNoDateIsDayZero();
    void datesBeforeDayZero();
    void monthsAndDaysOutsideTheirRangesCarryOver();
    void formats_data();
    void formats();
    void digitsAreTheSameInEveryLocale();
    void monthNamesAreEnglishOrTheLocales();
    void localTimesFollowTheZonesRulesForTheDate_data();
    void localTimesFollowTheZonesRulesForTheDate();
    void zoneChangedWhileRunningIsNoticed();
    void clockReadsTheSystemsTime();
    void timesBefore1970();
};

void DateTimeTest::dayZeroAndKnownDays() {
    QCOMPARE(DateOf(1899, 12, 30), 0.0);
    QCOMPARE(DateOf(1899, 12, 31), 1.0);
    QCOMPARE(DateOf(1900, 3, 1), 61.0);
    QCOMPARE(DateOf(1970, 1, 1), 25569.0);
    QCOMPARE(DateOf(1995, 10, 9), 34981.0);
    QCOMPARE(DateOf(2000, 1, 1), 36526.0);
    QCOMPARE(FromCalendar(Record(2000, 1, 1, 12)), 36526.5);
}

void DateTimeTest::moreThan500MillisecondsAddASecond() {
    QCOMPARE(FromCalendar(Record(2026, 11, 21, 10, 20, 30, 500)),
             FromCalendar(Record(2026, 11, 21, 10, 20, 30)));
    QCOMPARE(FromCalendar(Record(2026, 11, 21, 10, 20, 30, 501)),
             FromCalendar(Record(2026, 11, 21, 10, 20, 31)));
}

void DateTimeTest::sixtySecondsGiveTheNextMinute() {
    QCOMPARE(Shown(FromCalendar(Record(2026, 12, 31, 23, 59, 59, 999))), u"2027-01-01 00:00:00"_s);
}

void DateTimeTest::calendarRecordOfADateTime() {
    const CalendarRecord record = ToCalendar(FromCalendar(Record(2026, 11, 21, 13, 14, 15)));
    QCOMPARE(record.year, 2026);
    QCOMPARE(record.month, 11);
    QCOMPARE(record.day, 21);
    QCOMPARE(record.dayOfWeek, 6); // a Saturday; Sunday is 0
    QCOMPARE(ToCalendar(DateOf(2026, 11, 22)).dayOfWeek, 0);
    QCOMPARE(record.hour, 13);
    QCOMPARE(record.minute, 14);
    QCOMPARE(record.second, 15);
    QCOMPARE(record.milliseconds, 0);
}

void DateTimeTest::calendarRoundsToTheNearestSecondAcrossMidnight() {
    QCOMPARE(Shown(DateOf(2024, 2, 28) + 86399.6 / secondsPerDay), u"2024-02-29 00:00:00"_s);
    QCOMPARE(Shown(DateOf(2024, 2, 28) + 86399.4 / secondsPerDay), u"2024-02-28 23:59:59"_s);
}

void DateTimeTest::everyMinuteOfADaySurvivesTheRoundTrip() {
    for (int minute = 0; minute < 1440; ++minute) {
        const CalendarRecord record = Record(2026, 6, 15, minute / 60, minute % 60, minute % 60);
        const CalendarRecord again = ToCalendar(FromCalendar(record));
        QCOMPARE(again.hour, record.hour);
        QCOMPARE(again.minute, record.minute);
        QCOMPARE(again.second, record.second);
        QCOMPARE(again.day, record.day);
    }
}

void DateTimeTest::whatIsNoDateIsDayZero() {
    for (const double value : {std::nan(""), std::numeric_limits<double>::infinity(), 1e300, -1e9, 2958466.0})
        QCOMPARE(Shown(value), u"1899-12-30 00:00:00"_s);
    QCOMPARE(Shown(2958465.0), u"9999-12-31 00:00:00"_s);
    QCOMPARE(Shown(-657434.0), u"0100-01-01 00:00:00"_s);
}

void DateTimeTest::datesBeforeDayZero() {
    QCOMPARE(Shown(-1.0), u"1899-12-29 00:00:00"_s);
    QCOMPARE(Shown(FromCalendar(Record(1850, 5, 6, 7, 8, 9))), u"1850-05-06 07:08:09"_s);
}

void DateTimeTest::monthsAndDaysOutsideTheirRangesCarryOver() {
    QCOMPARE(DateOf(2026, 13, 1), DateOf(2027, 1, 1));
    QCOMPARE(DateOf(2026, 0, 1), DateOf(2025, 12, 1));
    QCOMPARE(DateOf(2026, 1, 365), DateOf(2026, 12, 31));
}

void DateTimeTest::formats_data() {
    QTest::addColumn<QString>("form");
    QTest::addColumn<QString>("text");
    QTest::newRow("header time") << uR"(hh\:nn\:ss)"_s << u"04:07:09"_s;
    QTest::newRow("label") << u"  yyyy-mmm-dd hh:nn"_s << u"  2002-Mar-05 04:07"_s;
    QTest::newRow("log file") << u"yyyymmdd"_s << u"20020305"_s;
    QTest::newRow("quoted letters") << uR"(\d\d dd)"_s << u"dd 05"_s;
    QTest::newRow("trailing quote") << uR"(dd\)"_s << uR"(05\)"_s;
    QTest::newRow("too many and too few letters") << u"yyy mmmm ddd yyyyy"_s << u"yyy Marm 05d 2002y"_s;
    QTest::newRow("lone letters stand") << u"d m y h"_s << u"d m y h"_s;
    QTest::newRow("empty") << QString() << QString();
}

void DateTimeTest::formats() {
    QFETCH(QString, form);
    QFETCH(QString, text);
    const QLocale before;
    QLocale::setDefault(QLocale::c());
    QCOMPARE(FormatDateTime(FromCalendar(Record(2002, 3, 5, 4, 7, 9)), form), text);
    QLocale::setDefault(before);
}

void DateTimeTest::digitsAreTheSameInEveryLocale() {
    const QLocale before;
    for (const QLocale& locale : {QLocale(QLocale::German), QLocale(QLocale::Arabic, QLocale::Egypt),
                                  QLocale(QLocale::Persian), QLocale(QLocale::Thai)}) {
        QLocale::setDefault(locale);
        QCOMPARE(Shown(FromCalendar(Record(2026, 11, 21, 13, 14, 15))), u"2026-11-21 13:14:15"_s);
    }
    QLocale::setDefault(before);
}

void DateTimeTest::monthNamesAreEnglishOrTheLocales() {
    const QLocale before;
    const QStringList english = u"Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec"_s.split(u' ');
    int different = 0;
    for (const char* name : {"C", "fi", "ca", "vi", "ja", "de", "en_GB"}) {
        const QLocale locale(QString::fromLatin1(name));
        QLocale::setDefault(locale);
        for (int month = 1; month <= 12; ++month) {
            const DateTime date = DateOf(2026, month, 1);
            QCOMPARE(FormatDateTime(date, u"mmm", MonthNames::English), english[month - 1]);
            QCOMPARE(FormatDateTime(date, u"mmm"), locale.monthName(month, QLocale::ShortFormat));
            different += locale.monthName(month, QLocale::ShortFormat) != english[month - 1] ? 1 : 0;
        }
    }
    QVERIFY(different > 30);
    QLocale::setDefault(before);
}

void DateTimeTest::localTimesFollowTheZonesRulesForTheDate_data() {
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("spring"); // one second before and at a change
    QTest::addColumn<QString>("after");
    QTest::newRow("Berlin, forward") << QByteArray("Europe/Berlin") << u"2026-03-29 00:59:59"_s
                                     << u"2026-03-29 01:59:59"_s << u"2026-03-29 03:00:00"_s;
    QTest::newRow("Berlin, back") << QByteArray("Europe/Berlin") << u"2026-10-25 00:59:59"_s
                                  << u"2026-10-25 02:59:59"_s << u"2026-10-25 02:00:00"_s;
    QTest::newRow("Lord Howe, forward") << QByteArray("Australia/Lord_Howe") << u"2026-10-03 15:29:59"_s
                                        << u"2026-10-04 01:59:59"_s << u"2026-10-04 02:30:00"_s;
    QTest::newRow("Lord Howe, back") << QByteArray("Australia/Lord_Howe") << u"2026-04-04 14:59:59"_s
                                     << u"2026-04-05 01:59:59"_s << u"2026-04-05 01:30:00"_s;
    QTest::newRow("Kathmandu") << QByteArray("Asia/Kathmandu") << u"2026-07-01 18:14:59"_s
                               << u"2026-07-01 23:59:59"_s << u"2026-07-02 00:00:00"_s;
    QTest::newRow("UTC") << QByteArray("UTC") << u"2026-07-01 18:14:59"_s << u"2026-07-01 18:14:59"_s
                         << u"2026-07-01 18:15:00"_s;
}

void DateTimeTest::localTimesFollowTheZonesRulesForTheDate() {
    QFETCH(QByteArray, zone);
    QFETCH(QString, before);
    QFETCH(QString, spring);
    QFETCH(QString, after);
    const auto part = [&](qsizetype at, qsizetype count) { return before.mid(at, count).toInt(); };
    const CalendarRecord utc =
        Record(part(0, 4), part(5, 2), part(8, 2), part(11, 2), part(14, 2), part(17, 2));
    QCOMPARE(Local(zone.constData(), utc), spring);
    QCOMPARE(Local(zone.constData(), ToCalendar(FromCalendar(utc) + 1.0 / secondsPerDay)), after);
}

void DateTimeTest::zoneChangedWhileRunningIsNoticed() {
    const CalendarRecord utc = Record(2026, 7, 1, 12);
    QCOMPARE(Local("UTC", utc), u"2026-07-01 12:00:00"_s);
    QCOMPARE(Local("Asia/Tokyo", utc), u"2026-07-01 21:00:00"_s);
}

void DateTimeTest::clockReadsTheSystemsTime() {
    const qint64 before = QDateTime::currentMSecsSinceEpoch();
    const double now = FromCalendar(Clock().Utc());
    const qint64 after = QDateTime::currentMSecsSinceEpoch();
    const double milliseconds = (now - DateOf(1970, 1, 1)) * secondsPerDay * 1000.0;
    QVERIFY(milliseconds > static_cast<double>(before) - 600 &&
            milliseconds < static_cast<double>(after) + 600);
}

void DateTimeTest::timesBefore1970() {
    TestClock clock;
    clock.SetMilliseconds(-1);
    QCOMPARE(Shown(FromCalendar(clock.Utc())), u"1970-01-01 00:00:00"_s);
    QCOMPARE(clock.Utc().milliseconds, 999);
    clock.SetMilliseconds(-1001);
    QCOMPARE(clock.Utc().second, 58);
}

QTEST_GUILESS_MAIN(DateTimeTest)
#include "DateTimeTest.moc"
