#include "app/MainWindowRig.h"
#include "foundation/placement/Twips.h"
#include "telemetry/grids/TelemetryGrid.h"

#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTest>

using namespace Qt::StringLiterals;

class frmQIRANMenuTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theTreeIsComplete();
    void theInactiveEntriesAreGreyed();
    void onlyShowQiranTwiceRestoresMarkAndSetting();
    void useLocalTimeWritesTrueAfterAFirstStart();
    void useLocalTimeChangesTheTimeOfTheNextPassAtOnce();
    void useLocalTimeHoldsFromTheNextFrame();
    void everyEntryIsReachedByItsAccessKeys_data();
    void everyEntryIsReachedByItsAccessKeys();
    void theMapOpensOnceAndIsBroughtBackFromMinimised();
    void theTerminalComesBackAfterItWasClosed();
    void theTerminalIsBroughtBackFromMinimised();
    void exitClosesTheProgram();
    void stationInformationReachesTheTrackingPanel();
};

namespace {

QStringList Describe(const QList<QAction*>& actions, const QString& indent = {}) {
    QStringList lines;
    for (const QAction* action : actions) {
        const QString name = action->menu() ? action->menu()->objectName() : action->objectName();
        lines.append(indent + name + u' ' + (action->isSeparator() ? u"-"_s : action->text()));
        if (action->menu())
            lines += Describe(action->menu()->actions(), u"- "_s);
    }
    return lines;
}

// Where access keys are heard.
void Activate(frmQIRAN& window) {
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
}

// Presses keys in the main window; what opens modally is seen and closed again. Answers its name.
QString WindowOpenedBy(frmQIRAN& window, const QList<Qt::Key>& keys) {
    QString name;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &watch, [&] {
        if (QWidget* modal = QApplication::activeModalWidget()) {
            name = modal->objectName();
            modal->close();
        }
    });
    watch.start(10);
    QTest::keyClick(&window, keys[0], Qt::AltModifier);
    for (const Qt::Key key : keys.sliced(1))
        QTest::keyClick(QApplication::activePopupWidget(), key);
    return name;
}

} // namespace

void frmQIRANMenuTest::theTreeIsComplete() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    QCOMPARE(Describe(rig.window->menuBar()->actions()), (QStringList{
                                                             u"mnuTerminal &Terminal"_s,
                                                             u"mnuMap &Map"_s,
                                                             u"mnuOptions &Options"_s,
                                                             u"- mnuUseLocalTime &Use Local Time"_s,
                                                             u"- mnuOnlyShowQIRAN &Only Show QIRAN"_s,
                                                             u"- mnuUseSapphireKeps Use &Sapphire Keps"_s,
                                                             u"- mnuBar1 -"_s,
                                                             u"- mnuLocation S&tation Information"_s,
                                                             u"- mnuAGWPESetup &AGWPE Setup"_s,
                                                             u"- mnuSides &Sides"_s,
                                                             u"- mnuCallsigns QIRAN &Callsigns"_s,
                                                             u"- mnuBar3 -"_s,
                                                             u"- mnuDownloadKeps &Download Keps"_s,
                                                             u"mnuHelp &Help"_s,
                                                             u"- mnuHelpContents &Help Contents"_s,
                                                             u"- mnuBar2 -"_s,
                                                             u"- mnuAbout &About"_s,
                                                             u"mnuExit E&xit"_s,
                                                         }));
}

void frmQIRANMenuTest::theInactiveEntriesAreGreyed() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    QVERIFY(!rig.Find<QAction>("mnuUseSapphireKeps")->isEnabled());
    QVERIFY(!rig.Find<QAction>("mnuSides")->isEnabled());
}

void frmQIRANMenuTest::onlyShowQiranTwiceRestoresMarkAndSetting() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    auto* entry = rig.Find<QAction>("mnuOnlyShowQIRAN");
    QVERIFY(entry->isChecked());
    entry->trigger();
    QVERIFY(!entry->isChecked());
    QCOMPARE(rig.Get("SETUP", "ONLY_SHOW_QIRAN"), u"FALSE"_s);
    entry->trigger();
    QVERIFY(entry->isChecked());
    QCOMPARE(rig.Get("SETUP", "ONLY_SHOW_QIRAN"), u"TRUE"_s);
}

void frmQIRANMenuTest::useLocalTimeWritesTrueAfterAFirstStart() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    auto* entry = rig.Find<QAction>("mnuUseLocalTime");
    QVERIFY(!entry->isChecked());
    QCOMPARE(rig.Find<QLabel>("labDueCap")->text().remove(u'&'), u"Due (UTC)"_s);
    entry->trigger();
    QVERIFY(entry->isChecked());
    QCOMPARE(rig.Get("SETUP", "USE_LOCAL_TIME"), u"TRUE"_s);
    QCOMPARE(rig.Find<QLabel>("labDueCap")->text().remove(u'&'), u"Due (local)"_s);
}

