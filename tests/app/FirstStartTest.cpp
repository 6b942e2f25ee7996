#include "app/MainWindowRig.h"
#include "core/Texts.h"
#include "foundation/messages/HelpTopics.h"
#include "foundation/messages/MessageBoxPresenter.h"
#include "foundation/settings/ShippedFile.h"
#include "support/Screenshots.h"

#include <QDesktopServices>
#include <QGroupBox>
#include <QHash>
#include <QMenuBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>
#include <QTextBrowser>
#include <QTimer>
#include <QUrl>

#include <utility>

using namespace Qt::StringLiterals;

/// What a newcomer meets: a start that does not succeed and says why, and one that leads on.
class FirstStartTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void withoutFormulaeTheBoxNamesTheFileAndTheExampleAndHasHelp();
    void theReasonOfAHaltWaitsForTheNextStart();
    void aReasonIsForgottenOnceAStartSucceeds();
    void aFolderThatTakesNoFileHaltsAllTheSame();
    void whatIsShippedIsFoundInSharedDataAndTheUsersOwnCopyWins();
    void theHelpOfAnEmptyFolderIsTheShippedOne();
    void theMapOfAnEmptyFolderIsTheShippedOne();
    void anEmptyStationIsGuided();
    void aClickOnALineOpensThePlaceThatMendsIt_data();
    void aClickOnALineOpensThePlaceThatMendsIt();
    void everyAccessKeyOfTheGuidedWindowIsItsOwn();
    void theFolderButtonOpensTheProgramFolder();
    void aFolderThatNothingOpensIsNamed();
    void theGuideGoesForGoodOnceAllIsThere();
    void theGuideStaysAwayWhileTheEngineIsStillBeingAsked();
    void theGuideCanBeClosedForGood();
    void aSecondStartBringsTheFirstForwardAndNamesTheFolder();

public Q_SLOTS:
    void TakeUrl(const QUrl& url) { m_opened = url; } // in the file manager's place

private:
    QUrl m_opened;
};

namespace {

const QByteArray elements = "QIRAN\r\n"
                            "1 90417U 01043C   26325.50000000  .00000100  00000+0  10000-3 0  9996\r\n"
                            "2 90417  67.0500 100.0000 0010000  90.0000 270.0000 14.28000000 50001\r\n"
                            "ISS (ZARYA)\r\n"
                            "1 25544U 98067A   26325.50000000  .00010000  00000+0  18000-3 0  9995\r\n"
                            "2 25544  51.6400 100.0000 0005000  90.0000 270.0000 15.50000000 50008\r\n";

/// Shared data of an installation, in a folder of its own.
class SharedData {
public:
    SharedData() {
        qputenv("XDG_DATA_HOME", m_folder.path().toLocal8Bit());
        QDir(m_folder.path()).mkpath(u"qirandecode"_s);
    }
    ~SharedData() { qunsetenv("XDG_DATA_HOME"); }

    QString Put(const QString& name, const QByteArray& bytes) const {
        QFile file(m_folder.filePath(u"qirandecode/"_s + name));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("cannot write");
        return file.fileName();
    }

private:
    QTemporaryDir m_folder;
};

void MakeComplete(const MainWindowRig& rig) {
    rig.Set("SETUP", "LATITUDE", u"5130.00N"_s);
    rig.Set("SETUP", "LONGITUDE", u"00030.00W"_s);
    rig.folder.Write(u"Keps/amateur.txt"_s, elements);
}

const QGroupBox* Guide(const MainWindowRig& rig) {
    return rig.Find<QGroupBox>("framGuide");
}

} // namespace

