#include "app/MainWindowRig.h"
#include "support/Screenshots.h"
#include "support/Tnc.h"

#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace {

/// The true window beside two engines.
struct TwoEngines : MainWindowRig {
    Tnc tnc;

    TwoEngines() {
        if (!tnc.listen(QHostAddress::LocalHost))
            qFatal("no port");
        Set("KISS", "HOST_ADDRESS", u"127.0.0.1"_s);
        Set("KISS", "HOST_PORT", QString::number(tnc.serverPort()));
    }

    /// Opens the menu by a key, looks at it, chooses an entry by its access key, and waits until the menu has
    /// gone.
    void Choose(
        Qt::Key opener, Qt::Key entry, const std::function<void(QMenu*)>& look = [](QMenu*) {}) const {
        auto* button = Find<QToolButton>("labLink");
        button->setFocus();
        QTimer::singleShot(0, button, [=] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            QVERIFY(menu != nullptr);
            QCOMPARE(menu->objectName(), u"mnuLink"_s);
            look(menu);
            QTest::keyClick(menu, entry);
        });
        QTest::keyClick(button, opener);
    }
};

bool IsChecked(const QMenu* menu, const char* entry) {
    return menu->findChild<QAction*>(QLatin1StringView(entry))->isChecked();
}

} // namespace

/// The status bar's link and its menu, by the keys.
class LinkInMainWindowTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void theLinkIsReadAloudAndReachedByTab();
    void everyKeyOpensTheMenu_data();
    void everyKeyOpensTheMenu();
    void theEntriesHaveAccessKeysOfTheirOwn();
    void theUsedLinkIsChosen();
    void setupsOpenFromTheMenu_data();
    void setupsOpenFromTheMenu();
    void theSetupOfTheOtherLinkConnectsNothing();
    void connectNowDoesNotWait();
    void whatIsSentOverKissIsShownAsTransmitted();
    void framesAreRecordedIntoTheFileThatIsNamed();
    void givingUpTheQuestionRecordsNothing();
};

void LinkInMainWindowTest::theLinkIsReadAloudAndReachedByTab() {
    TwoEngines rig;
    QVERIFY(rig.Start());
    auto* button = rig.Find<QToolButton>("labLink");
    QTRY_COMPARE_WITH_TIMEOUT(button->text(), u"Connected to 127.0.0.1"_s, 10000);
    QCOMPARE(button->accessibleName(), u"Link"_s);
    QCOMPARE(button->accessibleDescription(), button->text());
    QCOMPARE(button->focusPolicy(), Qt::TabFocus);
    QVERIFY(button->minimumWidth() <= 1);
    Screenshots::Take(*rig.window, u"frmQIRAN-link"_s);
}

void LinkInMainWindowTest::everyKeyOpensTheMenu_data() {
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("Enter") << Qt::Key_Return;
    QTest::newRow("Enter of the keypad") << Qt::Key_Enter;
    QTest::newRow("space bar") << Qt::Key_Space;
}

void LinkInMainWindowTest::everyKeyOpensTheMenu() {
    QFETCH(Qt::Key, key);
    TwoEngines rig;
    QVERIFY(rig.Start());
    bool isSeen = false;
    rig.Choose(key, Qt::Key_Escape, [&](QMenu* menu) {
        isSeen = true;
        Screenshots::Take(*menu, u"mnuLink"_s);
    });
    QTRY_VERIFY(isSeen);
}

void LinkInMainWindowTest::theEntriesHaveAccessKeysOfTheirOwn() {
    TwoEngines rig;
    QVERIFY(rig.Start());
    QSet<QChar> keys;
    qsizetype entries = 0;
    for (const QAction* entry : rig.Find<QMenu>("mnuLink")->actions()) {
        QVERIFY(!entry->objectName().isEmpty());
        if (entry->isSeparator())
            continue;
        ++entries;
        keys.insert(entry->text()[entry->text().indexOf(u'&') + 1].toLower());
    }
    QCOMPARE(keys.size(), entries);
}

