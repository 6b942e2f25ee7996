#include "foundation/text/UtcTime.h"

#include <QTest>

using UtcTime::Digits;

class UtcTimeTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theNearestSecondIsTaken_data();
    void theNearestSecondIsTaken();
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

void UtcTimeTest::theNearestSecondIsTaken_data() {
    QTest::addColumn<qint64>("utc");
    QTest::addColumn<qint64>("second");
    QTest::newRow("below") << moment << moment - 120;
    QTest::newRow("half a second") << moment + 380 << moment + 880;
    QTest::newRow("before 1970") << qint64{-501} << qint64{-1000};
    QTest::newRow("just before 1970") << qint64{-500} << qint64{0};
}

void UtcTimeTest::theNearestSecondIsTaken() {
    QFETCH(const qint64, utc);
    QTEST(UtcTime::ToNearestSecond(utc), "second");
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
    const QString seconds = UtcTime::ToLocalText(moment + 400, Digits::Seconds);
    const QString milliseconds = UtcTime::ToLocalText(moment, Digits::Milliseconds);
    qputenv("TZ", before);
    QCOMPARE(seconds, S("2026-11-21 20:58:44"));
    QCOMPARE(milliseconds, S("2026-11-21 20:58:43.120"));
}

QTEST_GUILESS_MAIN(UtcTimeTest)
#include "UtcTimeTest.moc"
