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

QTEST_MAIN(SkyInMainWindowTest)
#include "SkyInMainWindowTest.moc"
