#include "orbit/map/GroundTrack.h"

#include "orbit/service/KVRSatLib.h"
#include "support/TemporaryProgramFolder.h"
#include "support/TestClock.h"

#include <QTest>

/// Ground tracks by the true orbit library.
class GroundTrackTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void isOneOrbitOfTheElementsMeanMotion_data();
    void isOneOrbitOfTheElementsMeanMotion();
    void isAPointAMinute();
    void endsWhereDragEndsTheOrbit();
    void ofAnUnknownObjectIsEmpty();

private:
    GroundTrack TrackOf(const char* object, DateTime start) const;

    const TestClock m_clock;
    clsSats m_sats{std::make_unique<KVRSatLib>(), m_clock};
};

// The elements' epoch is 2026-11-21 00:00.
void GroundTrackTest::initTestCase() {
    const TemporaryProgramFolder folder;
    folder.Write(QStringLiteral("keps.txt"),
                 "QIRAN\r\n"
                 "1 90417U 06001A   26325.00000000  .00000200  00000+0  10000-3 0  9991\r\n"
                 "2 90417  98.1800 215.4000 0011500  92.3000 268.0000 14.57400000  4126\r\n"
                 "ISS (ZARYA)\r\n"
                 "1 25544U 98067A   26325.00000000  .00011000  00000+0  20000-3 0  9994\r\n"
                 "2 25544  51.6400 120.5000 0004200  61.0000 299.2000 15.49600000 50001\r\n"
                 "MOLNIYA\r\n"
                 "1 40001U 14001A   26325.00000000  .00000000  00000+0  00000+0 0  9997\r\n"
                 "2 40001  63.4000  30.0000 7200000 270.0000   0.0000  2.00600000    10\r\n"
                 "FALLING\r\n"
                 "1 40002U 14002A   26325.00000000  .00000000  00000+0  20000-0 0  9992\r\n"
                 "2 40002  51.6000 208.0000 0005000  70.0000  25.0000 16.20000000    19\r\n");
    QVERIFY(m_sats.setStrKeplerPath(folder.Program().Path()));
}

GroundTrack GroundTrackTest::TrackOf(const char* object, DateTime start) const {
    return GroundTrack::Of(m_sats, QString::fromLatin1(object), start);
}

void GroundTrackTest::isOneOrbitOfTheElementsMeanMotion_data() {
    QTest::addColumn<QByteArray>("object");
    QTest::addColumn<int>("points");
    QTest::newRow("98.8 minutes") << QByteArray("90417") << 100;
    QTest::newRow("92.9 minutes") << QByteArray("25544") << 94;
    QTest::newRow("twelve hours, at most 200") << QByteArray("40001") << 201;
}

void GroundTrackTest::isOneOrbitOfTheElementsMeanMotion() {
    QFETCH(QByteArray, object);
    const GroundTrack track = TrackOf(object.constData(), DateOf(2026, 11, 21) + 0.5);
    QTEST(static_cast<int>(track.points.size()), "points");
    QVERIFY(track.altitude > 300);
}

void GroundTrackTest::isAPointAMinute() {
    const DateTime start = DateOf(2026, 11, 21) + 0.25;
    const GroundTrack track = TrackOf("25544", start);
    for (std::size_t minute = 0; minute < track.points.size(); ++minute) {
        const auto is = m_sats.PositionAt(QStringLiteral("25544"), start + double(minute) / minutesPerDay);
        QVERIFY(std::abs(track.points[minute].longitude - is->dblLong) < 1e-6);
        QVERIFY(std::abs(track.points[minute].latitude - is->dblLat) < 1e-6);
    }
    QCOMPARE(track.altitude, m_sats.PositionAt(QStringLiteral("25544"), start)->dblAltitude);
}

void GroundTrackTest::endsWhereDragEndsTheOrbit() {
    const DateTime epoch = DateOf(2026, 11, 21);
    const std::size_t whole = TrackOf("40002", epoch).points.size();
    QCOMPARE(whole, std::size_t{90});
    const std::size_t cut = TrackOf("40002", epoch + 0.03).points.size();
    QVERIFY2(cut > 0 && cut < whole, qPrintable(QString::number(cut)));
    QCOMPARE(TrackOf("40002", epoch + 1).points.size(), std::size_t{0});
}

void GroundTrackTest::ofAnUnknownObjectIsEmpty() {
    QCOMPARE(TrackOf("12345", DateOf(2026, 11, 21)).points.size(), std::size_t{0});
}

QTEST_GUILESS_MAIN(GroundTrackTest)
#include "GroundTrackTest.moc"
