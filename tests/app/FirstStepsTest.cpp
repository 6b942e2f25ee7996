#include "app/MainWindowRig.h"
#include "app/RunningWindow.h"
#include "support/OrdinaryUser.h"

#include <QFile>
#include <QGroupBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;

/// The guide through the first steps, where the usual way is not taken.
class FirstStepsTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void aTncIsMendedInItsOwnSetup();
    void theLineFollowsTheLinkThatIsChosen();
    void elementsThatArriveAreSeenAtOnce();
    void aLineThatIsThereHasNoButton();
    void itsButtonsAnswerTheirAccessKeys();
    void itClosesInAFolderThatTakesNoFile();
    void itStaysAwayOnceItHasBeenClosedWhileAnythingIsMissing();
    void aKnockBeforeTheWindowIsThereShowsNothing();
    void aStartThatEndsInItsMiddleLeavesTheGuideToTheNext();
    void withoutAnExampleNothingIsSaidOfOne();
    void aFormulaFileThatCannotBeReadIsNamedTheSame();
};

namespace {

const QByteArray elements = "QIRAN\r\n"
                            "1 90417U 01043C   26325.50000000  .00000100  00000+0  10000-3 0  9996\r\n"
                            "2 90417  67.0500 100.0000 0010000  90.0000 270.0000 14.28000000 50001\r\n"
                            "ISS (ZARYA)\r\n"
                            "1 25544U 98067A   26325.50000000  .00010000  00000+0  18000-3 0  9995\r\n"
                            "2 25544  51.6400 100.0000 0005000  90.0000 270.0000 15.50000000 50008\r\n";

// What opens over the program by this action; a button that answers a key is seen to be pressed first.
QString OpenedBy(const std::function<void()>& act) {
    constexpr int longestWait = 1000; // ms
    QString opened;
    QTimer look;
    look.callOnTimeout([&] {
        if (QWidget* modal = QApplication::activeModalWidget()) {
            opened = modal->objectName();
            modal->close();
        }
    });
    look.start(10);
    act();
    (void)QTest::qWaitFor([&] { return !opened.isEmpty(); }, longestWait);
    return opened;
}

} // namespace

void FirstStepsTest::aTncIsMendedInItsOwnSetup() {
    MainWindowRig rig;
    rig.Set("KISS", "USE", u"TRUE"_s);
    rig.Set("KISS", "HOST_ADDRESS", u"127.0.0.1"_s);
    rig.Set("KISS", "HOST_PORT", u"1"_s); // nobody answers there
    QVERIFY(rig.Start());
    auto* setup = rig.Find<QPushButton>("cmdGuideEngine");
    QTRY_VERIFY(rig.Find<QLabel>("labGuideEngine")->text().contains(u"none answers"_s));
    QCOMPARE(setup->text().remove(u'&'), u"KISS Setup"_s);
    QCOMPARE(OpenedBy([&] { QTest::mouseClick(setup, Qt::LeftButton); }), u"frmKissSetup"_s);
}

void FirstStepsTest::theLineFollowsTheLinkThatIsChosen() {
    MainWindowRig rig;
    rig.Set("KISS", "HOST_ADDRESS", u"127.0.0.1"_s);
    rig.Set("KISS", "HOST_PORT", u"1"_s);
    QVERIFY(rig.Start());
    const auto* engine = rig.Find<QLabel>("labGuideEngine");
    QTRY_COMPARE(engine->text(), u"Packet engine: connected to 127.0.0.1"_s);
    QVERIFY(!rig.Find<QPushButton>("cmdGuideEngine")->isVisible());
    rig.Find<QAction>("mnuLinkUseKiss")->trigger();
    QTRY_VERIFY(engine->text().contains(u"none answers"_s));
    QVERIFY(rig.Find<QPushButton>("cmdGuideEngine")->isVisible());
}

void FirstStepsTest::elementsThatArriveAreSeenAtOnce() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    const auto* line = rig.Find<QLabel>("labGuideElements");
    QVERIFY(line->text().contains(u"No Keps found"_s));
    rig.folder.Write(u"Keps/amateur.txt"_s, elements);
    QTRY_COMPARE(line->text(), u"Elements: found for both satellites"_s);
    QVERIFY(!rig.Find<QPushButton>("cmdGuideElements")->isVisible());
}

void FirstStepsTest::aLineThatIsThereHasNoButton() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    QVERIFY(rig.Find<QPushButton>("cmdGuidePosition")->isVisible());
    QCOMPARE(rig.Find<QLabel>("labGuideMarkPosition")->accessibleName(), u"Missing"_s);
    QCOMPARE(rig.Find<QLabel>("labGuideMarkFormulae")->accessibleName(), u"Done"_s);
    QCOMPARE(rig.Find<QPushButton>("cmdGuidePosition")->accessibleDescription(),
             rig.Find<QLabel>("labGuidePosition")->text());
}

