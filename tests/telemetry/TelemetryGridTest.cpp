#include "telemetry/grids/TelemetryGrid.h"

#include "telemetry/grids/FixedNumber.h"
#include "telemetry/grids/TipCell.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

class TelemetryGridTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void layout();
    void cellsAreEmptyUntilSet();
    void fullValueIsKeptInTheGeneralFormat_data();
    void fullValueIsKeptInTheGeneralFormat();
    void valuesAreShownInTheGridsFormat();
    void fixedNumbers_data();
    void fixedNumbers();
    void nothingIsWrittenOutsideTheGrid();
    void modelAgreesWithItself();
    void viewsHearOfChangesOnceATurn();
    void tipIsTheLabelOfTheValue();
    void labelsNameTheMonthAsTheLocaleDoes();
    void tipIsEmptyOverHeaderAndNames();
    void tipStaysWhileTheMouseStays();
    void tipCellIsSharedByTheGrids();
    void aValueOutsideItsLimitsSaysSoBesideItsText();
    void aValueOlderThanADayIsStale();
    void withoutLimitsNothingIsSaid();
};

namespace {

constexpr qint64 heardAt = 1'000'000'000'000;

// A judge that knows POWER Batt A of side A, and has it at this level.
void SetUp(LimitJudge& judge, Level level, const QString& unit) {
    judge.SetLimits(
        {{{0, 0, 1},
          {.unit = unit, .lowAlarm = 6.0, .lowWarning = 6.5, .highWarning = {}, .highAlarm = {}}}});
    judge.TakeUp({{{0, 0, 1}, level}});
}

} // namespace

void TelemetryGridTest::layout() {
    const TelemetryGrids grids = MakeTelemetryGrids();
    const QStringList expected = {
        QStringLiteral("POWER|POWER A B|Batt A,Batt B,P Out,8V Reg"),
        QStringLiteral("CURRENT|CURRENT A B|X+,X-,Y+,Y-,Z+,Z-,Batt"),
        QStringLiteral("TEMP|TEMPS A B|X+,X-,Y+,Y-,Z+,Z-,Stack,Batt,Xmtr"),
    };
    for (int i = 0; i < 3; ++i) {
        const TelemetryGrid& grid = *grids[static_cast<std::size_t>(i)];
        QStringList rows;
        for (int row = 1; row <= grid.Rows(); ++row)
            rows.append(grid.TextMatrix(row, 0));
        QCOMPARE(QStringLiteral("%1|%2 %3 %4|%5")
                     .arg(QString::fromLatin1(grid.Tag()), grid.TextMatrix(0, 0), grid.TextMatrix(0, 1),
                          grid.TextMatrix(0, 2), rows.join(u',')),
                 expected[i]);
        QCOMPARE(grid.columnCount(), 5);
        QCOMPARE(grid.Index(), i);
    }
}

void TelemetryGridTest::cellsAreEmptyUntilSet() {
    const TelemetryGrid grid(0);
    for (int row = 1; row <= grid.Rows(); ++row)
        for (int column = 1; column < TelemetryGrid::Columns; ++column) {
            QCOMPARE(grid.TextMatrix(row, column), QString());
            QCOMPARE(grid.DisplayText(row, column), QString());
        }
}

void TelemetryGridTest::fullValueIsKeptInTheGeneralFormat_data() {
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("fraction") << 1.0 / 3.0 << QStringLiteral("0.333333333333333");
    QTest::newRow("whole") << 20.0 << QStringLiteral("20");
    QTest::newRow("small") << 1.5e-7 << QStringLiteral("1.5E-07");
    QTest::newRow("large") << -1e20 << QStringLiteral("-1E+20");
}

void TelemetryGridTest::fullValueIsKeptInTheGeneralFormat() {
    QFETCH(const double, value);
    TelemetryGrid grid(1);
    QVERIFY(grid.SetValue(1, 1, value, {"T", 0.0}));
    QTEST(grid.TextMatrix(1, TelemetryGrid::ValueB), "text");
    QTEST(grid.index(0, TelemetryGrid::ValueB).data(TelemetryGrid::FullText).toString(), "text");
}

