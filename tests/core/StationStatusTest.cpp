#include "core/StationStatus.h"

#include "core/StationRig.h"

#include <QTest>

using namespace Qt::StringLiterals;

class StationStatusTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theLinkIsConnectedOrWaits();
    void framesOfTheSatelliteAreCountedByDay();
    void ownFramesAndNoFramesAreNotHeard();
    void theElementsAgeIsNamed_data();
    void theElementsAgeIsNamed();
    void theNextRiseCountsDown();
    void withoutAPositionNothingRises();
    void aHighPassIsToldOfInTimeAndOnce();
    void aClockThatIsSetTellsNoPassTwice();
    void aLowPassIsNotToldOf();
    void zeroMinutesTellNothing();
    void eachSatelliteHasItsOwnNotice();
    void theLastEventIsNamedUntilItWasSeen();
};

namespace {

// Elements of the station rig's satellite, epoch 2026-11-20 12:00 UTC.
void WriteElements(const StationRig& rig) {
    rig.folder.Write(u"Keps/qiran.txt"_s,
                     "QIRAN\r\n"
                     "1 90417U 26001A   26324.50000000  .00000100  00000-0  18000-4 0  9996\r\n"
                     "2 90417  97.6000 100.0000 0010000  60.0000 300.0000 14.30000000000015\r\n");
}

HeardFrame Heard(const StationRig& rig, QByteArrayView source) {
    return {.utc = rig.clock.Milliseconds(), .source = source};
}

} // namespace

void StationStatusTest::theLinkIsConnectedOrWaits() {
    StationRig rig;
    StationStatus status(*rig.station);
    QCOMPARE(rig.station->Start(), GroundStation::Outcome::Started);
    QCOMPARE(status.Now().link, u"Connecting to 127.0.0.1"_s);
    QTRY_COMPARE(status.Now().link, u"Connected to 127.0.0.1"_s);
    rig.engine.DropConnections();
    rig.station->link.Agw().SetRetryInterval(12000);
    QTRY_COMPARE(status.Now().link, u"Retrying in 20 s"_s); // in steps of ten seconds
}

void StationStatusTest::framesOfTheSatelliteAreCountedByDay() {
    StationRig rig;
    rig.clock.Set(DateOf(2026, 11, 21) + 23.0 / 24.0 + 59.0 / 1440.0);
    StationStatus status(*rig.station);
    QCOMPARE(rig.station->Start(), GroundStation::Outcome::Started);
    QCOMPARE(status.Now().lastFrame, u"No frame heard"_s);
    for (const char* source : {"XQ9ZZ-1", "N0CALL", "QIRAN"})
        rig.station->heard.Hand(Heard(rig, source));
    QCOMPARE(status.Now().today, u"2 today"_s);
    QCOMPARE(status.Now().lastFrame, u"QIRAN at 23:59:00"_s);
    rig.clock.Advance(61.0);
    rig.station->heard.Hand(Heard(rig, "QIRAN"));
    QCOMPARE(status.Now().today, u"1 today"_s);
    rig.clock.Advance(86400.0);
    QCOMPARE(status.Now().today, u"0 today"_s);
}

void StationStatusTest::ownFramesAndNoFramesAreNotHeard() {
    StationRig rig;
    StationStatus status(*rig.station);
    QCOMPARE(rig.station->Start(), GroundStation::Outcome::Started);
    HeardFrame frame = Heard(rig, "QIRAN");
    frame.kind = HeardFrame::Kind::T;
    rig.station->heard.Hand(frame);
    rig.station->heard.Hand({.utc = frame.utc, .engineText = "not a frame", .raw = "?"});
    QCOMPARE(status.Now().lastFrame, u"No frame heard"_s);
    QCOMPARE(status.Now().today, u"0 today"_s);
}

void StationStatusTest::theElementsAgeIsNamed_data() {
    QTest::addColumn<double>("days");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isOld");
    QTest::newRow("fresh") << 0.5 << u"Elements 0 d"_s << false;
    QTest::newRow("two weeks") << 13.9 << u"Elements 13 d"_s << false;
    QTest::newRow("more than two weeks") << 14.1 << u"Elements 14 d"_s << true;
    QTest::newRow("from tomorrow") << -1.0 << u"Elements 0 d"_s << false;
}