void frmQIRANMenuTest::useLocalTimeChangesTheTimeOfTheNextPassAtOnce() {
    MainWindowRig rig;
    rig.clock.SetOffsetHours(3);
    rig.folder.Write(u"Keps/amateur.txt"_s,
                     "TESTSAT\n"
                     "1 90417U 26001A   26320.00000000  .00000000  00000-0  10000-3 0  9997\n"
                     "2 90417  51.6400 208.9000 0006700  70.0000  25.0000 15.49560000    16\n");
    rig.Set("SETUP", "LATITUDE", u"5130.00N"_s);
    rig.Set("SETUP", "LONGITUDE", u"00030.00W"_s);
    QVERIFY(rig.Start());
    rig.window->findChild<QTimer*>(u"Timer1"_s)->stop(); // it would bring the panel up to date by itself
    const QString utc = rig.Find<QLabel>("labDue")->text();
    QVERIFY2(utc.contains(u':'), qPrintable(utc));
    rig.Find<QAction>("mnuUseLocalTime")->trigger();
    QVERIFY(rig.Find<QLabel>("labDue")->text() != utc);
    rig.Find<QAction>("mnuUseLocalTime")->trigger();
    QCOMPARE(rig.Find<QLabel>("labDue")->text(), utc);
}

void frmQIRANMenuTest::useLocalTimeHoldsFromTheNextFrame() {
    MainWindowRig rig;
    rig.clock.Set(DateOf(2026, 11, 21) + 0.5); // and stands there
    rig.clock.SetOffsetHours(3);
    QVERIFY(rig.Start());
    QTRY_COMPARE(rig.engine.MonitoringCount(), 1);
    const AirFrame heard{
        .from = "XQ9ZZ-1", .to = "APRS", .via = {}, .information = "T#1,10,20,30,40,0,0,00101111,0"};
    rig.engine.SendHeard(heard);
    QTRY_VERIFY(rig.Monitor().contains(u"12:00:00 XQ9ZZ-1>APRS:"_s));
    rig.Find<QAction>("mnuUseLocalTime")->trigger();
    rig.engine.SendHeard(heard);
    QTRY_VERIFY(rig.Monitor().contains(u"15:00:00 XQ9ZZ-1>APRS:"_s));
    QTRY_COMPARE(rig.Cell("gTlm2", 1, TelemetryGrid::LabelA), u"T#1  2026-Nov-21 15:00"_s);
}

void frmQIRANMenuTest::everyEntryIsReachedByItsAccessKeys_data() {
    QTest::addColumn<QList<Qt::Key>>("keys");
    QTest::addColumn<QString>("window");
    QTest::newRow("station information") << QList{Qt::Key_O, Qt::Key_T} << u"frmLocation"_s;
    QTest::newRow("packet engine") << QList{Qt::Key_O, Qt::Key_A} << u"frmAgwpeSetup"_s;
    QTest::newRow("callsigns") << QList{Qt::Key_O, Qt::Key_C} << u"frmCalls"_s;
    QTest::newRow("download") << QList{Qt::Key_O, Qt::Key_D} << u"frmDownload"_s;
    QTest::newRow("about") << QList{Qt::Key_H, Qt::Key_A} << u"frmAbout"_s;
}

void frmQIRANMenuTest::everyEntryIsReachedByItsAccessKeys() {
    QFETCH(const QList<Qt::Key>, keys);
    QFETCH(const QString, window);
    MainWindowRig rig;
    QVERIFY(rig.Start());
    Activate(*rig.window);
    QCOMPARE(WindowOpenedBy(*rig.window, keys), window);

    // Entries that open no modal window.
    Activate(*rig.window);
    QTest::keyClick(rig.window.get(), Qt::Key_T, Qt::AltModifier);
    QVERIFY(WindowNamed(u"frmTerm"_s));
    Activate(*rig.window);
    QTest::keyClick(rig.window.get(), Qt::Key_M, Qt::AltModifier);
    QVERIFY(WindowNamed(u"frmMap"_s));
    Activate(*rig.window);
    WindowOpenedBy(*rig.window, {Qt::Key_O, Qt::Key_U});
    QVERIFY(rig.Find<QAction>("mnuUseLocalTime")->isChecked());
    WindowOpenedBy(*rig.window, {Qt::Key_O, Qt::Key_O});
    QVERIFY(!rig.Find<QAction>("mnuOnlyShowQIRAN")->isChecked());
    WindowOpenedBy(*rig.window, {Qt::Key_H, Qt::Key_H});
    QCOMPARE(rig.presenter.helpCommands, QList{HelpCommand::Contents});
    QTest::keyClick(rig.window.get(), Qt::Key_X, Qt::AltModifier);
    QVERIFY(!rig.window->isVisible());
}

