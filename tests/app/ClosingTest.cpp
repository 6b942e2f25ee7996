#include "app/MainWindowRig.h"
#include "foundation/messages/MessageBoxPresenter.h"
#include "support/CloseBox.h"

#include <QEventLoop>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

/// Asks the main window to close as soon as something stands open over it, and remembers in which order they
/// went.
class CloseUnder : public QObject {
public:
    explicit CloseUnder(QWidget& window)
        : m_window(window) {
        m_poll.setInterval(0);
        connect(&m_poll, &QTimer::timeout, this, &CloseUnder::Look);
        m_poll.start();
    }

    int seen = 0;            // how many dialogs and menus stood open, one after another
    bool windowStood = true; // each time that one of them went

private:
    void Look() {
        QWidget* open = QApplication::activePopupWidget() ? QApplication::activePopupWidget()
                                                          : QApplication::activeModalWidget();
        if (!open || open == m_last)
            return;
        m_last = open;
        connect(open, &QObject::destroyed, this,
                [this] { windowStood = windowStood && m_window.isVisible(); });
        if (++seen == 1)
            m_window.close();
    }

    QWidget& m_window;
    QTimer m_poll;
    QPointer<QWidget> m_last;
};

} // namespace

class ClosingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void underADialogTheDialogGoesFirst_data();
    void underADialogTheDialogGoesFirst();
    void underADialogWithABadFieldNobodyIsAsked();
    void underAMessageOfTheTerminalTheMessageGoesFirst();
    void underAMenuTheMenuGoesFirst();
    void underAnOperationThatWaitsTheOperationEndsFirst();
    void duringTheMessagesOfTheStart();
    void duringTheMessageThatEndsTheStart();
};

void ClosingTest::underADialogTheDialogGoesFirst_data() {
    QTest::addColumn<QByteArray>("entry");
    for (const char* entry : {"mnuLocation", "mnuAGWPESetup", "mnuCallsigns", "mnuDownloadKeps", "mnuAbout"})
        QTest::newRow(entry) << QByteArray(entry);
    QTest::newRow("pass predictions") << QByteArray();
}

void ClosingTest::underADialogTheDialogGoesFirst() {
    QFETCH(const QByteArray, entry);
    MainWindowRig rig;
    rig.Set("SETUP", "LATITUDE", u"5130.00N"_s);
    rig.Set("SETUP", "LONGITUDE", u"00007.50W"_s);
    QVERIFY(rig.Start());
    rig.Set("SETUP", "OBJ_INDEX", u"unsaved"_s);
    const CloseUnder closing(*rig.window);
    if (entry.isEmpty()) {
        rig.Find<QPushButton>("cmdPassInfo")->setEnabled(true);
        rig.Find<QPushButton>("cmdPassInfo")->click();
    } else
        rig.Find<QAction>(entry)->trigger();
    QCOMPARE(closing.seen, 1);
    QVERIFY(closing.windowStood);
    QVERIFY(!QApplication::activeModalWidget());
    QTRY_VERIFY(!rig.window->isVisible());
    QCOMPARE(rig.Get("SETUP", "OBJ_INDEX"), u"0"_s);
}

void ClosingTest::underADialogWithABadFieldNobodyIsAsked() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    rig.presenter.messages.clear();
    QTimer::singleShot(0, [&] {
        auto* dialog = QApplication::activeModalWidget();
        auto* txtCallsign = dialog->findChild<QLineEdit*>(u"txtCallsign"_s);
        txtCallsign->setFocus();
        txtCallsign->setText(u"TOOLONGNAME"_s);
        rig.window->close();
    });
    rig.Find<QAction>("mnuLocation")->trigger();
    QTRY_VERIFY(!rig.window->isVisible());
    QVERIFY(rig.presenter.messages.isEmpty());
}

void ClosingTest::underAMessageOfTheTerminalTheMessageGoesFirst() {
    MainWindowRig rig;
    MessageBoxPresenter presenter{QString()};
    mb messages(presenter);
    rig.Set("SETUP", "LATITUDE", u"5130.00N"_s);
    rig.Set("SETUP", "LONGITUDE", u"00007.50W"_s);
    frmQIRAN window(rig.folder.Program(), rig.clock, messages, rig.notices);
    QTimer::singleShot(0, [] { QApplication::activeModalWidget()->close(); });
    QVERIFY(window.Load()); // says that there are no elements
    window.findChild<QAction*>(u"mnuTerminal"_s)->trigger();
    QWidget* terminal = WindowNamed(u"frmTerm"_s);
    QVERIFY(terminal && QTest::qWaitForWindowActive(terminal));
    auto* txtTo = terminal->findChild<QLineEdit*>(u"txtTo"_s);
    txtTo->setFocus();
    txtTo->setText(u"TOOLONGNAME"_s);
    const CloseUnder closing(window);
    QTest::keyClick(txtTo, Qt::Key_Tab);
    QCOMPARE(closing.seen, 1);
    QVERIFY(closing.windowStood);
    QTRY_VERIFY(!window.isVisible());
    QVERIFY(!WindowNamed(u"frmTerm"_s));
    QCOMPARE(rig.Get("TERMINAL", "TO"), u"TOOLONGNAME"_s);
}

void ClosingTest::underAMenuTheMenuGoesFirst() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    QMenu menu;
    menu.addAction(u"x"_s);
    const CloseUnder closing(*rig.window);
    menu.exec(rig.window->pos());
    QCOMPARE(closing.seen, 1);
    QVERIFY(rig.window->isVisible());
    QTRY_VERIFY(!rig.window->isVisible());
}

void ClosingTest::underAnOperationThatWaitsTheOperationEndsFirst() {
    MainWindowRig rig;
    QVERIFY(rig.Start());
    QEventLoop program;
    bool windowStood = false;
    QTimer::singleShot(0, [&] {
        QEventLoop operation; // as drag and drop has one, with no window of its own
        QTimer::singleShot(0, [&] {
            rig.window->close();
            windowStood = rig.window->isVisible();
            operation.quit();
        });
        operation.exec();
        program.quit();
    });
    program.exec();
    QVERIFY(windowStood);
    QTRY_VERIFY(!rig.window->isVisible());
}

void ClosingTest::duringTheMessagesOfTheStart() {
    MainWindowRig rig;
    MessageBoxPresenter presenter{QString()};
    mb messages(presenter);
    frmQIRAN window(rig.folder.Program(), rig.clock, messages, rig.notices);
    const CloseUnder closing(window);
    QVERIFY(window.Load());
    QCOMPARE(closing.seen, 2); // of the position, of the elements
    QVERIFY(closing.windowStood);
    QTRY_VERIFY(!window.isVisible());
    QCOMPARE(rig.Get("SETUP", "OBJ_INDEX"), u"0"_s);
}

void ClosingTest::duringTheMessageThatEndsTheStart() {
    MainWindowRig rig;
    QVERIFY(QFile::remove(rig.folder.Program().File(u"formula.txt"_s)));
    MessageBoxPresenter presenter{QString()};
    mb messages(presenter);
    frmQIRAN window(rig.folder.Program(), rig.clock, messages, rig.notices);
    const CloseUnder closing(window);
    QVERIFY(!window.Load());
    QCOMPARE(closing.seen, 1);
    QVERIFY(!window.isVisible());
}

QTEST_MAIN(ClosingTest)
#include "ClosingTest.moc"
