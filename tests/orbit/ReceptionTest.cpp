#include "orbit/skyview/Reception.h"

#include <QTest>

class ReceptionTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void framesAreCountedByDirection();
    void whatLiesBelowTheHorizonCountsAsOnIt();
    void theTableHasEveryCell();
    void aSumIsTakenInSteps();
    void framesWithoutElementsAreCountedApart();
    void noFramesAreAtOnceDone();
};

void ReceptionTest::framesAreCountedByDirection() {
    Reception reception;
    for (const SkyPoint& point : {SkyPoint{0, 0, 0}, SkyPoint{0, 14.9, 9.9}, SkyPoint{0, 15, 9.9},
                                  SkyPoint{0, 14.9, 10}, SkyPoint{0, 359.9, 89.9}, SkyPoint{0, 200, 90}})
        reception.Add(point);
    QCOMPARE(reception.In(0, 0), 2);
    QCOMPARE(reception.In(1, 0), 1);
    QCOMPARE(reception.In(0, 1), 1);
    QCOMPARE(reception.In(23, 8), 1);
    QCOMPARE(reception.In(13, 8), 1);
    QCOMPARE(reception.Most(), 2);
    QCOMPARE(reception.Frames(), 6);
}

void ReceptionTest::whatLiesBelowTheHorizonCountsAsOnIt() {
    Reception reception;
    reception.Add({0, 100, -3});
    reception.Add({0, 360, 5}); // rounding may come to it
    QCOMPARE(reception.In(6, 0), 1);
    QCOMPARE(reception.In(23, 0), 1);
}

void ReceptionTest::theTableHasEveryCell() {
    Reception reception;
    reception.Add({0, 20, 35});
    const QList<QByteArray> lines = reception.Csv().split('\n');
    QCOMPARE(lines.size(), 1 + 24 * 9 + 1);
    QCOMPARE(lines.first(), QByteArray("azimuth_from,azimuth_to,elevation_from,elevation_to,frames\r"));
    QCOMPARE(lines[1], QByteArray("0,15,0,10,0\r"));
    QCOMPARE(lines[1 + 3 * 24 + 1], QByteArray("15,30,30,40,1\r"));
    QCOMPARE(lines[24 * 9], QByteArray("345,360,80,90,0\r"));
}

void ReceptionTest::aSumIsTakenInSteps() {
    std::vector<DateTime> asked;
    ReceptionSum sum({1, 2, 3, 4, 5}, [&](DateTime utc) {
        asked.push_back(utc);
        return std::optional(SkyPoint{utc, 10 * utc, 45});
    });
    QVERIFY(!sum.IsDone());
    QVERIFY(sum.Step(2));
    QCOMPARE(sum.Sum().Frames(), 2);
    QVERIFY(sum.Step(2));
    QVERIFY(!sum.Step(2));
    QVERIFY(sum.IsDone());
    QCOMPARE(asked, std::vector<DateTime>({1, 2, 3, 4, 5}));
    QCOMPARE(sum.Sum().Frames(), 5);
}

void ReceptionTest::framesWithoutElementsAreCountedApart() {
    ReceptionSum sum({1, 2, 3}, [](DateTime utc) {
        return utc == 2 ? std::nullopt : std::optional(SkyPoint{utc, 0, 0});
    });
    QVERIFY(!sum.Step(10));
    QCOMPARE(sum.Sum().Frames(), 2);
    QCOMPARE(sum.Sum().Unknown(), 1);
}

void ReceptionTest::noFramesAreAtOnceDone() {
    ReceptionSum sum({}, [](DateTime) { return std::optional<SkyPoint>(); });
    QVERIFY(sum.IsDone());
    QVERIFY(!sum.Step(1));
    QCOMPARE(sum.Sum().Most(), 0);
}

QTEST_GUILESS_MAIN(ReceptionTest)
#include "ReceptionTest.moc"
