#include "orbit/skyview/SkyPath.h"

#include "orbit/SkyRig.h"
#include "orbit/skyview/SkyGeometry.h"

#include <QTest>

#include <algorithm>

namespace {

const QString qiran = QStringLiteral("90417");

} // namespace

class SkyPathTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void plotHasNorthAboveAndEastOnEitherSide();
    void stepsFindThePassUnderWayAndItsNeighbours();
    void stepsOfOneThatAlwaysOrNeverIsUpFindNothing();
    void pathGoesFromRiseToSetOverTheCulmination();
    void ticksStandOnWholeMinutes();
    void longPassesHaveFewerTicks();
    void visibleIsWhatStandsOverTheHorizon();
    void aWallInTheMiddleSplitsThePass();
};

void SkyPathTest::plotHasNorthAboveAndEastOnEitherSide() {
    using SkyGeometry::East;
    const auto at = [](double azimuth, double elevation, East east) {
        const SkyGeometry::PlotPoint point = SkyGeometry::At(azimuth, elevation, east);
        return std::pair(std::round(point.x * 1e9) / 1e9 + 0.0, std::round(point.y * 1e9) / 1e9 + 0.0);
    };
    QCOMPARE(at(0, 0, East::Right), std::pair(0.0, -1.0));
    QCOMPARE(at(90, 0, East::Right), std::pair(1.0, 0.0));
    QCOMPARE(at(90, 0, East::Left), std::pair(-1.0, 0.0));
    QCOMPARE(at(180, 45, East::Left), std::pair(0.0, 0.5));
    QCOMPARE(at(123, 90, East::Right), std::pair(0.0, 0.0));
}

void SkyPathTest::stepsFindThePassUnderWayAndItsNeighbours() {
    const SkyRig rig;
    const PassSteps steps = rig.Steps();
    const SatPass next = steps.PresentOrNext(SkyRig::day).value();
    QVERIFY(next.riseUtc > SkyRig::day);
    const DateTime middle = 0.5 * (next.riseUtc + next.setUtc);
    QVERIFY(std::abs(steps.PresentOrNext(middle)->riseUtc - next.riseUtc) * secondsPerDay < 0.01);
    const SatPass later = steps.Later(next).value();
    QVERIFY(later.riseUtc > next.setUtc);
    QVERIFY(std::abs(steps.Earlier(later)->riseUtc - next.riseUtc) * secondsPerDay < 0.01);
    QVERIFY(std::abs(steps.PresentOrNext(next.setUtc + 1 / secondsPerDay)->riseUtc - later.riseUtc) *
                secondsPerDay <
            0.01);
    // A row of the pass window knows its start to the second.
    QVERIFY(std::abs(steps.RisingAt(std::floor(later.riseUtc * secondsPerDay) / secondsPerDay)->riseUtc -
                     later.riseUtc) *
                secondsPerDay <
            0.01);
    QVERIFY(!steps.RisingAt(later.riseUtc + 60 / secondsPerDay));
}

void SkyPathTest::stepsOfOneThatAlwaysOrNeverIsUpFindNothing() {
    SkyRig hovering(SkyRig::hovering);
    const double under = hovering.sats.PositionAt(qiran, SkyRig::day)->dblLong;
    hovering.MoveTo({10, under + 5});
    QVERIFY(hovering.sats.PositionAt(qiran, SkyRig::day)->blnvisible);
    QVERIFY(!hovering.Steps().PresentOrNext(SkyRig::day));
    hovering.MoveTo({10, under > 0 ? under - 180 : under + 180});
    QVERIFY(!hovering.Steps().PresentOrNext(SkyRig::day));
    const SkyPath path = SkyPath::OfDay(hovering.sats, qiran, SkyRig::day);
    QVERIFY(!path.rise && !path.set && path.ticks.empty());
    QCOMPARE(path.points.size(), 401U);
}