void FirstStepsTest::itsButtonsAnswerTheirAccessKeys() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    QVERIFY(QTest::qWaitForWindowActive(rig.window.get()));
    const auto press = [&](Qt::KeyboardModifier modifier) {
        return OpenedBy([&] { QTest::keyClick(rig.window.get(), Qt::Key_A, modifier); });
    };
    QCOMPARE(press(Qt::MetaModifier), QString());
    QCOMPARE(press(Qt::AltModifier), u"frmLocation"_s);
}

void FirstStepsTest::itClosesInAFolderThatTakesNoFile() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    QFile::remove(rig.folder.IniFile());
    QVERIFY(QDir().mkdir(rig.folder.IniFile())); // in the file's place
    QTest::mouseClick(rig.Find<QPushButton>("cmdGuideClose"), Qt::LeftButton);
    QTRY_VERIFY(rig.Find<QGroupBox>("framGuide") == nullptr);
    QTRY_VERIFY(rig.Monitor().contains(u"The settings cannot be saved"_s));
    QDir().rmdir(rig.folder.IniFile());
}

void FirstStepsTest::itStaysAwayOnceItHasBeenClosedWhileAnythingIsMissing() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    QTest::mouseClick(rig.Find<QPushButton>("cmdGuideClose"), Qt::LeftButton);
    rig.Find<QAction>("mnuLinkConnect")->trigger(); // it would have to show this
    QTRY_COMPARE(rig.engine.MonitoringCount(), 1);
    QTRY_VERIFY(rig.Find<QGroupBox>("framGuide") == nullptr);
    rig.window.reset();
    QVERIFY(rig.Start());
    QVERIFY(rig.Find<QGroupBox>("framGuide") == nullptr);
}

void FirstStepsTest::aKnockBeforeTheWindowIsThereShowsNothing() {
    MainWindowRig rig;
    rig.folder.Write(u"formula.txt"_s, "A,9,CURRENT,X+,0,0,1,0\r\n"); // the start ends with a message
    bool isSeen = false;
    rig.presenter.whileShown = [&](const Message&) {
        RunningWindow::Knock(rig.folder.Program().Path());
        for (int i = 0; i < 20; ++i)
            QApplication::processEvents();
        isSeen = rig.window->isVisible();
    };
    QVERIFY(!rig.Start());
    QCOMPARE(rig.presenter.messages.size(), 1);
    QVERIFY(!isSeen);
}

void FirstStepsTest::aStartThatEndsInItsMiddleLeavesTheGuideToTheNext() {
    MainWindowRig rig;
    rig.presenter.whileShown = [&](const Message&) { rig.window->close(); };
    rig.Start(); // the position's message stands open when the program is asked to end
    rig.presenter.whileShown = {};
    rig.window.reset();
    QCOMPARE(rig.Get("GUIDE", "SHOW"), u"absent"_s);
    QVERIFY(rig.Start());
    QVERIFY(rig.Find<QGroupBox>("framGuide")->isVisible());
}

void FirstStepsTest::withoutAnExampleNothingIsSaidOfOne() {
    MainWindowRig rig;
    QFile::remove(rig.folder.File(u"formula.txt"_s));
    qputenv("XDG_DATA_HOME", rig.folder.File(u"none"_s).toLocal8Bit());
    qputenv("XDG_DATA_DIRS", rig.folder.File(u"none"_s).toLocal8Bit());
    const bool isStarted = rig.Start();
    qunsetenv("XDG_DATA_HOME");
    qunsetenv("XDG_DATA_DIRS");
    QVERIFY(!isStarted);
    const QString text = rig.presenter.Texts().value(0);
    QVERIFY2(text.endsWith(
                 u"Put the satellite's calibration formulae into this file, and start the program again.'"_s),
             qPrintable(text));
}

void FirstStepsTest::aFormulaFileThatCannotBeReadIsNamedTheSame() {
    MainWindowRig rig;
    const QString formulae = rig.folder.File(u"formula.txt"_s);
    QVERIFY(QFile::remove(formulae) && QDir().mkdir(formulae));
    QVERIFY(!rig.Start());
    const QString text = rig.presenter.Texts().value(0);
    QVERIFY2(text.contains(formulae) && text.contains(u"Put the satellite's"_s), qPrintable(text));
}

QTEST_MAIN(FirstStepsTest)
#include "FirstStepsTest.moc"
