#include "telemetry/grids/TelemetryGridView.h"

#include "foundation/looks/Contrast.h"
#include "support/Screenshots.h"
#include "telemetry/TelemetryRoom.h"
#include "telemetry/grids/LimitDelegate.h"
#include "telemetry/grids/TipCell.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QHelpEvent>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>
#include <QWindow>

class TelemetryGridViewTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();
    void namesHeadersAndHiddenColumns();
    void wholeGridIsInViewAtItsOwnSize();
    void valuesOfAFrameAreShownRounded();
    void hoveringTellsWhichFrameBroughtTheValue();
    void hoveringOverHeaderAndNamesTellsNothing();
    void theRememberedCellIsSharedByTheGrids();
    void tipFromTheAirIsNeverMarkup();
    void valueIsCopiedInFull();
    void severalCellsAreCopiedAsATable();
    void nothingIsCopiedFromNothing();
    void headerRowAndNameColumnAreFixed();
    void cellsCannotBeEdited();
    void tabLeavesTheGrid();
    void valuesOutsideTheirLimitsAreMarkedByColourAndShape();
    void marksAreLegible_data();
    void marksAreLegible();
    void theTipHasALineForTheLimit();
    void doubleClickAndEnterAskForTheHistoryOfAValue();
    void namesHeaderAndOtherKeysAskForNoHistory();
    void theContextMenuAsksForTheHistory();

private:
    TelemetryGridView& View(int index) { return *m_views[static_cast<std::size_t>(index)]; }
    QPoint Middle(int grid, int row, int column) {
        return View(grid).visualRect(View(grid).model()->index(row - 1, column)).center();
    }
    // In the window, for it may be larger than the screen, which holds the mouse itself.
    void MoveMouse(const QWidget* over, const QPoint& place) {
        QTest::mouseMove(m_window->windowHandle(), over->mapTo(m_window.get(), place));
    }
    // From wherever the mouse was left: a mouse that stays tells nobody.
    void Hover(int grid, int row, int column) {
        MoveMouse(View(grid).viewport(), Middle(grid, row, column) + QPoint(1, 0));
        MoveMouse(View(grid).viewport(), Middle(grid, row, column));
        QCoreApplication::processEvents();
    }

    std::unique_ptr<TelemetryRoom> m_room;
    std::unique_ptr<TipCell> m_tipCell;
    std::unique_ptr<QWidget> m_window;
    std::array<TelemetryGridView*, 3> m_views{};
};

void TelemetryGridViewTest::init() {
    m_room = std::make_unique<TelemetryRoom>();
    m_tipCell = std::make_unique<TipCell>();
    m_window = std::make_unique<QWidget>();
    auto* row = new QHBoxLayout(m_window.get());
    for (std::size_t i = 0; i < m_views.size(); ++i) {
        m_views[i] = new TelemetryGridView(*m_room->grids[i], *m_tipCell);
        row->addWidget(m_views[i], 0, Qt::AlignTop);
    }
    m_window->show();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
}

void TelemetryGridViewTest::cleanup() {
    m_window.reset();
    m_tipCell.reset();
    m_room.reset();
}

void TelemetryGridViewTest::namesHeadersAndHiddenColumns() {
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(View(i).objectName(), QStringLiteral("gTlm%1").arg(i));
        QVERIFY(!View(i).accessibleName().isEmpty());
        for (int column = 0; column < TelemetryGrid::Columns; ++column)
            QCOMPARE(View(i).isColumnHidden(column), column >= TelemetryGrid::LabelA);
        QCOMPARE(View(i).horizontalHeader()->count(), 5);
    }
    QCOMPARE(View(2).model()->headerData(0, Qt::Horizontal).toString(), QStringLiteral("TEMPS"));
    QCOMPARE(View(2).model()->index(8, 0).data().toString(), QStringLiteral("Xmtr"));
}

void TelemetryGridViewTest::wholeGridIsInViewAtItsOwnSize() {
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(View(i).verticalScrollBar()->maximum(), 0);
        QCOMPARE(View(i).horizontalScrollBar()->maximum(), 0);
        const QRect last = View(i).visualRect(View(i).model()->index(View(i).model()->rowCount() - 1, 2));
        QVERIFY(View(i).viewport()->rect().contains(last));
    }
}

