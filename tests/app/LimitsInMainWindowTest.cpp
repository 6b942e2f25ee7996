#include "app/MainWindowRig.h"
#include "app/StatusBarView.h"

#include <QTest>
#include <QToolButton>

/// Values outside their limits, as the true main window shows them.
class LimitsInMainWindowTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void anEventIsShownUntilItIsLookedAt_data();
    void anEventIsShownUntilItIsLookedAt();
    void anEventIsANoticeOnlyWhereItIsAskedFor_data();
    void anEventIsANoticeOnlyWhereItIsAskedFor();
    void aValueOutsideItsLimitsIsMarkedInItsGrid();

private:
    static void Hear(const MainWindowRig& rig, int sequence, int raw);
};

using namespace Qt::StringLiterals;

// A frame of side A whose TEMP X+ is the raw value.
void LimitsInMainWindowTest::Hear(const MainWindowRig& rig, int sequence, int raw) {
    const QByteArray line =
        "T#" + QByteArray::number(sequence) + ',' + QByteArray::number(raw) + ",20,30,40,0,0,00101111,0";
    rig.window->findChild<GroundStation*>()->heard.Hand(
        {.utc = rig.clock.Milliseconds(), .source = "XQ9ZZ-1", .information = line});
}

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
    Hear(rig, 1, 10);
    status->Refresh();
    QVERIFY(event->isHidden());
    Hear(rig, 2, 1);
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
    Hear(rig, 1, 1);
    QTEST(rig.notices.shown, "shown");
}

void LimitsInMainWindowTest::aValueOutsideItsLimitsIsMarkedInItsGrid() {
    MainWindowRig rig;
    rig.folder.Write(u"channels.txt"_s, "A,TEMP,X+,degC,,5,,,1\n");
    QVERIFY(rig.Start());
    const QModelIndex cell = rig.Find<QTableView>("gTlm2")->model()->index(0, TelemetryGrid::ValueA);
    Hear(rig, 1, 10);
    QCOMPARE(cell.data(TelemetryGrid::LevelRole).toInt(), 0);
    QCOMPARE(cell.data(TelemetryGrid::LimitText).toString(), u"10.0 degC"_s);
    Hear(rig, 2, 1);
    QCOMPARE(cell.data(TelemetryGrid::LevelRole).toInt(), static_cast<int>(Level::LowWarning));
    QCOMPARE(cell.data(TelemetryGrid::LimitText).toString(), u"1.0 degC, low warning"_s);
    rig.clock.Advance(86401.0);
    QCOMPARE(cell.data(Qt::AccessibleTextRole).toString(), u"X+, A: 1.0, low warning, older than 24 hours"_s);
    Hear(rig, 3, 10);
    QCOMPARE(cell.data(TelemetryGrid::LevelRole).toInt(), 0);
}

QTEST_MAIN(LimitsInMainWindowTest)
#include "LimitsInMainWindowTest.moc"