void FirstStartTest::withoutFormulaeTheBoxNamesTheFileAndTheExampleAndHasHelp() {
    const SharedData shared;
    const QString example = shared.Put(u"formula.example.txt"_s, "# an example");
    MainWindowRig rig;
    QFile::remove(rig.folder.File(u"formula.txt"_s));
    QVERIFY(!rig.Start());
    QCOMPARE(rig.presenter.messages.size(), 1);
    const Message& message = rig.presenter.messages[0];
    QCOMPARE(message.text, u"An error occurred loading the formulae. The error message is '%1: No such file "
                           u"or directory. Put the "
                           u"satellite's calibration formulae into this file, and start the program again. "
                           u"An example to begin with "
                           u"is %2'"_s.arg(rig.folder.File(u"formula.txt"_s), example));
    QCOMPARE(message.contextId, HelpTopics::formulas);
    QCOMPARE(message.caption, u"QiranDecode"_s);
}

void FirstStartTest::theReasonOfAHaltWaitsForTheNextStart() {
    MainWindowRig rig;
    rig.folder.Write(u"formula.txt"_s, "# mine\r\nA,0,CURENT,X+,0,0,1,0\r\n");
    QVERIFY(!rig.Start());
    QCOMPARE(rig.presenter.messages.size(), 0);
    rig.window.reset();
    QVERIFY(!rig.Start());
    QCOMPARE(rig.presenter.messages.size(), 1);
    QVERIFY2(
        rig.presenter.messages[0].text.contains(rig.folder.File(u"formula.txt"_s) +
                                                u", line 2: no such grid or row: A,0,CURENT,X+,0,0,1,0"_s),
        qPrintable(rig.presenter.messages[0].text));
    QVERIFY(rig.presenter.messages[0].text.contains(u"qirandecode-cli decode --check"_s));
    QCOMPARE(rig.presenter.messages[0].contextId, HelpTopics::formulas);
}

void FirstStartTest::aReasonIsForgottenOnceAStartSucceeds() {
    MainWindowRig rig;
    const QByteArray good = rig.folder.Read(u"formula.txt"_s);
    rig.folder.Write(u"formula.txt"_s, "A,0,CURENT,X+,0,0,1,0\r\n");
    QVERIFY(!rig.Start());
    rig.window.reset();
    rig.folder.Write(u"formula.txt"_s, good);
    MakeComplete(rig);
    QVERIFY(rig.Start());
    QCOMPARE(rig.presenter.Texts(), QStringList());
    QVERIFY(!QFile::exists(rig.folder.File(u"LastStart.txt"_s)));
}

void FirstStartTest::aFolderThatTakesNoFileHaltsAllTheSame() {
    MainWindowRig rig;
    rig.folder.Write(u"formula.txt"_s, "A,0,CURENT,X+,0,0,1,0\r\n");
    QVERIFY(QDir(rig.folder.Program().Path()).mkdir(u"LastStart.txt"_s)); // in the file's place
    QVERIFY(!rig.Start());
    rig.window.reset();
    QVERIFY(!rig.Start());
    QCOMPARE(rig.presenter.Texts(), QStringList());
}

void FirstStartTest::whatIsShippedIsFoundInSharedDataAndTheUsersOwnCopyWins() {
    const SharedData shared;
    const QString there = shared.Put(u"world.gif"_s, "GIF");
    const TemporaryProgramFolder folder;
    const QString own = folder.File(u"world.gif"_s);
    QCOMPARE(ShippedFile(own), there);
    folder.Write(u"world.gif"_s, "mine");
    QCOMPARE(ShippedFile(own), own);
    QCOMPARE(ShippedFile(folder.File(u"nowhere.gif"_s)), folder.File(u"nowhere.gif"_s));
}

void FirstStartTest::theHelpOfAnEmptyFolderIsTheShippedOne() {
    const SharedData shared;
    shared.Put(u"qirandecode.HLP"_s, "<html><body><h1>Shipped help</h1></body></html>");
    const TemporaryProgramFolder folder;
    MessageBoxPresenter presenter(folder.File(u"qirandecode.HLP"_s));
    presenter.OpenHelp({});
    QVERIFY(WindowNamed(u"frmHelp"_s) != nullptr);
    QCOMPARE(WindowNamed(u"frmHelp"_s)->findChild<QTextBrowser*>()->toPlainText(), u"Shipped help"_s);
}