void TelemetryGridViewTest::valuesOfAFrameAreShownRounded() {
    m_room->Store({"A", "3", "POWER", "8V Reg", "0", "0", "0.1", "0.055"});
    m_room->Receive("XQ9ZZ", "T#001,10,20,30,40,0,0,00110000,0\r");
    m_room->Receive("QIRAN", "T#002,1.6,2,3,4,0,0,00000000,0\r");
    QCOMPARE(View(0).model()->index(3, 1).data().toString(), QStringLiteral("4.06"));
    QCOMPARE(View(0).model()->index(0, 1).data().toString(), QStringLiteral("4010.00"));
    QCOMPARE(View(1).model()->index(1, 2).data().toString(), QStringLiteral("11002"));
    QCOMPARE(View(1).model()->index(1, 2).data(TelemetryGrid::FullText).toString(),
             QStringLiteral("11001.6"));
    m_room->Receive("XQ9ZZ", "T#003,12.34,-5.55,30,40,0,0,00010000,0\r");
    m_room->Receive("XQ9ZZ", "T#004,-1012.25,20,30,40,0,0,00100000,0\r");
    QCOMPARE(View(2).model()->index(2, 1).data().toString(), QStringLiteral("2012.3"));
    Screenshots::Take(*m_window, QStringLiteral("gTlm"));
}

void TelemetryGridViewTest::hoveringTellsWhichFrameBroughtTheValue() {
    m_room->Receive("XQ9ZZ", "T#123,10,20,30,40,0,0,00000000,0\r");
    m_room->Receive("QIRAN", "T#124,10,20,30,40,0,0,00000000,0\r");
    Hover(1, 1, 1);
    QTRY_COMPARE(View(1).toolTip(), QStringLiteral("T#123  2002-Mar-05 14:07"));
    Hover(1, 1, 2);
    QTRY_COMPARE(View(1).toolTip(), QStringLiteral("T#124  2002-Mar-05 14:07"));
    Hover(1, 7, 2); // never set
    QTRY_COMPARE(View(1).toolTip(), QString());
    m_room->Receive("XQ9ZZ", "T#125,10,20,30,40,0,0,00000000,0\r");
    Hover(1, 1, 1);
    QTRY_COMPARE(View(1).toolTip(), QStringLiteral("T#125  2002-Mar-05 14:07"));
}

void TelemetryGridViewTest::hoveringOverHeaderAndNamesTellsNothing() {
    m_room->Receive("XQ9ZZ", "T#123,10,20,30,40,0,0,00000000,0\r");
    m_room->Receive("QIRAN", "T#124,10,20,30,40,0,0,00000000,0\r");
    Hover(1, 1, 1);
    QTRY_VERIFY(!View(1).toolTip().isEmpty());
    Hover(1, 1, 0);
    QTRY_COMPARE(View(1).toolTip(), QString());
    Hover(1, 1, 1);
    QTRY_VERIFY(!View(1).toolTip().isEmpty());
    const QWidget* header = View(1).horizontalHeader()->viewport();
    MoveMouse(header, header->rect().center());
    QTRY_COMPARE(View(1).toolTip(), QString());
}

void TelemetryGridViewTest::theRememberedCellIsSharedByTheGrids() {
    m_room->Receive("XQ9ZZ", "T#123,10,20,30,40,0,0,00000000,0\r");
    Hover(0, 1, 1); // a cell that was never set
    Hover(1, 1, 1);
    QCOMPARE(View(1).toolTip(), QString());
    Hover(1, 1, 2);
    Hover(1, 1, 1);
    QTRY_COMPARE(View(1).toolTip(), QStringLiteral("T#123  2002-Mar-05 14:07"));
}

