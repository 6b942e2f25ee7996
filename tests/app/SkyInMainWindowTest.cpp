#include "app/MainWindowRig.h"
#include "orbit/skyview/frmSky.h"

#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QToolButton>

using namespace Qt::StringLiterals;

/// The ways into the sky window, and what it hears of the main window.
class SkyInMainWindowTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theStatusBarsButtonOpensIt();
    void thePanelsContextMenuOpensIt();
    void aPassThatIsChosenOpensThere();
    void aRiseIsToldOfInTheStatusBarAndByTheDesktop_data();
    void aRiseIsToldOfInTheStatusBarAndByTheDesktop();
    void thePassWindowSavesForTheStation();
    void itFollowsTheSatelliteAndEndsWithTheProgram();

private:
    static frmSky* Sky() { return qobject_cast<frmSky*>(WindowNamed(u"frmSky"_s)); }
    static void Prepare(MainWindowRig& rig) {
        rig.Set("SETUP", "LATITUDE", u"5130.00N"_s);
        rig.Set("SETUP", "LONGITUDE", u"00007.50W"_s);
        QVERIFY(QDir().mkpath(rig.folder.File(u"Keps"_s)));
        QVERIFY(QFile::copy(QStringLiteral(QIRAN_DATA_FOLDER) + u"/demo/Keps/example.txt"_s,
                            rig.folder.File(u"Keps/example.txt"_s)));
        QVERIFY(rig.Start());
    }
};

void SkyInMainWindowTest::theStatusBarsButtonOpensIt() {
    MainWindowRig rig;
    Prepare(rig);
    auto* button = rig.Find<QToolButton>("cmdSky");
    QTest::keyClick(button, Qt::Key_Space);
    QTRY_VERIFY(Sky());
    frmSky* first = Sky();
    button->click();
    QCOMPARE(Sky(), first);
    first->close();
    QTRY_VERIFY(!Sky());
    button->click();
    QVERIFY(Sky());
}

void SkyInMainWindowTest::thePanelsContextMenuOpensIt() {
    MainWindowRig rig;
    Prepare(rig);
    rig.Find<QAction>("mnuSky")->trigger();
    QVERIFY(Sky());
}

void SkyInMainWindowTest::aPassThatIsChosenOpensThere() {
    MainWindowRig rig;
    Prepare(rig);
    QTimer::singleShot(0, rig.window.get(), [] {
        auto* table = QApplication::activeModalWidget()->findChild<QPlainTextEdit*>(u"txtInfo"_s);
        QTextCursor cursor(table->document());
        cursor.movePosition(QTextCursor::Start);
        cursor.movePosition(QTextCursor::Down, QTextCursor::MoveAnchor, 5); // the second pass
        table->setTextCursor(cursor);
        QTest::keyClick(table, Qt::Key_Return);
    });
    rig.Find<QPushButton>("cmdPassInfo")->click();
    QVERIFY(Sky());
    QVERIFY(Sky()->findChild<QPushButton*>(u"cmdPresent"_s)->isEnabled());
}

void SkyInMainWindowTest::itFollowsTheSatelliteAndEndsWithTheProgram() {
    MainWindowRig rig;
    Prepare(rig);
    rig.Find<QAction>("mnuSky")->trigger();
    const auto pass = [] { return Sky()->findChild<QLabel*>(u"labPass"_s)->text(); };
    const QString before = pass();
    rig.Find<QPushButton>("cmdChangeSat")->click();
    QVERIFY(pass() != before);
    rig.window->close();
    QVERIFY(!Sky());
}

void SkyInMainWindowTest::aRiseIsToldOfInTheStatusBarAndByTheDesktop_data() {
    QTest::addColumn<QString>("show");
    QTest::newRow("with a status bar") << u"TRUE"_s;
    QTest::newRow("without one") << u"FALSE"_s;
}

void SkyInMainWindowTest::aRiseIsToldOfInTheStatusBarAndByTheDesktop() {
    QFETCH(const QString, show);
    MainWindowRig rig;
    rig.Set("NOTICE", "MIN_ELEVATION", u"0"_s);
    rig.Set("STATUS", "SHOW", show);
    Prepare(rig);
    auto* label = rig.Find<QLabel>("labNextRise");
    const QString said = label->text();
    QVERIFY(said.startsWith(u"QIRAN rises in "_s) && !label->font().bold());
    const auto tick = [&] {
        QTimerEvent event(rig.Find<QTimer>("Timer1")->timerId());
        QCoreApplication::sendEvent(rig.Find<QTimer>("Timer1"), &event);
    };
    QVERIFY(rig.notices.shown.isEmpty());
    while (!label->font().bold()) {
        rig.clock.Advance(60);
        tick();
    }
    QCOMPARE(rig.notices.shown.size(), 1);
    QVERIFY2(rig.notices.shown.first().contains(u": QIRAN rises in "_s),
             qPrintable(rig.notices.shown.first()));
    QVERIFY(label->palette().color(QPalette::WindowText) != QPalette().color(QPalette::WindowText));
    rig.clock.Advance(400);
    tick();
    QVERIFY(!label->font().bold());
    QCOMPARE(rig.notices.shown.size(), 1);
}

void SkyInMainWindowTest::thePassWindowSavesForTheStation() {
    MainWindowRig rig;
    Prepare(rig);
    bool canSave = false;
    QTimer::singleShot(0, rig.window.get(), [&] {
        QWidget* window = QApplication::activeModalWidget();
        canSave = window->findChild<QAction*>(u"mnuSaveCsv"_s)->isEnabled();
        window->close();
    });
    rig.Find<QPushButton>("cmdPassInfo")->click();
    QVERIFY(canSave);
}

QTEST_MAIN(SkyInMainWindowTest)
#include "SkyInMainWindowTest.moc"