void TelemetryGridTest::valuesAreShownInTheGridsFormat() {
    const QStringList expected = {QStringLiteral("2.68"), QStringLiteral("3"), QStringLiteral("2.7")};
    for (int i = 0; i < 3; ++i) {
        TelemetryGrid grid(i);
        QVERIFY(grid.SetValue(2, 0, 2.675, {"T", 0.0})); // in binary a little less than that
        QCOMPARE(grid.DisplayText(2, TelemetryGrid::ValueA), expected[i]);
        QCOMPARE(grid.index(1, TelemetryGrid::ValueA).data().toString(), expected[i]);
        QCOMPARE(grid.TextMatrix(2, TelemetryGrid::ValueA), QStringLiteral("2.675"));
    }
}

void TelemetryGridTest::fixedNumbers_data() {
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("decimals");
    QTest::addColumn<QString>("text");
    const auto row = [](double value, int decimals, const char* text) {
        QTest::newRow(text) << value << decimals << QString::fromLatin1(text);
    };
    row(0.0, 2, "0.00");
    row(-0.0, 1, "0.0");
    row(0.125, 2, "0.13");
    row(-0.125, 2, "-0.13");
    row(0.5, 0, "1");
    row(-0.5, 0, "-1");
    row(1.5, 0, "2");
    row(2.5, 0, "3");
    row(0.49999, 0, "0");
    row(-0.004, 2, "0.00");
    row(0.05, 1, "0.1");
    row(1.005, 2, "1.01");
    row(9.995, 2, "10.00");
    row(99.96, 1, "100.0");
    row(-1234.5678, 2, "-1234.57");
    row(1e20, 0, "100000000000000000000");
    row(1e-300, 2, "0.00");
    row(123456789012345.0, 1, "123456789012345.0");
    row(std::numeric_limits<double>::infinity(), 1, "");
}

void TelemetryGridTest::fixedNumbers() {
    QFETCH(const double, value);
    QFETCH(const int, decimals);
    QTEST(FixedNumber(value, decimals), "text");
    QVERIFY(FixedNumber(std::numeric_limits<double>::max(), decimals).size() < 330);
}

void TelemetryGridTest::nothingIsWrittenOutsideTheGrid() {
    TelemetryGrid grid(0);
    QVERIFY(!grid.SetValue(0, 0, 1.0, {}));
    QVERIFY(!grid.SetValue(5, 0, 1.0, {}));
    QVERIFY(!grid.SetValue(1, 2, 1.0, {}));
    QVERIFY(!grid.SetValue(1, -1, 1.0, {}));
    QCOMPARE(grid.TextMatrix(5, 1), QString());
    QCOMPARE(grid.TextMatrix(-1, 0), QString());
    QCOMPARE(grid.TextMatrix(1, 5), QString());
}

