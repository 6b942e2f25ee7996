#include "foundation/text/IsoTime.h"

#include <QDateTime>
#include <QTest>

class IsoTimeTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aTimeIsWrittenAndReadBack_data();
    void aTimeIsWrittenAndReadBack();
    void fractionsAreReadToTheMillisecond();
    void whatIsNoTimeIsRefused_data();
    void whatIsNoTimeIsRefused();
    void everyDayOfFourCenturiesAgreesWithTheCalendar();
};

void IsoTimeTest::aTimeIsWrittenAndReadBack_data() {
    QTest::addColumn<qint64>("utc");
    QTest::addColumn<QByteArray>("milliseconds");
    QTest::addColumn<QByteArray>("seconds");
    const auto row = [](qint64 utc, const char* milliseconds, const char* seconds) {
        QTest::newRow(milliseconds) << utc << QByteArray(milliseconds) << QByteArray(seconds);
    };
    row(0, "1970-01-01T00:00:00.000Z", "1970-01-01T00:00:00Z");
    row(-1, "1969-12-31T23:59:59.999Z", "1969-12-31T23:59:59Z");
    row(1795274923120, "2026-11-21T15:28:43.120Z", "2026-11-21T15:28:43Z");
    row(951782400007, "2000-02-29T00:00:00.007Z", "2000-02-29T00:00:00Z");
    row(253402300799999, "9999-12-31T23:59:59.999Z", "9999-12-31T23:59:59Z");
    row(-62167219200000, "0000-01-01T00:00:00.000Z", "0000-01-01T00:00:00Z");
}

void IsoTimeTest::aTimeIsWrittenAndReadBack() {
    QFETCH(const qint64, utc);
    QFETCH(const QByteArray, milliseconds);
    QFETCH(const QByteArray, seconds);
    QCOMPARE(IsoTime::Milliseconds(utc), milliseconds);
    QCOMPARE(IsoTime::Seconds(utc), seconds);
    QCOMPARE(IsoTime::Read(milliseconds.toStdString()), utc);
    QCOMPARE(IsoTime::Read(seconds.toStdString()), utc - (utc % 1000 + 1000) % 1000);
}

void IsoTimeTest::fractionsAreReadToTheMillisecond() {
    QCOMPARE(IsoTime::Read("1970-01-01T00:00:00.1Z"), 100);
    QCOMPARE(IsoTime::Read("1970-01-01T00:00:00.12Z"), 120);
    QCOMPARE(IsoTime::Read("1970-01-01T00:00:00.123999999Z"), 123);
}

void IsoTimeTest::whatIsNoTimeIsRefused_data() {
    QTest::addColumn<QByteArray>("text");
    for (const char* text : {"",
                             "utc",
                             "2026-11-21",
                             "2026-11-21T15:28:43",
                             "2026-11-21T15:28:43.120",
                             "2026-11-21 15:28:43Z",
                             "2026-11-21T15:28:43.Z",
                             "2026-11-21T15:28:43.1234567890Z",
                             "2026-11-21T15:28:43,120Z",
                             "2026-11-21T15:28:43.12xZ",
                             "2026-13-01T00:00:00Z",
                             "2026-00-01T00:00:00Z",
                             "2026-02-29T00:00:00Z",
                             "2026-04-31T00:00:00Z",
                             "2026-11-21T24:00:00Z",
                             "2026-11-21T00:60:00Z",
                             "2026-11-21T00:00:60Z",
                             "2026-1-21T00:00:00Z",
                             "+2026-11-21T00:00:00Z",
                             " 2026-11-21T00:00:00Z",
                             "2026-11-21T00:00:00Z ",
                             "2026-11-21T-1:00:00Z",
                             "10000-01-01T00:00:00Z",
                             "2026-11-21T15:28:43+00:00"})
        QTest::newRow(text) << QByteArray(text);
}

void IsoTimeTest::whatIsNoTimeIsRefused() {
    QFETCH(const QByteArray, text);
    QCOMPARE(IsoTime::Read(text.toStdString()), std::nullopt);
}

void IsoTimeTest::everyDayOfFourCenturiesAgreesWithTheCalendar() {
    constexpr qint64 day = 86'400'000;
    for (qint64 utc = -100 * 365 * day; utc < 300 * 366 * day; utc += day + 12'345'678) {
        const QDateTime time = QDateTime::fromMSecsSinceEpoch(utc, Qt::UTC);
        QCOMPARE(IsoTime::Milliseconds(utc), time.toString(Qt::ISODateWithMs).toLatin1());
        QCOMPARE(IsoTime::Read(IsoTime::Milliseconds(utc).toStdString()), utc);
    }
}

QTEST_GUILESS_MAIN(IsoTimeTest)
#include "IsoTimeTest.moc"
