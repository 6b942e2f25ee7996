#include "core/HeardTimes.h"

#include "core/StationRig.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

class HeardTimesTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theFilesFramesAreFoundByTheirTimes();
    void liveFramesAreThereAtOnceAndOnce();
    void aRunOfYearsDoesNotGrow();
    void anEndWhileItReadsIsNoTrouble();
};

namespace {

constexpr qint64 base = 1795274923000;

QByteArray History(int frames) {
    QByteArray text = "utc,source,side,sequence,raw1,raw2,raw3,raw4,field5,field6,field7,field8\n";
    for (int k = 0; k < frames; ++k)
        text += QDateTime::fromMSecsSinceEpoch(base + k * 60000LL, Qt::UTC)
                    .toString(Qt::ISODateWithMs)
                    .toLatin1() +
                ",QIRAN,A,T#001,1,2,3,4,5,6,7,8\n";
    return text;
}

void Hear(const StationRig& rig) {
    const QByteArray line = "T#024,168,1,2,3,0,0,0,2";
    rig.station->heard.Hand({.utc = rig.clock.Milliseconds(), .source = "QIRAN", .information = line});
}

} // namespace

void HeardTimesTest::theFilesFramesAreFoundByTheirTimes() {
    StationRig rig;
    rig.folder.Write(u"tlm.txt"_s, History(10));
    HeardTimes times(*rig.station);
    QSignalSpy loaded(&times, &HeardTimes::Loaded);
    QVERIFY(times.Between(0, base * 2).empty());
    times.Load();
    QVERIFY(loaded.wait());
    QCOMPARE(times.Between(0, base * 2).size(), std::size_t{10});
    QCOMPARE(times.Between(base + 60000, base + 180000),
             std::vector<qint64>({base + 60000, base + 120000, base + 180000}));
    QVERIFY(times.Between(base + 1, base + 2).empty());
    rig.folder.Write(u"tlm.txt"_s, History(3)); // replaced by another one
    times.Load();
    QVERIFY(loaded.wait());
    QCOMPARE(times.Between(0, base * 2).size(), std::size_t{3});
}

void HeardTimesTest::liveFramesAreThereAtOnceAndOnce() {
    StationRig rig;
    rig.folder.Write(u"tlm.txt"_s, History(1));
    HeardTimes times(*rig.station);
    QSignalSpy loaded(&times, &HeardTimes::Loaded);
    QCOMPARE(rig.station->Start(), GroundStation::Outcome::Started);
    rig.clock.SetMilliseconds(base + 60000);
    Hear(rig);
    rig.clock.SetMilliseconds(base + 90000);
    Hear(rig);
    QCOMPARE(times.Between(0, base * 2), std::vector<qint64>({base + 60000, base + 90000}));
    times.Load();
    QVERIFY(loaded.wait());
    // In the file by now, or not yet.
    QCOMPARE(times.Between(0, base * 2), std::vector<qint64>({base, base + 60000, base + 90000}));
    QCOMPARE(times.Between(base + 80000, base * 2), std::vector<qint64>({base + 90000}));
}

void HeardTimesTest::aRunOfYearsDoesNotGrow() {
    StationRig rig;
    rig.folder.Write(u"tlm.txt"_s, History(1));
    HeardTimes times(*rig.station);
    const auto hear = [&](qint64 first, qint64 last) {
        for (qint64 k = first; k <= last; ++k)
            rig.station->decoder.Decoded().Hand({.utc = base + k});
    };
    rig.station->history.SetKept(false); // is not what is asked here
    constexpr auto most = static_cast<qint64>(HeardTimes::mostLive);
    hear(1, most);
    QCOMPARE(times.Between(0, base * 2).size(), HeardTimes::mostLive);
    hear(most + 1, most + 3); // the newest are those that count
    QCOMPARE(times.Between(0, base * 2).size(), HeardTimes::mostLive);
    QCOMPARE(times.Between(0, base * 2).front(), base + 4);
    QCOMPARE(times.Between(0, base * 2).back(), base + most + 3);
    // What is in the file is known from there, and has made room.
    rig.folder.Write(u"tlm.txt"_s, History(2));
    QSignalSpy loaded(&times, &HeardTimes::Loaded);
    times.Load();
    QVERIFY(loaded.wait());
    hear(60'001, 60'005);
    QCOMPARE(times.Between(base + 60'001, base * 2).size(), std::size_t{5});
    QCOMPARE(times.Between(0, base + 60'000), std::vector<qint64>({base, base + 60'000}));
}

void HeardTimesTest::anEndWhileItReadsIsNoTrouble() {
    StationRig rig;
    rig.folder.Write(u"tlm.txt"_s, History(20000));
    for (int k = 0; k < 5; ++k) {
        HeardTimes times(*rig.station);
        times.Load();
        times.Load(); // once is enough
    }
    QCoreApplication::processEvents();
}

QTEST_GUILESS_MAIN(HeardTimesTest)
#include "HeardTimesTest.moc"
