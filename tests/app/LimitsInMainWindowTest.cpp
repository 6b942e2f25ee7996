#include "app/MainWindowRig.h"
#include "app/StatusBarView.h"
#include "telemetry/plots/frmHistory.h"

#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QToolButton>

/// Values outside their limits, as the true main window shows them.
class LimitsInMainWindowTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void anEventIsShownUntilItIsLookedAt_data();
    void anEventIsShownUntilItIsLookedAt();
    void aLookAtTheListOfEventsIsOneToo();
    void anEventIsANoticeOnlyWhereItIsAskedFor_data();
    void anEventIsANoticeOnlyWhereItIsAskedFor();
    void aValueOutsideItsLimitsIsMarkedInItsGrid();
};

using namespace Qt::StringLiterals;

namespace {

// Of the history window, which is open.
QTabWidget* Tabs() {
    for (QWidget* window : QApplication::topLevelWidgets())
        if (auto* history = qobject_cast<frmHistory*>(window))
            return history->findChild<QTabWidget*>();
    qFatal("the history window is not open");
}

} // namespace

void LimitsInMainWindowTest::anEventIsShownUntilItIsLookedAt_data() {
    QTest::addColumn<int>("key"); // 0: the mouse
    QTest::newRow("mouse") << 0;
    QTest::newRow("return") << int(Qt::Key_Return);
    QTest::newRow("enter") << int(Qt::Key_Enter);
    QTest::newRow("space") << int(Qt::Key_Space);
}

void LimitsInMainWindowTest::anEventIsShownUntilItIsLookedAt() {
    QFETCH(const int, key);
    MainWindowRig rig;
    rig.folder.Write(u"channels.txt"_s, "A,TEMP,X+,degC,,5,,,1\n");
    QVERIFY(rig.Start());
    auto* event = rig.Find<QToolButton>("labEvent");
    auto* status = rig.Find<StatusBarView>("staStatus");
    QSignalSpy requested(status, &StatusBarView::EventRequested);
    rig.Hear(1, 10);
    status->Refresh();
    QVERIFY(event->isHidden());
    rig.Hear(2, 1);
    status->Refresh();
    QVERIFY(event->isVisible());
    QCOMPARE(event->text(), u"A TEMP X+: low warning"_s);
    if (key == 0) {
        QTest::mouseClick(event, Qt::LeftButton);
    } else {
        event->setFocus();
        QTest::keyClick(event, static_cast<Qt::Key>(key));
    }
    QCOMPARE(requested.size(), 1);
    QCOMPARE(requested[0][0].toLongLong(), rig.clock.Milliseconds());
    QVERIFY(event->isHidden());
    const auto* list = Tabs()->currentWidget();
    QCOMPARE(list->objectName(), u"tblEvents"_s);
    QVERIFY(list->isVisible());
}

void LimitsInMainWindowTest::aLookAtTheListOfEventsIsOneToo() {
    MainWindowRig rig;
    rig.folder.Write(u"channels.txt"_s, "A,TEMP,X+,degC,,5,,,1\n");
    QVERIFY(rig.Start());
    rig.Hear(1, 1);
    rig.Find<StatusBarView>("staStatus")->Refresh();
    const auto* event = rig.Find<QToolButton>("labEvent");
    QVERIFY(event->isVisible());
    rig.Find<QToolButton>("cmdHistory")->click();
    QVERIFY(event->isVisible());
    auto* bar = Tabs()->tabBar();
    QTest::mouseClick(bar, Qt::LeftButton, Qt::NoModifier, bar->tabRect(2).center());
    QCOMPARE(Tabs()->currentWidget()->objectName(), u"tblEvents"_s);
    QVERIFY(event->isHidden());
}

void LimitsInMainWindowTest::anEventIsANoticeOnlyWhereItIsAskedFor_data() {
    QTest::addColumn<QString>("setting");
    QTest::addColumn<QStringList>("shown");
    QTest::newRow("asked for") << u"TRUE"_s
                               << QStringList(u"QIRAN Telemetry Decoder: A TEMP X+: low warning"_s);
    QTest::newRow("not asked for") << QString() << QStringList();
}

void LimitsInMainWindowTest::anEventIsANoticeOnlyWhereItIsAskedFor() {
    QFETCH(const QString, setting);
    MainWindowRig rig;
    rig.folder.Write(u"channels.txt"_s, "A,TEMP,X+,degC,,5,,,1\n");
    if (!setting.isEmpty())
        rig.Set("NOTICE", "EVENTS", setting);
    QVERIFY(rig.Start());
    rig.Hear(1, 1);
    QTEST(rig.notices.shown, "shown");
}

void LimitsInMainWindowTest::aValueOutsideItsLimitsIsMarkedInItsGrid() {
    MainWindowRig rig;
    rig.folder.Write(u"channels.txt"_s, "A,TEMP,X+,degC,,5,,,1\n");
    QVERIFY(rig.Start());
    const QModelIndex cell = rig.Find<QTableView>("gTlm2")->model()->index(0, TelemetryGrid::ValueA);
    rig.Hear(1, 10);
    QCOMPARE(cell.data(TelemetryGrid::LevelRole).toInt(), 0);
    QCOMPARE(cell.data(TelemetryGrid::LimitText).toString(), u"10.0 degC"_s);
    rig.Hear(2, 1);
    QCOMPARE(cell.data(TelemetryGrid::LevelRole).toInt(), static_cast<int>(Level::LowWarning));
    QCOMPARE(cell.data(TelemetryGrid::LimitText).toString(), u"1.0 degC, low warning"_s);
    rig.clock.Advance(86401.0);
    QCOMPARE(cell.data(Qt::AccessibleTextRole).toString(), u"X+, A: 1.0, low warning, older than 24 hours"_s);
    rig.Hear(3, 10);
    QCOMPARE(cell.data(TelemetryGrid::LevelRole).toInt(), 0);
}

QTEST_MAIN(LimitsInMainWindowTest)
#include "LimitsInMainWindowTest.moc"