void SkyPathTest::pathGoesFromRiseToSetOverTheCulmination() {
    const SkyRig rig;
    const SatPass pass = rig.Find(SkyRig::day, [](const SatPass& p) { return p.maxElevation > 40; });
    const SkyPath path = SkyPath::OfPass(rig.sats, qiran, pass);
    QCOMPARE(path.points.size(), 401U);
    QCOMPARE(path.points.front().utc, pass.riseUtc);
    QVERIFY(std::abs(path.points.back().utc - pass.setUtc) * secondsPerDay < 0.001);
    QVERIFY(std::abs(path.points.front().elevation) < 0.001 &&
            std::abs(path.points.back().elevation) < 0.001);
    QVERIFY(std::abs(path.rise->azimuth - pass.riseAzimuth) < 0.001);
    QVERIFY(std::abs(path.set->azimuth - pass.setAzimuth) < 0.001);
    QVERIFY(std::abs(path.culmination->elevation - pass.maxElevation) < 0.001);
    const double highest = std::ranges::max(path.points, {}, &SkyPoint::elevation).elevation;
    QVERIFY(highest <= path.culmination->elevation + 1e-6 && highest > path.culmination->elevation - 0.2);
}

void SkyPathTest::ticksStandOnWholeMinutes() {
    const SkyRig rig;
    const SatPass pass = rig.Find(SkyRig::day, [](const SatPass& p) { return p.maxElevation > 40; });
    const SkyPath path = SkyPath::OfPass(rig.sats, qiran, pass);
    QCOMPARE(double(path.ticks.size()),
             std::floor(pass.setUtc * minutesPerDay) - std::ceil(pass.riseUtc * minutesPerDay) + 1);
    for (const SkyPoint& tick : path.ticks) {
        QVERIFY(std::abs(std::remainder(tick.utc * minutesPerDay, 1.0)) < 1e-5);
        QVERIFY(tick.utc >= pass.riseUtc && tick.utc <= pass.setUtc);
    }
}

void SkyPathTest::longPassesHaveFewerTicks() {
    const SkyRig rig(" 63.4000  30.0000 7000000 270.0000   0.0000  2.00600000");
    const SatPass pass = rig.Find(SkyRig::day, [](const SatPass& p) { return p.durationSeconds > 4 * 3600; });
    const SkyPath path = SkyPath::OfPass(rig.sats, qiran, pass);
    QVERIFY(path.ticks.size() > 4 && path.ticks.size() <= 25);
    const double step = std::round((path.ticks[1].utc - path.ticks[0].utc) * minutesPerDay);
    QVERIFY(step >= 15);
    for (const SkyPoint& tick : path.ticks)
        QVERIFY(std::abs(std::remainder(tick.utc * minutesPerDay, step)) < 1e-4);
}

void SkyPathTest::visibleIsWhatStandsOverTheHorizon() {
    const SkyRig rig;
    const SatPass pass = rig.Find(SkyRig::day, [](const SatPass& p) { return p.maxElevation > 40; });
    const SkyPath path = SkyPath::OfPass(rig.sats, qiran, pass);
    const auto flat = path.VisibleOver({}, rig.sats, qiran);
    QCOMPARE(flat.size(), 1U);
    QCOMPARE(flat[0].from, pass.riseUtc);
    QVERIFY(std::abs(flat[0].to - pass.setUtc) * secondsPerDay < 0.001);
    const auto hills = path.VisibleOver(orbitmath::Horizon({{0, 10}}), rig.sats, qiran);
    QCOMPARE(hills.size(), 1U);
    for (const DateTime end : {hills[0].from, hills[0].to})
        QVERIFY(std::abs(rig.sats.PositionAt(qiran, end)->dblEl - 10) < 0.02);
    QVERIFY(path.VisibleOver(orbitmath::Horizon({{0, 89.9}}), rig.sats, qiran).empty());
}

void SkyPathTest::aWallInTheMiddleSplitsThePass() {
    const SkyRig rig;
    const SatPass pass =
        rig.Find(SkyRig::day, [](const SatPass& p) { return p.maxElevation > 10 && p.maxElevation < 30; });
    const SkyPath path = SkyPath::OfPass(rig.sats, qiran, pass);
    const double middle = path.culmination->azimuth;
    const orbitmath::Horizon tower({{middle - 5, 0}, {middle - 4, 60}, {middle + 4, 60}, {middle + 5, 0}});
    const auto spans = path.VisibleOver(tower, rig.sats, qiran);
    QCOMPARE(spans.size(), 2U);
    QVERIFY(spans[0].to < pass.culminationUtc && spans[1].from > pass.culminationUtc);
}

QTEST_MAIN(SkyPathTest)
#include "SkyPathTest.moc"
