#include "telemetry/plots/PlotPoints.h"

#include "HistoryRoom.h"
#include "telemetry/plots/HistoryCsv.h"
#include "telemetry/plots/HistoryRange.h"

#include <QTest>

#include <cmath>
#include <limits>

namespace {

constexpr qint64 minute = 60'000;

// A reading a minute.
HistoryColumns Readings(int count) {
    HistoryColumns readings;
    for (int i = 0; i < count; ++i) {
        readings.utc.push_back(i * minute);
        readings.raw.push_back(i % 7);
        readings.value.push_back(i % 7);
        readings.frame.push_back(static_cast<quint32>(i));
    }
    return readings;
}

int Breaks(const std::vector<PlotPoints::Point>& points) {
    return static_cast<int>(std::ranges::count_if(
        points, [](const PlotPoints::Point& point) { return std::isnan(point.value); }));
}

} // namespace

class PlotPointsTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void whatIsInViewIsGivenWithOneReadingOnEitherSide();
    void aSpikeOfOneReadingStaysVisible();
    void noMorePointsThanPixelsCanShow();
    void noLineAcrossMoreThanTenMinutes();
    void wideViewsKeepTheLinesWithinAColumn();
    void aReadingAloneIsSeen();
    void valuesThatNoFormulaConvertsAreLeftOut();
    void theNearestReadingIsFound();
    void readingsAreListedInTheOrderOfTheirTimes();
    void theReadingsAroundATimeAreFoundInAllChannels();
    void aCancelledExportIsEmpty();
    void rangesAreKeptAsText();
    void rangesStandForTimes();
    void theExportHasRawAndConvertedSideBySide();
};

void PlotPointsTest::whatIsInViewIsGivenWithOneReadingOnEitherSide() {
    const auto points = PlotPoints::Visible(Readings(100), 10 * minute, 20 * minute, 1000);
    QCOMPARE(points.size(), std::size_t{13});
    QCOMPARE(points.front().seconds, 540.0);
    QCOMPARE(points.back().seconds, 1260.0);
}