void FirstStartTest::theMapOfAnEmptyFolderIsTheShippedOne() {
    const SharedData shared;
    QFile world(QFINDTESTDATA("../../data/world.gif"));
    QVERIFY(world.open(QIODevice::ReadOnly));
    shared.Put(u"world.gif"_s, world.readAll());
    MainWindowRig rig;
    MakeComplete(rig);
    QVERIFY(rig.Start());
    rig.Find<QAction>("mnuMap")->trigger();
    QVERIFY(WindowNamed(u"frmMap"_s) != nullptr);
    QCOMPARE(rig.presenter.Texts(), QStringList());
    WindowNamed(u"frmMap"_s)->close();
}

void FirstStartTest::anEmptyStationIsGuided() {
    MainWindowRig rig;
    rig.Set("AGWPE", "HOST_PORT", u"1"_s); // nobody answers there
    QVERIFY(rig.Start());
    QVERIFY(Guide(rig) != nullptr);
    QVERIFY(Guide(rig)->isVisible());
    QTRY_COMPARE(
        rig.Find<QLabel>("labGuideEngine")->text(),
        u"Packet engine: none answers on 127.0.0.1; start one, as \"First start\" in the help tells"_s);
    QCOMPARE(rig.Find<QLabel>("labGuideFormulae")->text(), u"Formula file: formula.txt has 3 formulae"_s);
    QCOMPARE(rig.Find<QLabel>("labGuidePosition")->text(),
             u"Station position: not entered, so no passes can be predicted"_s);
    QCOMPARE(rig.Find<QLabel>("labGuideElements")->text(), u"Elements: No Keps found for QIRAN and ISS."_s);
    QVERIFY(!rig.Find<QPushButton>("cmdGuideFormulae")->isVisible()); // there is nothing to mend
    QVERIFY(rig.Find<QPushButton>("cmdGuideEngine")->isVisible());
    QCOMPARE(rig.Get("GUIDE", "SHOW"), u"absent"_s);
    Screenshots::Take(*rig.window, u"frmQIRAN-guide"_s);
}

void FirstStartTest::aClickOnALineOpensThePlaceThatMendsIt_data() {
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("window");
    QTest::newRow("engine") << u"cmdGuideEngine"_s << u"frmAgwpeSetup"_s;
    QTest::newRow("position") << u"cmdGuidePosition"_s << u"frmLocation"_s;
    QTest::newRow("elements") << u"cmdGuideElements"_s << u"frmDownload"_s;
}

void FirstStartTest::aClickOnALineOpensThePlaceThatMendsIt() {
    QFETCH(const QString, button);
    QFETCH(const QString, window);
    MainWindowRig rig;
    rig.Set("AGWPE", "HOST_PORT", u"1"_s);
    QVERIFY(rig.Start());
    auto* found = rig.window->findChild<QPushButton*>(button);
    QTRY_VERIFY(found->isVisible());
    QString opened;
    QTimer::singleShot(0, this, [&] {
        opened = QApplication::activeModalWidget()->objectName();
        QApplication::activeModalWidget()->close();
    });
    QTest::mouseClick(found, Qt::LeftButton);
    QCOMPARE(opened, window);
}

void FirstStartTest::everyAccessKeyOfTheGuidedWindowIsItsOwn() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    QHash<QKeySequence, QString> owners;
    const auto take = [&owners](const QString& text) {
        const QKeySequence key = QKeySequence::mnemonic(text);
        const QString other = key.isEmpty() ? QString() : std::exchange(owners[key], text);
        QVERIFY2(other.isEmpty(), qPrintable(text + u" has the key of "_s + other));
    };
    for (const QAction* menu : rig.window->menuBar()->actions())
        take(menu->text());
    for (const auto* button : rig.window->findChildren<QAbstractButton*>())
        take(button->text());
    QVERIFY(owners.size() > 10);
}