void frmQIRANMenuTest::theMapOpensOnceAndIsBroughtBackFromMinimised() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    rig.Find<QAction>("mnuMap")->trigger();
    QWidget* map = WindowNamed(u"frmMap"_s);
    QVERIFY(map != nullptr);
    map->showMinimized();
    rig.Find<QAction>("mnuMap")->trigger();
    QVERIFY(!map->isMinimized());
    QCOMPARE(WindowNamed(u"frmMap"_s), map);
    map->close();
    QTRY_VERIFY(!WindowNamed(u"frmMap"_s));
    rig.Find<QAction>("mnuMap")->trigger();
    QVERIFY(WindowNamed(u"frmMap"_s));
}

void frmQIRANMenuTest::theTerminalComesBackAfterItWasClosed() {
    MainWindowRig rig;
    rig.Set("SETUP", "ONLY_SHOW_QIRAN", u"FALSE"_s);
    QVERIFY(rig.Start());
    rig.Find<QAction>("mnuTerminal")->trigger();
    QWidget* first = WindowNamed(u"frmTerm"_s);
    QVERIFY(first != nullptr);
    first->close();
    QTRY_VERIFY(!WindowNamed(u"frmTerm"_s));
    QTRY_COMPARE(rig.engine.MonitoringCount(), 1);
    rig.engine.SendHeard({.from = "G0ABC", .to = "CQ", .via = {}, .information = "while it is away"});
    QTRY_VERIFY(rig.Monitor().contains(u"while it is away"_s));
    rig.Find<QAction>("mnuTerminal")->trigger();
    QVERIFY(WindowNamed(u"frmTerm"_s));
}

void frmQIRANMenuTest::theTerminalIsBroughtBackFromMinimised() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    rig.Find<QAction>("mnuTerminal")->trigger();
    QWidget* terminal = WindowNamed(u"frmTerm"_s);
    QVERIFY(terminal != nullptr);
    terminal->showMinimized();
    rig.Find<QAction>("mnuTerminal")->trigger();
    QVERIFY(!terminal->isMinimized());
    QCOMPARE(WindowNamed(u"frmTerm"_s), terminal);
    QTRY_VERIFY(terminal->isActiveWindow());
}

void frmQIRANMenuTest::exitClosesTheProgram() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    rig.Find<QAction>("mnuMap")->trigger();
    WindowNamed(u"frmMap"_s)->move(120, 60);
    const QString left = Twips::TextOf(120, *rig.window);
    QVERIFY(rig.Get("SETUP", "MAP_LEFT") != left);
    rig.Find<QAction>("mnuTerminal")->trigger();
    WindowNamed(u"frmTerm"_s)->findChild<QLineEdit*>(u"txtTo"_s)->setText(u"G0ABC"_s);
    rig.Find<QAction>("mnuExit")->trigger();
    QCOMPARE(rig.Get("TERMINAL", "TO"), u"G0ABC"_s);
    QCOMPARE(rig.Get("SETUP", "MAP_LEFT"), left);
    QVERIFY(!rig.window->isVisible());
    QVERIFY(!WindowNamed(u"frmMap"_s));
    QVERIFY(!WindowNamed(u"frmTerm"_s));
    QTRY_COMPARE(rig.engine.ConnectionCount(), 0);
}

void frmQIRANMenuTest::stationInformationReachesTheTrackingPanel() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    QVERIFY(!rig.Find<QWidget>("cmdPassInfo")->isEnabled());
    QTimer::singleShot(0, rig.window.get(), [] {
        QWidget* dialog = QApplication::activeModalWidget();
        for (const auto& [name, text] : {std::pair(u"txtLat"_s, u"51.30N"_s), {u"txtLong"_s, u"0.30W"_s}}) {
            auto* field = dialog->findChild<QLineEdit*>(name);
            field->setFocus();
            QTest::keyClicks(field, text);
            QTest::keyClick(field, Qt::Key_Tab);
        }
        dialog->findChild<QPushButton*>(u"cmdOk"_s)->click();
    });
    rig.Find<QAction>("mnuLocation")->trigger();
    QVERIFY(rig.Find<QWidget>("cmdPassInfo")->isEnabled());
    QCOMPARE(rig.Get("SETUP", "LATITUDE"), u"5130.00N"_s);
    QCOMPARE(rig.Get("SETUP", "LOCATOR"), u"IO91SM"_s);
}

QTEST_MAIN(frmQIRANMenuTest)
#include "frmQIRANMenuTest.moc"