void TelemetryGridViewTest::tipFromTheAirIsNeverMarkup() {
    m_room->Receive("XQ9ZZ",
                    "<b>T</b><img src='x'>" + QByteArray(5000, 'x') + ",10,20,30,40,0,0,00000000,0\r");
    Hover(1, 1, 1);
    QTRY_VERIFY(View(1).toolTip().startsWith(u"<b>T</b><img"));
    QHelpEvent event(QEvent::ToolTip, Middle(1, 1, 1), View(1).viewport()->mapToGlobal(Middle(1, 1, 1)));
    QCoreApplication::sendEvent(View(1).viewport(), &event);
    QTRY_VERIFY(QToolTip::isVisible());
    QVERIFY(!QToolTip::text().contains(u"<img"));
    QVERIFY(QToolTip::text().size() < 1000);
    QToolTip::hideText();
}

void TelemetryGridViewTest::valueIsCopiedInFull() {
    m_room->Receive("XQ9ZZ", "T#1,0.123456789,20,30,40,0,0,00000000,0\r");
    QTest::mouseClick(View(1).viewport(), Qt::LeftButton, Qt::NoModifier, Middle(1, 1, 1));
    View(1).findChild<QAction*>(QStringLiteral("mnuCopyFull1"))->trigger();
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("CURRENT\tA\nX+\t1000.123456789"));
    QTest::keySequence(&View(1), QKeySequence::Copy);
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("CURRENT\tA\nX+\t1000"));
}

void TelemetryGridViewTest::severalCellsAreCopiedAsATable() {
    m_room->Receive("XQ9ZZ", "T#1,1,2,3,4,0,0,00110000,0\r");
    m_room->Receive("QIRAN", "T#1,1,2,3,4,0,0,00110000,0\r");
    QTest::mouseClick(View(0).viewport(), Qt::LeftButton, Qt::NoModifier, Middle(0, 1, 1));
    QTest::mouseClick(View(0).viewport(), Qt::LeftButton, Qt::ShiftModifier, Middle(0, 2, 2));
    QTest::keySequence(&View(0), QKeySequence::Copy);
    QCOMPARE(QGuiApplication::clipboard()->text(),
             QStringLiteral("POWER\tA\tB\nBatt A\t4001.00\t14001.00\nBatt B\t4002.00\t14002.00"));
}

void TelemetryGridViewTest::nothingIsCopiedFromNothing() {
    QGuiApplication::clipboard()->setText(QStringLiteral("kept"));
    View(0).setFocus();
    View(0).clearSelection();
    QTest::keySequence(&View(0), QKeySequence::Copy);
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("kept"));
}

void TelemetryGridViewTest::headerRowAndNameColumnAreFixed() {
    View(0).selectAll();
    const QModelIndexList selected = View(0).selectionModel()->selectedIndexes();
    QVERIFY(!selected.isEmpty());
    for (const QModelIndex& cell : selected)
        QVERIFY(cell.column() != TelemetryGrid::Name);
    View(0).clearSelection();
    QTest::mouseClick(View(0).horizontalHeader()->viewport(), Qt::LeftButton, Qt::NoModifier,
                      View(0).horizontalHeader()->viewport()->rect().center());
    QVERIFY(!View(0).selectionModel()->hasSelection());
}

void TelemetryGridViewTest::cellsCannotBeEdited() {
    m_room->Receive("XQ9ZZ", "T#1,1,2,3,4,0,0,00110000,0\r");
    QTest::mouseDClick(View(0).viewport(), Qt::LeftButton, Qt::NoModifier, Middle(0, 1, 1));
    QTest::keyClicks(&View(0), QStringLiteral("5"));
    QVERIFY(View(0).viewport()->findChildren<QWidget*>().isEmpty());
    QCOMPARE(View(0).model()->index(0, 1).data().toString(), QStringLiteral("4001.00"));
}

void TelemetryGridViewTest::tabLeavesTheGrid() {
    View(0).setFocus();
    QTest::keyClick(&View(0), Qt::Key_Tab);
    QTRY_VERIFY(View(1).hasFocus());
}

