#include "app/MainWindowRig.h"
#include "app/StatusBarView.h"
#include "foundation/looks/Amber.h"

#include <QTest>
#include <QTimer>
#include <QToolButton>

using namespace Qt::StringLiterals;

/// The line at the foot of the main window.
class StatusBarTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void itsTextsAreReadOutWithTheirNames();
    void oldElementsAreAmber_data();
    void oldElementsAreAmber();
    void aSettingHidesIt_data();
    void aSettingHidesIt();
    void itChangesOnceASecondHoweverMuchIsHeard();

private:
    static void Tick(const MainWindowRig& rig) {
        QMetaObject::invokeMethod(rig.Find<QTimer>("Timer1"), "timeout");
    }
    static void WriteElements(const MainWindowRig& rig) {
        rig.folder.Write(u"Keps/qiran.txt"_s,
                         "QIRAN\r\n"
                         "1 90417U 26001A   26324.50000000  .00000100  00000-0  18000-4 0  9996\r\n"
                         "2 90417  97.6000 100.0000 0010000  60.0000 300.0000 14.30000000000015\r\n");
    }
};

void StatusBarTest::itsTextsAreReadOutWithTheirNames() {
    MainWindowRig rig;
    rig.Set("SETUP", "LATITUDE", u"5130.00N"_s);
    rig.Set("SETUP", "LONGITUDE", u"00007.50W"_s);
    WriteElements(rig);
    QVERIFY(rig.Start());
    QTRY_COMPARE(rig.engine.MonitoringCount(), 1);
    rig.Hear(1, 10);
    Tick(rig);
    const auto expect = [&](const char* name, const QString& called, const QString& begin) {
        const auto* label = rig.Find<QLabel>(name);
        return label->isVisible() && label->accessibleName() == called && label->text().startsWith(begin) &&
               label->accessibleDescription() == label->text();
    };
    QVERIFY(expect("labLastFrame", u"Last frame heard"_s, u"XQ9ZZ-1 at "_s));
    QVERIFY(expect("labToday", u"Frames of the satellite today"_s, u"1 today"_s));
    QVERIFY(expect("labElements", u"Age of the elements"_s, u"Elements "_s));
    QVERIFY(expect("labNextRise", u"Next rise"_s, u"QIRAN rises in "_s));
    const auto* link = rig.Find<QToolButton>("labLink");
    QCOMPARE(link->accessibleName(), u"Link"_s);
    QCOMPARE(link->accessibleDescription(), u"Connected to 127.0.0.1"_s);
    // History and Sky stand at the right of all the others.
    for (const char* button : {"cmdHistory", "cmdSky"})
        QVERIFY(rig.Find<QToolButton>(button)->x() >
                rig.Find<QLabel>("labNextRise")->parentWidget()->geometry().right());
    QVERIFY(rig.Find<QToolButton>("cmdSky")->x() > rig.Find<QToolButton>("cmdHistory")->x());
}

void StatusBarTest::oldElementsAreAmber_data() {
    QTest::addColumn<double>("days");
    QTest::addColumn<bool>("isAmber");
    QTest::newRow("fourteen days") << 13.9 << false;
    QTest::newRow("more") << 14.1 << true;
}

void StatusBarTest::oldElementsAreAmber() {
    QFETCH(const double, days);
    MainWindowRig rig;
    WriteElements(rig);
    rig.clock.Set(DateOf(2026, 11, 20) + 0.5 + days);
    QVERIFY(rig.Start());
    Tick(rig);
    const QPalette palette = rig.Find<QLabel>("labElements")->palette();
    const bool isAmber = palette.color(QPalette::WindowText) == AmberOn(palette.color(QPalette::Window));
    QTEST(isAmber, "isAmber");
}

void StatusBarTest::aSettingHidesIt_data() {
    QTest::addColumn<QString>("setting");
    QTest::addColumn<bool>("isShown");
    QTest::newRow("unless said otherwise") << QString() << true;
    QTest::newRow("shown") << u"TRUE"_s << true;
    QTest::newRow("hidden") << u"FALSE"_s << false;
}

void StatusBarTest::aSettingHidesIt() {
    QFETCH(const QString, setting);
    MainWindowRig rig;
    if (!setting.isEmpty())
        rig.Set("STATUS", "SHOW", setting);
    QVERIFY(rig.Start());
    QTEST(rig.Find<StatusBarView>("staStatus")->isVisible(), "isShown");
    QCOMPARE(rig.Get("STATUS", "SHOW"), setting.isEmpty() ? u"absent"_s : setting);
}

void StatusBarTest::itChangesOnceASecondHoweverMuchIsHeard() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    auto* timer = rig.Find<QTimer>("Timer1");
    QVERIFY(timer->interval() >= 1000);
    timer->stop();
    Tick(rig);
    const auto* today = rig.Find<QLabel>("labToday");
    for (int i = 1; i <= 50; ++i) {
        rig.Hear(i, i);
        QCoreApplication::processEvents();
        QCOMPARE(today->text(), u"0 today"_s);
    }
    Tick(rig);
    QCOMPARE(today->text(), u"50 today"_s);
}

QTEST_MAIN(StatusBarTest)
#include "StatusBarTest.moc"