void LinkInMainWindowTest::theUsedLinkIsChosen() {
    TwoEngines rig;
    QVERIFY(rig.Start());
    QTRY_VERIFY(rig.Monitor().contains(u"*** AGW-Connected to - 127.0.0.1"_s));
    rig.Choose(Qt::Key_Return, Qt::Key_I, [](QMenu* menu) {
        QVERIFY(IsChecked(menu, "mnuLinkUseAgwpe") && !IsChecked(menu, "mnuLinkUseKiss"));
    });
    QTRY_VERIFY(rig.Monitor().contains(u"*** KISS-Connected to - 127.0.0.1"_s));
    QVERIFY(rig.Monitor().contains(u"*** AGW-Disconnected from - 127.0.0.1"_s));
    QVERIFY(!rig.Monitor().contains(u"retry"_s));
    QVERIFY(rig.Find<QPlainTextEdit>("txtMon")->isEnabled());
    QCOMPARE(rig.Get("KISS", "USE"), u"TRUE"_s);
    rig.Choose(Qt::Key_Return, Qt::Key_U, [](QMenu* menu) {
        QVERIFY(!IsChecked(menu, "mnuLinkUseAgwpe") && IsChecked(menu, "mnuLinkUseKiss"));
    });
    QTRY_COMPARE(rig.Monitor().count(u"*** AGW-Connected to - 127.0.0.1"_s), 2);
    QCOMPARE(rig.Get("KISS", "USE"), u"FALSE"_s);
}

void LinkInMainWindowTest::setupsOpenFromTheMenu_data() {
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<QString>("dialog");
    QTest::newRow("AGWPE") << Qt::Key_A << u"frmAgwpeSetup"_s;
    QTest::newRow("KISS") << Qt::Key_K << u"frmKissSetup"_s;
}

void LinkInMainWindowTest::setupsOpenFromTheMenu() {
    QFETCH(Qt::Key, key);
    QFETCH(QString, dialog);
    TwoEngines rig;
    QVERIFY(rig.Start());
    QString opened;
    rig.Choose(Qt::Key_Return, key, [&](QMenu*) {
        QTimer::singleShot(0, rig.window.get(), [&opened] {
            opened = QApplication::activeModalWidget()->objectName();
            QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape);
        });
    });
    QTRY_COMPARE(opened, dialog);
}

void LinkInMainWindowTest::theSetupOfTheOtherLinkConnectsNothing() {
    TwoEngines rig;
    rig.Set("KISS", "USE", u"TRUE"_s);
    QVERIFY(rig.Start());
    QTRY_VERIFY(rig.Monitor().contains(u"*** KISS-Connected to - 127.0.0.1"_s));
    QTimer::singleShot(0, rig.window.get(), [] {
        auto* host = QApplication::activeModalWidget()->findChild<QLineEdit*>(u"txtHostAddr"_s);
        host->setText(u"localhost"_s);
        QTest::keyClick(host, Qt::Key_Return);
    });
    rig.Find<QAction>("mnuAGWPESetup")->trigger();
    QCOMPARE(rig.Get("AGWPE", "HOST_ADDRESS"), u"localhost"_s);
    rig.Choose(Qt::Key_Return, Qt::Key_C); // and the one in use connects
    QTRY_COMPARE(rig.Monitor().count(u"*** KISS-Connected to - 127.0.0.1"_s), 2);
    QCOMPARE(rig.engine.ConnectionCount(), 0);
    QVERIFY(!rig.Monitor().contains(u"AGW-"_s));
}

void LinkInMainWindowTest::connectNowDoesNotWait() {
    TwoEngines rig;
    rig.engine.StopListening();
    QVERIFY(rig.Start());
    QTRY_VERIFY(rig.Monitor().contains(u"Will automatically retry in 30 seconds time."_s));
    QVERIFY(rig.engine.Listen(rig.engine.Port()));
    rig.Choose(Qt::Key_Return, Qt::Key_C);
    QTRY_VERIFY(rig.Monitor().contains(u"*** AGW-Connected to - 127.0.0.1"_s));
}