namespace {

constexpr auto levels = {Level::LowAlarm, Level::LowWarning, Level::HighWarning, Level::HighAlarm};

// POWER of side A: every row at a level of its own, from low alarm to high alarm without the normal one.
void SetUpLimits(TelemetryRoom& room, LimitJudge& judge) {
    LimitTable limits;
    LimitStates states;
    int row = 0;
    for (const Level level : levels) {
        limits[{0, 0, ++row}].unit = QStringLiteral("<b>V</b>");
        states[{0, 0, row}] = level;
    }
    judge.SetLimits(limits);
    judge.TakeUp(states);
    for (const auto& grid : room.grids)
        grid->ShowLimits(judge, [&room] { return room.clock.Milliseconds(); });
    room.Receive("XQ9ZZ", "T#123,10,20,30,40,0,0,00110000,0\r");
    room.Receive("QIRAN", "T#124,10,20,30,40,0,0,00110000,0\r");
    QCoreApplication::processEvents();
}

} // namespace

void TelemetryGridViewTest::valuesOutsideTheirLimitsAreMarkedByColourAndShape() {
    LimitJudge judge([](const LimitEvent&) {});
    m_room->Receive("XQ9ZZ", "T#123,10,20,30,40,0,0,00110000,0\r");
    m_room->Receive("QIRAN", "T#124,10,20,30,40,0,0,00110000,0\r");
    View(0).clearFocus(); // it has a tint of its own
    const auto picture = [this](int row, int column) {
        return View(0)
            .viewport()
            ->grab(View(0).visualRect(View(0).model()->index(row - 1, column)))
            .toImage();
    };
    const QImage before = picture(1, TelemetryGrid::ValueB);
    SetUpLimits(*m_room, judge);
    QCOMPARE(picture(1, TelemetryGrid::ValueB), before);
    // The part of the mark's place that is not ground: how much of its upper and of its lower half.
    const auto mark = [](const QImage& image) {
        const QColor ground = image.pixelColor(image.width() / 3, 2);
        std::array<int, 2> halves{};
        for (int y = 2; y < image.height() - 2; ++y)
            for (int x = 1; x < image.width() / 6; ++x)
                if (image.pixelColor(x, y) != ground)
                    ++halves[y < image.height() / 2 ? 0 : 1];
        return halves;
    };
    int row = 0;
    for (const Level level : levels) {
        const QImage image = picture(++row, TelemetryGrid::ValueA);
        QCOMPARE(image.pixelColor(image.width() / 3, 2), LimitDelegate::ColoursOf(level).ground);
        const auto [upper, lower] = mark(image);
        QVERIFY2(upper + lower > 0, QByteArray::number(row).constData());
        if (std::abs(static_cast<int>(level)) == 1)
            QVERIFY(level > Level::Normal ? upper < lower : upper > lower);
    }
    const auto all = [&mark, &picture](int at) {
        const auto [upper, lower] = mark(picture(at, TelemetryGrid::ValueA));
        return upper + lower;
    };
    QVERIFY(all(1) > all(2)); // an alarm has two triangles
    QVERIFY(all(4) > all(3));
    View(0).selectAll(); // the mark stays on the colour of a selection
    QVERIFY(all(1) > 0);
    View(0).clearSelection();
    Screenshots::Take(*m_window, QStringLiteral("gTlm-limits"));
    View(0).selectAll();
    Screenshots::Take(*m_window, QStringLiteral("gTlm-limits-selected"));
    View(0).clearSelection();
    QTest::mouseClick(View(0).viewport(), Qt::LeftButton, Qt::NoModifier, Middle(0, 1, 1));
    QTest::mouseClick(View(0).viewport(), Qt::LeftButton, Qt::ShiftModifier, Middle(0, 4, 2));
    View(0).setFocus();
    QTest::keySequence(&View(0), QKeySequence::Copy);
    QCOMPARE(QGuiApplication::clipboard()->text(),
             QStringLiteral("POWER\tA\tB\nBatt A\t4010.00\t14010.00\nBatt B\t4020.00\t14020.00\n"
                            "P Out\t4030.00\t14030.00\n8V Reg\t4040.00\t14040.00"));
}

void TelemetryGridViewTest::marksAreLegible_data() {
    QTest::addColumn<int>("level");
    for (const Level level : levels)
        QTest::newRow(LevelName(level).constData()) << static_cast<int>(level);
}

void TelemetryGridViewTest::marksAreLegible() {
    QFETCH(const int, level);
    const LimitDelegate::Colours colours = LimitDelegate::ColoursOf(static_cast<Level>(level));
    QVERIFY(Contrast::Between(colours.text, colours.ground) >= Contrast::least);
}

