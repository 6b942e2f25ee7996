#include "station/identity/Station.h"

#include "foundation/settings/clsIni.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

class StationTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aFreshFileFillsItselfInOrder();
    void everySetterWritesItsKeyAtOnce();
    void positionTextsBecomeDegrees();
    void aStationAtZeroIsUnknown_data();
    void aStationAtZeroIsUnknown();
    void aChangeIsToldOnce();
    void aCommentAbove127SurvivesTheFile();

private:
    QByteArray FileBytes() const {
        QFile file(m_folder.filePath(QStringLiteral("x.INI")));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QTemporaryDir m_folder;
    clsIni m_ini{m_folder.filePath(QStringLiteral("x.INI"))};

private Q_SLOTS:
    void init() { QFile::remove(m_folder.filePath(QStringLiteral("x.INI"))); }
};

void StationTest::aFreshFileFillsItselfInOrder() {
    Station station(m_ini);
    station.Load();
    QCOMPARE(FileBytes(), "[SETUP]\r\nLATITUDE=\"\"\r\nLONGITUDE=\"\"\r\nLOCATOR=\"\"\r\nCALLSIGN=\"\"\r\n"
                          "COMMENT=\"\"\r\n");
    QVERIFY(!station.PositionKnown());
}

void StationTest::everySetterWritesItsKeyAtOnce() {
    Station station(m_ini);
    station.setStrLat(QStringLiteral("5130.00N"));
    QVERIFY(FileBytes().contains("LATITUDE=5130.00N\r\n"));
    station.setStrLong(QStringLiteral("00030.00W"));
    QVERIFY(FileBytes().contains("LONGITUDE=00030.00W\r\n"));
    station.setStrCallsign(QStringLiteral("XQ9ZZ-1"));
    QVERIFY(FileBytes().contains("CALLSIGN=XQ9ZZ-1\r\n"));
    station.setStrComment(QStringLiteral("hello"));
    QVERIFY(FileBytes().contains("COMMENT=hello\r\n"));
    station.setStrLoc(QStringLiteral("IO91SM"));
    QVERIFY(FileBytes().contains("LOCATOR=IO91SM\r\n"));

    Station again(m_ini);
    again.Load();
    QCOMPARE(again.strLat(), QStringLiteral("5130.00N"));
    QCOMPARE(again.strLong(), QStringLiteral("00030.00W"));
    QCOMPARE(again.strCallsign(), QStringLiteral("XQ9ZZ-1"));
    QCOMPARE(again.strComment(), QStringLiteral("hello"));
    QCOMPARE(again.strLoc(), QStringLiteral("IO91SM"));
    QCOMPARE(again.dblLat(), 51.5);
    QCOMPARE(again.dblLong(), -0.5);
    QVERIFY(again.PositionKnown());
}

void StationTest::positionTextsBecomeDegrees() {
    Station station(m_ini);
    station.setStrLat(QStringLiteral("3859.11S"));
    QCOMPARE(station.dblLat(), -(38 + 59.11 / 60));
    station.setStrLat(QStringLiteral("3859.11s"));
    QCOMPARE(station.dblLat(), 0.0);
    station.setStrLong(QStringLiteral("07629.17W"));
    QCOMPARE(station.dblLong(), -(76 + 29.17 / 60));
}

void StationTest::aStationAtZeroIsUnknown_data() {
    QTest::addColumn<QString>("latitude");
    QTest::addColumn<QString>("longitude");
    QTest::addColumn<bool>("known");
    QTest::newRow("on the equator") << "0000.00N"
                                    << "00030.00W" << false;
    QTest::newRow("on the prime meridian") << "5130.00N"
                                           << "00000.00E" << false;
    QTest::newRow("at both") << "0000.00S"
                             << "00000.00W" << false;
    QTest::newRow("beyond the pole") << "9500.00N"
                                     << "00030.00W" << false;
    QTest::newRow("beyond the date line") << "5130.00N"
                                          << "18100.00E" << false;
    QTest::newRow("a hundredth of a minute off") << "0000.01S"
                                                 << "00000.01W" << true;
    QTest::newRow("south pole on the date line") << "9000.00S"
                                                 << "18000.00E" << true;
}

void StationTest::aStationAtZeroIsUnknown() {
    QFETCH(const QString, latitude);
    QFETCH(const QString, longitude);
    Station station(m_ini);
    station.setStrLat(latitude);
    station.setStrLong(longitude);
    QTEST(station.PositionKnown(), "known");
}

void StationTest::aChangeIsToldOnce() {
    Station station(m_ini);
    const QSignalSpy changed(&station, &Station::Changed);
    station.setStrLat(QStringLiteral("5130.00N"));
    QCOMPARE(changed.count(), 1);
    station.setStrLat(QStringLiteral("5130.00N"));
    QCOMPARE(changed.count(), 1);
    station.setStrComment(QStringLiteral("x"));
    QCOMPARE(changed.count(), 2);
}

void StationTest::aCommentAbove127SurvivesTheFile() {
    const QString comment = QStringLiteral(u"Z\u00fcrich 5 \u20ac \u00ff");
    Station(m_ini).setStrComment(comment);
    QVERIFY(FileBytes().contains("COMMENT=Z\xfcrich 5 \x80 \xff\r\n"));
    Station again(m_ini);
    again.Load();
    QCOMPARE(again.strComment(), comment);
}

QTEST_GUILESS_MAIN(StationTest)
#include "StationTest.moc"