void StationStatusTest::theElementsAgeIsNamed() {
    QFETCH(const double, days);
    StationRig rig;
    rig.clock.Set(DateOf(2026, 11, 20) + 0.5 + days);
    StationStatus status(*rig.station);
    WriteElements(rig);
    QCOMPARE(rig.station->Start(), GroundStation::Outcome::Started);
    QTEST(status.Now().elements, "text");
    QTEST(status.Now().areElementsOld, "isOld");
}

void StationStatusTest::theNextRiseCountsDown() {
    StationRig rig;
    rig.Set("SETUP", "LATITUDE", u"5130.00N"_s);
    rig.Set("SETUP", "LONGITUDE", u"00007.50W"_s);
    WriteElements(rig);
    StationStatus status(*rig.station);
    QCOMPARE(rig.station->Start(), GroundStation::Outcome::Started);
    QVERIFY(status.Now().nextRise.startsWith(u"QIRAN rises in "));
    QVERIFY(status.NextRise());
    const DateTime rise = status.NextRise()->utc;
    QVERIFY(rise > FromCalendar(rig.clock.Utc()));
    const auto before = [&](double seconds) {
        rig.clock.Set(rise - seconds / secondsPerDay);
        return status.Now().nextRise;
    };
    QCOMPARE(before(3601.0), u"QIRAN rises in 1 h 1 min"_s);
    QCOMPARE(before(3539.0), u"QIRAN rises in 59 min"_s);
    QCOMPARE(before(121.0), u"QIRAN rises in 3 min"_s);
    QCOMPARE(before(119.0), u"QIRAN rises in 119 s"_s);
    QCOMPARE(before(1.0), u"QIRAN rises in 1 s"_s);
    before(-1.0); // over: the one that follows
    QVERIFY(status.NextRise()->utc > rise + 0.01);
}

void StationStatusTest::withoutAPositionNothingRises() {
    StationRig rig;
    WriteElements(rig);
    StationStatus status(*rig.station);
    QCOMPARE(rig.station->Start(), GroundStation::Outcome::Started);
    QCOMPARE(status.Now().nextRise, QString());
    QVERIFY(!status.NextRise());
}

void StationStatusTest::theLastEventIsNamedUntilItWasSeen() {
    StationRig rig;
    rig.folder.Write(u"channels.txt"_s, "A,TEMP,X+,,,5,,,1\n");
    StationStatus status(*rig.station);
    QCOMPARE(rig.station->Start(), GroundStation::Outcome::Started);
    HeardFrame frame = Heard(rig, "XQ9ZZ-1");
    frame.information = "T#1,10,20,30,40,0,0,00101111,0";
    rig.station->heard.Hand(frame);
    QCOMPARE(status.Now().event, QString());
    frame.information = "T#2,1,20,30,40,0,0,00101111,0";
    rig.station->heard.Hand(frame);
    QCOMPARE(status.Now().event, u"A TEMP X+: low warning"_s);
    QCOMPARE(status.Event()->utc, frame.utc);
    status.EventSeen();
    QCOMPARE(status.Now().event, QString());
    QVERIFY(!status.Event());
}

namespace {

/// A station with elements whose next rise is known.
struct RiseRig : StationRig {
    RiseRig() {
        WriteElements(*this);
        Set("SETUP", "LATITUDE", u"5130.00N"_s);
        Set("SETUP", "LONGITUDE", u"00007.50W"_s);
    }
    // The rise, degrees of its culmination.
    std::pair<DateTime, double> Begin() {
        if (station->Start() != GroundStation::Outcome::Started)
            qFatal("no start");
        status.Now();
        return {status.NextRise()->utc, status.NextRise()->maxElevation};
    }
    bool IsNearAt(DateTime utc) {
        clock.Set(utc);
        return status.Now().isRiseNear;
    }
    QString ToldAt(DateTime utc) {
        clock.Set(utc);
        status.Now();
        return status.TakeRiseNotice();
    }
    StationStatus status{*station};
};

constexpr double minute = 1 / minutesPerDay;

} // namespace