void TelemetryGridTest::modelAgreesWithItself() {
    TelemetryGrid grid(2);
    const QAbstractItemModelTester tester(&grid, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QCOMPARE(grid.headerData(0, Qt::Horizontal).toString(), QStringLiteral("TEMPS"));
    grid.SetValue(3, 1, -12.34, {"T#9", DateOf(2002, 3, 5)});
    QCoreApplication::processEvents();
    QCOMPARE(grid.index(2, TelemetryGrid::LabelB).data().toString(),
             QStringLiteral("T#9  2002-Mar-05 00:00"));
    QCOMPARE(grid.index(2, TelemetryGrid::ValueB).data(Qt::AccessibleTextRole).toString(),
             QStringLiteral("Y+, B: -12.3"));
}

void TelemetryGridTest::viewsHearOfChangesOnceATurn() {
    TelemetryGrid grid(0);
    QSignalSpy changed(&grid, &QAbstractItemModel::dataChanged);
    for (int i = 0; i < 1000; ++i)
        grid.SetValue(2, i % 2, i, {"T", 0.0});
    grid.SetValue(4, 0, 1.0, {"T", 0.0});
    QCOMPARE(changed.size(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(changed.size(), 2); // rows 2 and 4
    QCOMPARE(changed[0][0].toModelIndex().row(), 1);
    QCOMPARE(changed[1][0].toModelIndex().row(), 3);
    QCoreApplication::processEvents();
    QCOMPARE(changed.size(), 2);
}

void TelemetryGridTest::tipIsTheLabelOfTheValue() {
    TelemetryGrid grid(1);
    grid.SetValue(1, 0, 1.0, {"T#1", DateOf(2002, 3, 5)});
    grid.SetValue(1, 1, 1.0, {"T#2", DateOf(2002, 3, 5)});
    TipCell cell;
    QCOMPARE(cell.MouseMove(grid, 1, 1), QStringLiteral("T#1  2002-Mar-05 00:00"));
    QCOMPARE(cell.MouseMove(grid, 1, 2), QStringLiteral("T#2  2002-Mar-05 00:00"));
    QCOMPARE(cell.MouseMove(grid, 2, 2), QString()); // never set
}

void TelemetryGridTest::labelsNameTheMonthAsTheLocaleDoes() {
    const QLocale before;
    for (const char* name : {"fi", "ja", "en_GB"}) {
        const QLocale locale(QString::fromLatin1(name));
        QLocale::setDefault(locale);
        TelemetryGrid grid(1);
        grid.SetValue(1, 0, 1.0, {"T#1", DateOf(2002, 9, 5)});
        QCOMPARE(grid.index(0, TelemetryGrid::LabelA).data().toString(),
                 QStringLiteral("T#1  2002-%1-05 00:00").arg(locale.monthName(9, QLocale::ShortFormat)));
    }
    QLocale::setDefault(before);
}

void TelemetryGridTest::tipIsEmptyOverHeaderAndNames() {
    TelemetryGrid grid(1);
    for (const int side : {0, 1})
        grid.SetValue(1, side, 1.0, {"T#1", 0.0});
    TipCell cell;
    QVERIFY(cell.MouseMove(grid, 1, 1).has_value());
    QCOMPARE(cell.MouseMove(grid, 0, 1), QString());
    QCOMPARE(cell.MouseMove(grid, 1, 0), QString());
    QCOMPARE(cell.MouseMove(grid, -1, -1), QString());
}

void TelemetryGridTest::tipStaysWhileTheMouseStays() {
    TelemetryGrid grid(1);
    TipCell cell;
    QVERIFY(!cell.MouseMove(grid, 0, 0).has_value()); // where it is remembered to have been at first
    QVERIFY(cell.MouseMove(grid, 1, 1).has_value());
    grid.SetValue(1, 0, 1.0, {"T#1", 0.0});
    QVERIFY(!cell.MouseMove(grid, 1, 1).has_value());
}

void TelemetryGridTest::tipCellIsSharedByTheGrids() {
    const TelemetryGrid one(0);
    TelemetryGrid other(1);
    other.SetValue(1, 0, 1.0, {"T#1", 0.0});
    TipCell cell;
    QVERIFY(cell.MouseMove(one, 1, 1).has_value());
    QVERIFY(!cell.MouseMove(other, 1, 1).has_value());
    QVERIFY(cell.MouseMove(other, 1, 2).has_value());
}

void TelemetryGridTest::aValueOutsideItsLimitsSaysSoBesideItsText() {
    TelemetryGrid grid(0);
    LimitJudge judge([](const LimitEvent&) {});
    grid.ShowLimits(judge, [] { return heardAt; });
    SetUp(judge, Level::LowAlarm, QStringLiteral("V"));
    const QModelIndex cell = grid.index(0, TelemetryGrid::ValueA);
    const QModelIndex other = grid.index(0, TelemetryGrid::ValueB);
    QCOMPARE(cell.data(TelemetryGrid::LevelRole).toInt(), 0); // no value stands there
    QCOMPARE(cell.data(TelemetryGrid::LimitText).toString(), QString());
    for (const int side : {0, 1})
        grid.SetValue(1, side, 5.5, {"T#1", DateOf(2002, 3, 5), heardAt});
    QCOMPARE(cell.data(TelemetryGrid::LevelRole).toInt(), -2);
    QCOMPARE(cell.data(TelemetryGrid::LimitText).toString(), QStringLiteral("5.50 V, low alarm"));
    QCOMPARE(cell.data(Qt::AccessibleTextRole).toString(), QStringLiteral("Batt A, A: 5.50, low alarm"));
    QCOMPARE(cell.data().toString(), QStringLiteral("5.50"));
    QCOMPARE(cell.data(TelemetryGrid::FullText).toString(), QStringLiteral("5.5"));
    QCOMPARE(grid.TextMatrix(1, TelemetryGrid::LabelA), QStringLiteral("T#1  2002-Mar-05 00:00"));
    QCOMPARE(other.data(TelemetryGrid::LevelRole).toInt(), 0); // the other side has no limits
    QCOMPARE(other.data(TelemetryGrid::LimitText).toString(), QString());
    SetUp(judge, Level::Normal, QStringLiteral("V"));
    QCOMPARE(cell.data(TelemetryGrid::LevelRole).toInt(), 0);
    QCOMPARE(cell.data(TelemetryGrid::LimitText).toString(), QStringLiteral("5.50 V"));
    SetUp(judge, Level::LowWarning, QString());
    QCOMPARE(cell.data(TelemetryGrid::LimitText).toString(), QStringLiteral("low warning"));
}

void TelemetryGridTest::aValueOlderThanADayIsStale() {
    TelemetryGrid grid(0);
    LimitJudge judge([](const LimitEvent&) {});
    qint64 now = heardAt + staleAfter;
    grid.ShowLimits(judge, [&now] { return now; });
    SetUp(judge, Level::Normal, {});
    for (const int side : {0, 1})
        grid.SetValue(1, side, 7.5, {"T#1", 0.0, heardAt});
    const auto spoken = [&grid](int column) {
        return grid.index(0, column).data(Qt::AccessibleTextRole).toString();
    };
    QCOMPARE(spoken(TelemetryGrid::ValueA), QStringLiteral("Batt A, A: 7.50"));
    now += 1;
    QCOMPARE(spoken(TelemetryGrid::ValueA), QStringLiteral("Batt A, A: 7.50, older than 24 hours"));
    QCOMPARE(spoken(TelemetryGrid::ValueB), QStringLiteral("Batt A, B: 7.50, older than 24 hours"));
    QCOMPARE(spoken(TelemetryGrid::Name), QStringLiteral("Batt A"));
    SetUp(judge, Level::LowWarning, QStringLiteral("V"));
    QCOMPARE(grid.index(0, TelemetryGrid::ValueA).data(TelemetryGrid::LimitText).toString(),
             QStringLiteral("7.50 V, low warning, older than 24 hours"));
    grid.SetValue(1, 0, 7.5, {"T#2", 0.0, now});
    QCOMPARE(spoken(TelemetryGrid::ValueA), QStringLiteral("Batt A, A: 7.50, low warning"));
}

void TelemetryGridTest::withoutLimitsNothingIsSaid() {
    TelemetryGrid grid(0);
    LimitJudge judge([](const LimitEvent&) {});
    judge.TakeUp({{{0, 0, 1}, Level::LowAlarm}});
    grid.ShowLimits(judge, [] { return heardAt + 2 * staleAfter; });
    grid.SetValue(1, 0, 5.5, {"T#1", 0.0, heardAt});
    const QModelIndex cell = grid.index(0, TelemetryGrid::ValueA);
    QCOMPARE(cell.data(Qt::AccessibleTextRole).toString(), QStringLiteral("Batt A, A: 5.50"));
    QCOMPARE(cell.data(TelemetryGrid::LimitText).toString(), QString());
    QCOMPARE(cell.data(TelemetryGrid::LevelRole).toInt(), 0);
}

QTEST_GUILESS_MAIN(TelemetryGridTest)
#include "TelemetryGridTest.moc"
