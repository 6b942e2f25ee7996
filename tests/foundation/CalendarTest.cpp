#include "foundation/records/Calendar.h"

#include <QTest>

class CalendarTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void anEventIsWrittenLineByLine();
    void linesAreFoldedAfter75BytesAndCutNoCharacter();
};

namespace {

constexpr qint64 moment = 1795274923000; // 2026-11-21 15:28:43

CalendarEvent Event(const QString& summary) {
    return {.uid = QStringLiteral("1@x"),
            .start = moment,
            .end = moment + 600000,
            .summary = summary,
            .alarmMinutes = 5};
}

} // namespace

void CalendarTest::anEventIsWrittenLineByLine() {
    QCOMPARE(Calendar({Event(QStringLiteral("a,b;c\\d"))}, QStringLiteral("program 1"), moment),
             QByteArray("BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//QiranDecode//program 1//EN\r\n"
                        "BEGIN:VEVENT\r\nUID:1@x\r\nDTSTAMP:20261121T152843Z\r\nDTSTART:20261121T152843Z\r\n"
                        "DTEND:20261121T153843Z\r\nSUMMARY:a\\,b\\;c\\\\d\r\nTRANSP:TRANSPARENT\r\n"
                        "BEGIN:VALARM\r\nACTION:DISPLAY\r\nDESCRIPTION:a\\,b\\;c\\\\d\r\nTRIGGER:-PT5M\r\n"
                        "END:VALARM\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n"));
}

void CalendarTest::linesAreFoldedAfter75BytesAndCutNoCharacter() {
    for (int letters = 0; letters < 4; ++letters) {
        const QString summary = QString(letters, u'x') + QString(90, u'°') + QString(50, QChar(0x20AC));
        const QByteArray calendar = Calendar({Event(summary)}, QStringLiteral("p"), moment);
        for (const QByteArray& line : calendar.split('\n')) {
            QVERIFY2(line.size() <= 76, line); // its CR with it
            QVERIFY2(QString::fromUtf8(line).toUtf8() == line, line);
        }
        QVERIFY(QByteArray(calendar).replace("\r\n ", "").contains("SUMMARY:" + summary.toUtf8() + "\r\n"));
    }
}

QTEST_GUILESS_MAIN(CalendarTest)
#include "CalendarTest.moc"