void TelemetryGridViewTest::theTipHasALineForTheLimit() {
    LimitJudge judge([](const LimitEvent&) {});
    SetUpLimits(*m_room, judge);
    const auto tip = [this](int column) {
        Hover(0, 1, column);
        QHelpEvent event(QEvent::ToolTip, Middle(0, 1, column),
                         View(0).viewport()->mapToGlobal(Middle(0, 1, column)));
        QCoreApplication::sendEvent(View(0).viewport(), &event);
        const QString text = QToolTip::text();
        QToolTip::hideText();
        return text;
    };
    const QString marked = tip(TelemetryGrid::ValueA);
    QCOMPARE(View(0).toolTip(), QStringLiteral("T#123  2002-Mar-05 14:07"));
    QCOMPARE(marked, QStringLiteral("T#123  2002-Mar-05 14:07\n4010.00 <b>V</b>, low alarm"));
    QVERIFY(!Qt::mightBeRichText(marked));
    QCOMPARE(tip(TelemetryGrid::ValueB), QStringLiteral("T#124  2002-Mar-05 14:07"));
}

void TelemetryGridViewTest::doubleClickAndEnterAskForTheHistoryOfAValue() {
    QSignalSpy asked(&View(2), &TelemetryGridView::HistoryOfValue);
    QTest::mouseClick(View(2).viewport(), Qt::LeftButton, Qt::NoModifier, Middle(2, 7, 2));
    QTest::mouseDClick(View(2).viewport(), Qt::LeftButton, Qt::NoModifier, Middle(2, 7, 2));
    QCOMPARE(asked.size(), 1);
    QCOMPARE(asked[0], (QVariantList{1, 2, 7}));
    QTest::keyClick(&View(2), Qt::Key_Up);
    QTest::keyClick(&View(2), Qt::Key_Left);
    QTest::keyClick(&View(2), Qt::Key_Return);
    QTest::keyClick(&View(2), Qt::Key_Enter, Qt::KeypadModifier);
    QCOMPARE(asked.size(), 3);
    QCOMPARE(asked[1], (QVariantList{0, 2, 6}));
}

void TelemetryGridViewTest::namesHeaderAndOtherKeysAskForNoHistory() {
    QSignalSpy asked(&View(0), &TelemetryGridView::HistoryOfValue);
    QTest::mouseDClick(View(0).viewport(), Qt::LeftButton, Qt::NoModifier, Middle(0, 1, 0));
    QTest::mouseDClick(View(0).horizontalHeader()->viewport(), Qt::LeftButton);
    for (const Qt::KeyboardModifier modifier : {Qt::AltModifier, Qt::MetaModifier, Qt::ControlModifier})
        QTest::keyClick(&View(0), Qt::Key_Return, modifier);
    QTest::keyClick(&View(0), Qt::Key_Space);
    QCOMPARE(asked.size(), 0);
}

void TelemetryGridViewTest::theContextMenuAsksForTheHistory() {
    QStringList names;
    for (const QAction* entry : View(1).actions())
        names += entry->isSeparator() ? QStringLiteral("-") : entry->text();
    QCOMPARE(names, (QStringList{QStringLiteral("&Copy"), QStringLiteral("Copy with &full precision"),
                                 QStringLiteral("-"), QStringLiteral("History of this &value"),
                                 QStringLiteral("&History")}));
    QSignalSpy ofValue(&View(1), &TelemetryGridView::HistoryOfValue);
    QSignalSpy history(&View(1), &TelemetryGridView::History);
    QTest::mouseClick(View(1).viewport(), Qt::RightButton, Qt::NoModifier, Middle(1, 3, 1));
    View(1).findChild<QAction*>(QStringLiteral("mnuHistoryOfValue1"))->trigger();
    View(1).findChild<QAction*>(QStringLiteral("mnuHistory1"))->trigger();
    QCOMPARE(ofValue.size(), 1);
    QCOMPARE(ofValue[0], (QVariantList{0, 1, 3}));
    QCOMPARE(history.size(), 1);
}

QTEST_MAIN(TelemetryGridViewTest)
#include "TelemetryGridViewTest.moc"