void PlotPointsTest::aSpikeOfOneReadingStaysVisible() {
    HistoryColumns readings = Readings(100'000);
    readings.value[54'321] = 1000.0;
    readings.value[76'543] = -1000.0;
    const auto points = PlotPoints::Visible(readings, 0, 100'000 * minute, 500);
    const auto [low, high] = std::ranges::minmax(points, {}, &PlotPoints::Point::value);
    QCOMPARE(high.value, 1000.0);
    QCOMPARE(high.seconds, 54'321 * 60.0);
    QCOMPARE(low.value, -1000.0);
}

void PlotPointsTest::noMorePointsThanPixelsCanShow() {
    QVERIFY(PlotPoints::Visible(Readings(100'000), 0, 100'000 * minute, 500).size() <= 4 * 502);
}

void PlotPointsTest::noLineAcrossMoreThanTenMinutes() {
    HistoryColumns readings = Readings(20);
    for (std::size_t i = 10; i < 20; ++i)
        readings.utc[i] += 9 * minute; // ten minutes from the tenth
    QCOMPARE(Breaks(PlotPoints::Visible(readings, 0, 60 * minute, 1000)), 0);
    for (std::size_t i = 10; i < 20; ++i)
        readings.utc[i] += 1;
    QCOMPARE(Breaks(PlotPoints::Visible(readings, 0, 60 * minute, 1000)), 1);
}

void PlotPointsTest::wideViewsKeepTheLinesWithinAColumn() {
    const auto points = PlotPoints::Visible(Readings(10'000), 0, 10'000 * minute, 100);
    QCOMPARE(Breaks(points), 0);
}

void PlotPointsTest::aReadingAloneIsSeen() {
    const auto points = PlotPoints::Visible(Readings(1), -minute, minute, 100);
    QCOMPARE(points.size(), std::size_t{2});
    QVERIFY(points[1].seconds > points[0].seconds);
    QVERIFY(points[1].seconds - points[0].seconds <= 1.2);
}

void PlotPointsTest::valuesThatNoFormulaConvertsAreLeftOut() {
    HistoryColumns readings = Readings(5);
    std::ranges::fill(readings.value, std::numeric_limits<double>::quiet_NaN());
    QVERIFY(PlotPoints::Visible(readings, 0, 10 * minute, 100).empty());
}

void PlotPointsTest::theNearestReadingIsFound() {
    const HistoryColumns readings = Readings(10);
    QCOMPARE(PlotPoints::Nearest(readings, -5), std::optional<std::size_t>(0));
    QCOMPARE(PlotPoints::Nearest(readings, 3 * minute + 1), std::optional<std::size_t>(3));
    QCOMPARE(PlotPoints::Nearest(readings, 4 * minute - 1), std::optional<std::size_t>(4));
    QCOMPARE(PlotPoints::Nearest(readings, 1000 * minute), std::optional<std::size_t>(9));
    QVERIFY(!PlotPoints::Nearest({}, 0));
}

void PlotPointsTest::readingsAreListedInTheOrderOfTheirTimes() {
    HistoryColumns late = Readings(3);
    for (qint64& utc : late.utc)
        utc += minute / 2;
    using Places = std::vector<PlotPoints::Place>;
    QCOMPARE(PlotPoints::InOrder({late, Readings(3)}, minute / 2, 2 * minute),
             (Places{{0, 0}, {1, 1}, {0, 1}, {1, 2}}));
    QCOMPARE(PlotPoints::InOrder({late, Readings(3)}, 0, 9 * minute, 3), (Places{{1, 0}, {0, 0}, {1, 1}}));
}

void PlotPointsTest::theReadingsAroundATimeAreFoundInAllChannels() {
    HistoryColumns late = Readings(3);
    for (qint64& utc : late.utc)
        utc += minute / 2;
    const std::vector readings{Readings(3), late};
    QCOMPARE(PlotPoints::LastUntil(readings, minute), std::optional(PlotPoints::Place{0, 1}));
    QCOMPARE(PlotPoints::LastUntil(readings, 2 * minute - 1), std::optional(PlotPoints::Place{1, 1}));
    QCOMPARE(PlotPoints::FirstAfter(readings, minute), std::optional(PlotPoints::Place{1, 1}));
    QVERIFY(!PlotPoints::LastUntil(readings, -1));
    QVERIFY(!PlotPoints::FirstAfter(readings, 9 * minute));
}

void PlotPointsTest::aCancelledExportIsEmpty() {
    QVERIFY(HistoryCsv({HistoryRoom::battA}, {Readings(9)}, {}, 0, 9 * minute, [](int) {
                return false;
            }).isEmpty());
}

void PlotPointsTest::rangesAreKeptAsText() {
    for (const HistoryRange& range :
         {HistoryRange{HistoryRange::Kind::LastPass}, HistoryRange{HistoryRange::Kind::All},
          HistoryRange{HistoryRange::Kind::Typed, 5 * minute, 7 * minute}})
        QCOMPARE(HistoryRange::Of(range.Text()), range);
    QCOMPARE(HistoryRange{HistoryRange::Kind::Week}.Text(), QStringLiteral("7 days"));
    for (const char16_t* wrong : {u"", u"yesterday", u"1970-01-01T00:07:00Z/1970-01-01T00:05:00Z"})
        QCOMPARE(HistoryRange::Of(QString::fromUtf16(wrong)), HistoryRange());
}

void PlotPointsTest::rangesStandForTimes() {
    const auto times = [](HistoryRange::Kind kind, quint32 frames = 2) {
        const HistoryState state{frames, 0, 3000 * minute, 2900 * minute, {}};
        return HistoryRange{kind}.Times(state, 2990 * minute);
    };
    using Times = std::pair<qint64, qint64>;
    QCOMPARE(times(HistoryRange::Kind::Day), Times(1560 * minute, 3000 * minute));
    QCOMPARE(times(HistoryRange::Kind::LastPass), Times(2898 * minute, 3002 * minute));
    QCOMPARE(times(HistoryRange::Kind::All), Times(-60 * minute, 3060 * minute));
    QCOMPARE(times(HistoryRange::Kind::All, 0), Times(1550 * minute, 2990 * minute));
}

void PlotPointsTest::theExportHasRawAndConvertedSideBySide() {
    HistoryColumns first = Readings(3);
    first.value[1] = 2.5;
    HistoryColumns second = Readings(2);
    second.value[0] = std::numeric_limits<double>::quiet_NaN();
    const LimitTable limits{{{0, 0, 1},
                             {.unit = QStringLiteral("V"),
                              .lowAlarm = {},
                              .lowWarning = {},
                              .highWarning = {},
                              .highAlarm = {}}}};
    QCOMPARE(HistoryCsv({HistoryRoom::battA, HistoryRoom::battAOfB}, {first, second}, limits, 0, minute),
             QByteArray("utc,side,grid,row,raw,value,unit\n"
                        "1970-01-01T00:00:00.000Z,A,POWER,Batt A,0,0,V\n"
                        "1970-01-01T00:00:00.000Z,B,POWER,Batt A,0,,\n"
                        "1970-01-01T00:01:00.000Z,A,POWER,Batt A,1,2.5,V\n"
                        "1970-01-01T00:01:00.000Z,B,POWER,Batt A,1,1,\n"));
}

QTEST_GUILESS_MAIN(PlotPointsTest)
#include "PlotPointsTest.moc"
