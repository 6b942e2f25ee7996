#include "foundation/text/UtcTime.h"

#include <QTest>

using UtcTime::Digits;

class UtcTimeTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void isWrittenWithSecondsOrMilliseconds_data();
    void isWrittenWithSecondsOrMilliseconds();
    void isReadInEveryUsualForm_data();
    void isReadInEveryUsualForm();
    void refusesWhatIsNoTime_data();
    void refusesWhatIsNoTime();
    void isADateTimeToTheMillisecond();
    void localTextFollowsTheZone();
};

namespace {

constexpr qint64 moment = 1795274923120; // 2026-11-21 15:28:43.120

QString S(const char* text) {
    return QString::fromLatin1(text);
}

} // namespace

void UtcTimeTest::isWrittenWithSecondsOrMilliseconds_data() {
    QTest::addColumn<qint64>("utc");
    QTest::addColumn<QString>("seconds");
    QTest::addColumn<QString>("milliseconds");
    QTest::newRow("now") << moment << S("2026-11-21T15:28:43Z") << S("2026-11-21T15:28:43.120Z");
    QTest::newRow("half a second") << moment + 380 << S("2026-11-21T15:28:44Z")
                                   << S("2026-11-21T15:28:43.500Z");
    QTest::newRow("the last of a year")
        << qint64{1798761599999} << S("2027-01-01T00:00:00Z") << S("2026-12-31T23:59:59.999Z");
    QTest::newRow("before 1970") << qint64{-1} << S("1970-01-01T00:00:00Z") << S("1969-12-31T23:59:59.999Z");
}

void UtcTimeTest::isWrittenWithSecondsOrMilliseconds() {
    QFETCH(const qint64, utc);
    QTEST(UtcTime::ToText(utc, Digits::Seconds), "seconds");
    QTEST(UtcTime::ToText(utc, Digits::Milliseconds), "milliseconds");
}

void UtcTimeTest::isReadInEveryUsualForm_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<qint64>("utc");
    QTest::newRow("whole") << S("2026-11-21T15:28:43.120Z") << moment;
    QTest::newRow("seconds") << S("2026-11-21T15:28:43Z") << moment - 120;
    QTest::newRow("minutes") << S("2026-11-21T15:28Z") << moment - 43120;
    QTest::newRow("no zone is UTC") << S("2026-11-21T15:28:43") << moment - 120;
    QTest::newRow("a blank") << S("2026-11-21 15:28:43") << moment - 120;
    QTest::newRow("small letters") << S("2026-11-21t15:28:43z") << moment - 120;
    QTest::newRow("an offset") << S("2026-11-21T17:28:43+02:00") << moment - 120;
    QTest::newRow("a date") << S("2026-11-21") << moment - 55723120;
}

void UtcTimeTest::isReadInEveryUsualForm() {
    QFETCH(const QString, text);
    const std::optional<qint64> utc = UtcTime::Parse(text);
    QVERIFY(utc);
    QTEST(*utc, "utc");
}

void UtcTimeTest::refusesWhatIsNoTime_data() {
    QTest::addColumn<QString>("text");
    for (const char* text : {"", "now", "15:28", "2026-13-01", "2026-02-30T00:00Z", "2026-11-21T25:00Z",
                             "1899-12-31", "2200-01-01", "2026-11-21T15:28:43ZZ", "20261121"})
        QTest::newRow(text) << S(text);
}

void UtcTimeTest::refusesWhatIsNoTime() {
    QFETCH(const QString, text);
    QVERIFY(!UtcTime::Parse(text));
}

void UtcTimeTest::isADateTimeToTheMillisecond() {
    QCOMPARE(UtcTime::FromDateTime(DateOf(1970, 1, 1)), qint64{0});
    QCOMPARE(UtcTime::FromDateTime(UtcTime::ToDateTime(moment)), moment);
    QCOMPARE(UtcTime::FromDateTime(DateOf(2026, 11, 21) + 0.5), qint64{1795262400000});
}

void UtcTimeTest::localTextFollowsTheZone() {
    const QByteArray before = qgetenv("TZ");
    qputenv("TZ", "Asia/Kolkata");
    const QString local = UtcTime::ToLocalText(moment, Digits::Seconds);
    qputenv("TZ", before);
    QCOMPARE(local, S("2026-11-21 20:58:43"));
}

QTEST_GUILESS_MAIN(UtcTimeTest)
#include "UtcTimeTest.moc"