void StationStatusTest::aHighPassIsToldOfInTimeAndOnce() {
    RiseRig rig;
    rig.Set("NOTICE", "MIN_ELEVATION", u"0"_s);
    const auto [rise, elevation] = rig.Begin();
    QCOMPARE(rig.ToldAt(rise - 5.1 * minute), QString());
    QVERIFY(!rig.IsNearAt(rise - 5.1 * minute));
    QVERIFY(rig.IsNearAt(rise - 4.9 * minute));
    QCOMPARE(rig.ToldAt(rise - 4.9 * minute), u"QIRAN rises in 5 min, up to %1°"_s.arg(elevation, 0, 'f', 0));
    QVERIFY(rig.IsNearAt(rise - 1 * minute)); // goes on standing out
    QCOMPARE(rig.ToldAt(rise - 1 * minute), QString());
    QVERIFY(!rig.IsNearAt(rise + 0.1 * minute));
    const DateTime next = rig.status.NextRise()->utc;
    QVERIFY(next > rise + 60 * minute);
    QVERIFY(!rig.ToldAt(next - 2 * minute).isEmpty());
}

void StationStatusTest::aClockThatIsSetTellsNoPassTwice() {
    RiseRig rig;
    rig.Set("NOTICE", "MIN_ELEVATION", u"0"_s);
    const DateTime rise = rig.Begin().first;
    QVERIFY(!rig.ToldAt(rise - 2 * minute).isEmpty()); // came late
    QVERIFY(rig.ToldAt(rise - 60 * minute).isEmpty()); // set back
    QVERIFY(rig.ToldAt(rise - 3 * minute).isEmpty());
    QVERIFY(rig.ToldAt(rise + 1 * minute).isEmpty());
    QVERIFY(rig.ToldAt(rise - 3 * minute).isEmpty()); // back from behind it
    // Set back by a day: the passes of that day come again, those not told of yet.
    rig.clock.Set(rise - 1);
    rig.status.Now();
    const DateTime before = rig.status.NextRise()->utc;
    QVERIFY(before < rise - 0.5);
    QVERIFY(!rig.ToldAt(before - 2 * minute).isEmpty());
    // Newer elements move the rise by seconds.
    QVERIFY(rig.ToldAt(rise - 3 * minute).isEmpty());
    rig.folder.Write(u"Keps/newer.txt"_s,
                     "QIRAN\r\n"
                     "1 90417U 26001A   26324.50001000  .00000100  00000-0  18000-4 0  9997\r\n"
                     "2 90417  97.6000 100.0000 0010000  60.0000 300.0000 14.30000000000015\r\n");
    rig.station->LoadElements();
    QVERIFY(rig.ToldAt(rise - 3 * minute).isEmpty());
    QVERIFY(rig.status.NextRise()->utc != rise);
}

void StationStatusTest::aLowPassIsNotToldOf() {
    RiseRig rig;
    const auto [rise, elevation] = [&] {
        RiseRig other;
        return other.Begin();
    }();
    rig.Set("NOTICE", "MIN_ELEVATION", QString::number(std::ceil(elevation)));
    rig.Begin();
    QVERIFY(!rig.IsNearAt(rise - 1 * minute));
    QVERIFY(rig.ToldAt(rise - 1 * minute).isEmpty());
}

void StationStatusTest::zeroMinutesTellNothing() {
    RiseRig rig;
    rig.Set("NOTICE", "MIN_ELEVATION", u"0"_s);
    rig.Set("NOTICE", "MINUTES", u"0"_s);
    const DateTime rise = rig.Begin().first;
    for (const double minutes : {5.0, 0.5, 0.01})
        QVERIFY(rig.ToldAt(rise - minutes * minute).isEmpty());
}

void StationStatusTest::eachSatelliteHasItsOwnNotice() {
    RiseNotice notice;
    QVERIFY(notice.TellOnce(u"90417"_s, 46000));
    QVERIFY(notice.TellOnce(u"25544"_s, 46000));
    QVERIFY(!notice.TellOnce(u"90417"_s, 46000.002));
    QVERIFY(notice.TellOnce(u"90417"_s, 46000.06));
    for (int k = 1; k < 1000; ++k) // a year's passes take no room without bound
        QVERIFY(notice.TellOnce(u"90417"_s, 47000 + k));
    QVERIFY(!notice.TellOnce(u"90417"_s, 47999));
}

QTEST_GUILESS_MAIN(StationStatusTest)
#include "StationStatusTest.moc"
