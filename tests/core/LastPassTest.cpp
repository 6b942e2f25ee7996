#include "core/LastPass.h"

#include "core/StationRig.h"
#include "foundation/text/UtcTime.h"

#include <QTest>

using namespace Qt::StringLiterals;

class LastPassTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void itIsTheOneThatBeganLast();
    void elementsOfItsTimeTellIt();
    void whatCannotBeKnownIsTwelveHours();
};

namespace {

constexpr qint64 hour = 3'600'000;

const QByteArray lines = "ISS (ZARYA)\n"
                         "1 25544U 98067A   26325.50000000  .00016717  00000-0  10270-3 0  9000\n"
                         "2 25544  51.6400 208.9163 0006317  69.9862  25.2906 15.49560532 14777\n";
const DateTime epoch = DateOf(2026, 11, 21) + 0.5;

struct Rig : StationRig {
    explicit Rig(DateTime now, bool hasPosition = true) {
        if (hasPosition) {
            Set("SETUP", "LATITUDE", u"5130.00N"_s);
            Set("SETUP", "LONGITUDE", u"00007.50W"_s);
        }
        Set("SETUP", "QIRAN_OBJ_NUM", u"25544"_s);
        folder.Write(u"Keps/keps.txt"_s, lines);
        clock.SetMilliseconds(UtcTime::FromDateTime(now));
    }
    qint64 Age() {
        if (station->Start() != GroundStation::Outcome::Started)
            qFatal("no start");
        return clock.Milliseconds() - LastPass(*station).Start();
    }
};

} // namespace

void LastPassTest::itIsTheOneThatBeganLast() {
    Rig rig(epoch + 1.0);
    const qint64 age = rig.Age();
    QVERIFY(age > 0 && age < 24 * hour && age != 12 * hour);
    LastPass last(*rig.station);
    const qint64 start = last.Start();
    rig.clock.SetMilliseconds(start + 1000);
    QVERIFY(std::abs(last.Start() - start) < 100); // under way
    rig.clock.SetMilliseconds(start - 1000);
    QVERIFY(last.Start() < start - hour);
}

void LastPassTest::elementsOfItsTimeTellIt() {
    Rig rig(epoch + 1.0);
    // Another orbit since a day later: the nearer elements have the say.
    rig.folder.Write(u"elements-history.txt"_s,
                     "utc,number,epoch,elements\n2026-11-22T12:00:00.000Z,25544,2026-11-22T12:00:00.000Z,\"" +
                         QByteArray(lines).replace("26325.5", "26326.5").replace("  9000", "  9001") +
                         "\"\n");
    const qint64 age = rig.Age();
    Rig other(epoch + 1.0);
    QVERIFY(age != other.Age());
}

void LastPassTest::whatCannotBeKnownIsTwelveHours() {
    QCOMPARE(Rig(epoch + 1.0, false).Age(), 12 * hour);
    QCOMPARE(Rig(epoch + 17.0).Age(), 12 * hour); // no elements of that time
    QVERIFY(Rig(epoch + 13.0).Age() != 12 * hour);
}

QTEST_GUILESS_MAIN(LastPassTest)
#include "LastPassTest.moc"