void LinkInMainWindowTest::whatIsSentOverKissIsShownAsTransmitted() {
    TwoEngines rig;
    rig.Set("KISS", "USE", u"TRUE"_s);
    rig.Set("SETUP", "CALLSIGN", u"N0CALL-7"_s);
    rig.Set("SETUP", "LATITUDE", u"5130.00N"_s);
    rig.Set("SETUP", "LONGITUDE", u"00030.00W"_s);
    rig.Set("SETUP", "ONLY_SHOW_QIRAN", u"FALSE"_s);
    QVERIFY(rig.Start());
    QTRY_VERIFY(rig.Monitor().contains(u"*** KISS-Connected to - 127.0.0.1"_s));
    rig.Find<QAction>("mnuTerminal")->trigger();
    QWidget* terminal = WindowNamed(u"frmTerm"_s);
    QVERIFY(terminal != nullptr && QTest::qWaitForWindowActive(terminal));
    auto* line = terminal->findChild<QLineEdit*>(u"txtTx"_s);
    QTest::keyClicks(line, u"hello"_s);
    QTest::keyClick(line, Qt::Key_Return);
    terminal->findChild<QPushButton*>(u"cmdAprs"_s)->click();
    QTRY_VERIFY(rig.tnc.received.contains("hello\r") && rig.tnc.received.contains("!5130.00N/00030.00W-"));
    QVERIFY(rig.Monitor().contains(u"T N0CALL-7>CQ,QIRAN-1 Port=1 <UI Len=6 P=0>:\nhello"_s));
    QVERIFY(rig.Monitor().contains(u"\n!5130.00N/00030.00W-"_s));
    QVERIFY(rig.presenter.messages.size() <= 1); // of missing elements, and none of the connection
}

void LinkInMainWindowTest::framesAreRecordedIntoTheFileThatIsNamed() {
    TwoEngines rig;
    const QString path = rig.folder.File(u"my pass"_s);
    QVERIFY(rig.Start());
    QTRY_COMPARE(rig.engine.MonitoringCount(), 1);
    QByteArray asked;
    connect(&rig.engine, &EngineSimulator::FrameReceived, this,
            [&asked](int, const QByteArray& frame) { asked += frame[4]; });
    bool isAsked = false;
    rig.Choose(Qt::Key_Return, Qt::Key_R, [&](QMenu* menu) {
        QVERIFY(!IsChecked(menu, "mnuLinkRecord"));
        QTimer::singleShot(0, rig.window.get(), [&] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            QVERIFY(dialog != nullptr);
            isAsked = true;
            Screenshots::Take(*dialog, u"frmRecord"_s);
            dialog->findChild<QLineEdit*>(u"fileNameEdit"_s)->setText(path);
            QTest::keyClick(dialog->findChild<QLineEdit*>(u"fileNameEdit"_s), Qt::Key_Return);
        });
    });
    QTRY_VERIFY(isAsked);
    QTRY_COMPARE(asked, QByteArray("k"));
    rig.engine.SendHeard(
        {.from = "QIRAN-3", .to = "APRS", .via = {}, .information = "T#002,11,21,31,41,0,0,00001111,0"});
    QTRY_VERIFY(rig.folder.Read(u"my pass.kiss"_s).contains("T#002,11"));
    rig.Choose(Qt::Key_Return, Qt::Key_R, [](QMenu* menu) { QVERIFY(IsChecked(menu, "mnuLinkRecord")); });
    QTRY_COMPARE(asked, QByteArray("kk"));
    QVERIFY(!rig.Find<QAction>("mnuLinkRecord")->isChecked());
}

void LinkInMainWindowTest::givingUpTheQuestionRecordsNothing() {
    TwoEngines rig;
    QVERIFY(rig.Start());
    bool isAsked = false;
    rig.Choose(Qt::Key_Return, Qt::Key_R, [&](QMenu*) {
        QTimer::singleShot(0, rig.window.get(), [&] {
            isAsked = true;
            QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape);
        });
    });
    QTRY_VERIFY(isAsked);
    QTRY_VERIFY(!rig.Find<QAction>("mnuLinkRecord")->isChecked());
}

QTEST_MAIN(LinkInMainWindowTest)
#include "LinkInMainWindowTest.moc"