void FirstStartTest::theFolderButtonOpensTheProgramFolder() {
    MainWindowRig rig;
    rig.folder.Write(u"formula.txt"_s, "# nothing yet\r\n");
    QVERIFY(rig.Start());
    QCOMPARE(rig.Find<QLabel>("labGuideFormulae")->text(), u"Formula file: formula.txt has no formula yet"_s);
    QDesktopServices::setUrlHandler(u"file"_s, this, "TakeUrl");
    QTest::mouseClick(rig.Find<QPushButton>("cmdGuideFormulae"), Qt::LeftButton);
    QDesktopServices::unsetUrlHandler(u"file"_s);
    QCOMPARE(m_opened.toLocalFile(), rig.folder.Program().Path());
}

void FirstStartTest::aFolderThatNothingOpensIsNamed() {
    MainWindowRig rig;
    rig.folder.Write(u"formula.txt"_s, "# nothing yet\r\n");
    QVERIFY(rig.Start());
    rig.presenter.messages.clear();
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"openDocument"_s)); // there is no desktop here
    QTest::mouseClick(rig.Find<QPushButton>("cmdGuideFormulae"), Qt::LeftButton);
    QCOMPARE(rig.presenter.Texts(), QStringList(u"Nothing on this desktop opens folders. The folder is "_s +
                                                rig.folder.Program().Path()));
}

void FirstStartTest::theGuideGoesForGoodOnceAllIsThere() {
    MainWindowRig rig;
    MakeComplete(rig);
    rig.Set("SETUP", "LATITUDE", QString());
    QVERIFY(rig.Start());
    QVERIFY(Guide(rig)->isVisible());
    QTRY_COMPARE(rig.engine.MonitoringCount(), 1);
    QTimer::singleShot(0, this, [] {
        QWidget* dialog = QApplication::activeModalWidget();
        auto* latitude = dialog->findChild<QLineEdit*>(u"txtLat"_s);
        latitude->setFocus();
        QTest::keyClicks(latitude, u"51.30N"_s);
        QTest::mouseClick(dialog->findChild<QPushButton*>(u"cmdOk"_s), Qt::LeftButton);
    });
    QTest::mouseClick(rig.Find<QPushButton>("cmdGuidePosition"), Qt::LeftButton);
    QTRY_VERIFY(Guide(rig) == nullptr);
    QCOMPARE(rig.Get("GUIDE", "SHOW"), u"FALSE"_s);
    rig.window.reset();
    rig.Set("SETUP", "LATITUDE", QString());
    QVERIFY(rig.Start());
    QVERIFY(Guide(rig) == nullptr);
}

void FirstStartTest::theGuideStaysAwayWhileTheEngineIsStillBeingAsked() {
    MainWindowRig rig;
    MakeComplete(rig);
    QVERIFY(rig.Start());
    QVERIFY(Guide(rig) != nullptr && !Guide(rig)->isVisible());
    QTRY_VERIFY(Guide(rig) == nullptr); // it has answered
}

void FirstStartTest::theGuideCanBeClosedForGood() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    QTest::mouseClick(rig.Find<QPushButton>("cmdGuideClose"), Qt::LeftButton);
    QTRY_VERIFY(Guide(rig) == nullptr);
    QCOMPARE(rig.Get("GUIDE", "SHOW"), u"FALSE"_s);
}

void FirstStartTest::aSecondStartBringsTheFirstForwardAndNamesTheFolder() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    rig.window->showMinimized();
    QTRY_VERIFY(rig.window->isMinimized());
    RecordingPresenter presenter;
    mb messages(presenter);
    frmQIRAN second(rig.folder.Program(), rig.clock, messages, rig.notices);
    QVERIFY(!second.Load());
    QTRY_VERIFY(!rig.window->isMinimized());
    QVERIFY(QTest::qWaitForWindowActive(rig.window.get()));
    QCOMPARE(presenter.Texts(), QStringList{u"QiranDecode is already running. "_s});
    QVERIFY2(presenter.messages[0].caption.contains(rig.folder.Program().Path()),
             qPrintable(presenter.messages[0].caption));
}

QTEST_MAIN(FirstStartTest)
#include "FirstStartTest.moc"
