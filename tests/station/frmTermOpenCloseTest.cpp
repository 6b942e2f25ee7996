#include "station/TerminalRig.h"
#include "support/CloseBox.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace Keys;

class frmTermOpenCloseTest : public QObject, private TerminalRig {
    Q_OBJECT
private Q_SLOTS:
    void init() { Prepare(); }
    void cleanup() { TakeDown(); }

    void aFirstStartWritesItsKeys();
    void itOpensHiddenAndFillsItsFields();
    void everyWayOfClosingUnloads_data();
    void everyWayOfClosingUnloads();
    void closingIsNotHeldUpByAFailingField_data();
    void closingIsNotHeldUpByAFailingField();
    void theNextTerminalOpensAsTheLastOneWasLeft();
    void closedMaximisedItReopensSoWithItsPlaceKept();
    void aMinimisedTerminalComesForward();
    void theMenuWorksByKeysAlone();
};

void frmTermOpenCloseTest::aFirstStartWritesItsKeys() {
    Make();
    QCOMPARE(Ini(u"TO"_s), u"CQ"_s);
    QCOMPARE(Ini(u"VIA"_s), u"QIRAN-1"_s);
    QCOMPARE(Ini(u"PORT"_s), u"1"_s);
    QCOMPARE(Ini(u"LOGGING"_s), u"False"_s);
    for (const QString& word : {u"LEFT"_s, u"TOP"_s, u"WIDTH"_s, u"HEIGHT"_s})
        QVERIFY(Ini(u"TERMINAL_"_s + word, u"SETUP"_s) != u"absent"_s);
    QCOMPARE(Ini(u"TERMINAL_MAXIMIZED"_s, u"SETUP"_s), u"FALSE"_s);
    QCOMPARE(m_folder->Read(u"USER.INI"_s),
             "[APRS]\r\nAPRS_SYMBOL_CHARACTER=-\r\nAPRS_SYMBOL_TABLE_CHARACTER=/\r\n");
}

void frmTermOpenCloseTest::itOpensHiddenAndFillsItsFields() {
    Make();
    QVERIFY(!m_window->isVisible());
    QCOMPARE(Field(u"txtTo"_s)->text(), u"CQ"_s);
    QCOMPARE(Field(u"txtVia"_s)->text(), u"QIRAN-1"_s);
    QCOMPARE(Field(u"txtPort"_s)->text(), u"1"_s);
    QCOMPARE(Field(u"txtTx"_s)->text(), QString());
    QVERIFY(!Entry(u"mnuLogAllData"_s)->isChecked());
    QVERIFY(Pane()->isReadOnly());
    QVERIFY(!Pane()->testAttribute(Qt::WA_InputMethodEnabled));
    QCOMPARE(Pane()->palette().color(QPalette::Base), QColor(Qt::black));
}

void frmTermOpenCloseTest::everyWayOfClosingUnloads_data() {
    QTest::addColumn<int>("way");
    QTest::newRow("close box") << 0;
    QTest::newRow("Escape") << 1;
    QTest::newRow("Escape in the pane") << 2;
    QTest::newRow("menu") << 3;
    QTest::newRow("the program's own close()") << 4;
    QTest::newRow("the program ends and deletes it") << 5;
    QTest::newRow("the program ends and it was never shown") << 6;
}

void frmTermOpenCloseTest::everyWayOfClosingUnloads() {
    QFETCH(const int, way);
    m_ini->SaveIniString(u"TERMINAL"_s, u"LOGGING"_s, u"True"_s);
    if (way == 6)
        Make();
    else
        Open();
    Field(u"txtTo"_s)->setText(u"QST"_s);
    Field(u"txtVia"_s)->setText(QString());
    Field(u"txtPort"_s)->setText(u"2"_s);
    m_ini->DeleteKey(u"SETUP"_s, u"TERMINAL_LEFT"_s);
    QVERIFY(IsLogHeldOpen());
    if (way == 0)
        PressCloseBox(*m_window);
    else if (way == 1)
        Press(Qt::Key_Escape);
    else if (way == 2)
        Pane()->setFocus(), Press(Qt::Key_Escape);
    else if (way == 3)
        Entry(u"mnuClose"_s)->trigger();
    else if (way == 4)
        m_window->close();
    else
        m_window.reset();
    QCOMPARE(Ini(u"TO"_s), u"QST"_s);
    QCOMPARE(Ini(u"VIA"_s), QString());
    QCOMPARE(Ini(u"PORT"_s), u"1"_s);
    QVERIFY(Ini(u"TERMINAL_LEFT"_s, u"SETUP"_s) != u"absent"_s);
    QVERIFY(!IsLogHeldOpen());
    if (m_window) {
        QVERIFY(!m_window->isVisible());
        QCOMPARE(m_unloadings, 1);
        QVERIFY(!m_session->IsOpen());
        m_window.reset();
        QCOMPARE(m_unloadings, 1);
    }
    QVERIFY(m_presenter.messages.isEmpty());
}

void frmTermOpenCloseTest::closingIsNotHeldUpByAFailingField_data() {
    QTest::addColumn<int>("way");
    QTest::addColumn<int>("messages");
    QTest::newRow("close box") << 0 << 1;
    QTest::newRow("Escape") << 1 << 0;
    QTest::newRow("menu") << 2 << 0;
    QTest::newRow("the program ends") << 3 << 0;
}

void frmTermOpenCloseTest::closingIsNotHeldUpByAFailingField() {
    QFETCH(const int, way);
    QFETCH(const int, messages);
    Open();
    Press(Qt::Key_T, Qt::AltModifier);
    Replace(u"TOOLONGNAME"_s);
    if (way == 0)
        PressCloseBox(*m_window);
    else if (way == 1)
        Press(Qt::Key_Escape);
    else if (way == 2)
        Entry(u"mnuClose"_s)->trigger();
    else
        m_window.reset();
    QVERIFY(!m_window || !m_window->isVisible());
    QCoreApplication::processEvents();
    QCOMPARE(m_presenter.messages.size(), messages);
    QCOMPARE(Ini(u"TO"_s), u"TOOLONGNAME"_s);
}

void frmTermOpenCloseTest::theNextTerminalOpensAsTheLastOneWasLeft() {
    Open();
    Press(Qt::Key_T, Qt::AltModifier);
    Replace(u"qst"_s);
    Press(Qt::Key_Tab);
    Replace(u"relay,wide2-2"_s);
    m_window->setGeometry(50, 60, 700, 500);
    QCoreApplication::processEvents();
    Press(Qt::Key_Escape);
    m_window.reset();
    Open();
    QCOMPARE(Field(u"txtTo"_s)->text(), u"QST"_s);
    QCOMPARE(Field(u"txtVia"_s)->text(), u"RELAY,WIDE2-2"_s);
    QCOMPARE(Field(u"txtPort"_s)->text(), u"1"_s);
    QCOMPARE(m_window->size(), QSize(700, 500));
}

void frmTermOpenCloseTest::closedMaximisedItReopensSoWithItsPlaceKept() {
    Open();
    m_window->setGeometry(50, 60, 700, 500);
    const QPoint place = m_window->pos();
    Press(Qt::Key_Escape);
    m_window.reset();
    Open();
    m_window->showMaximized();
    QTRY_VERIFY(m_window->isMaximized() && m_window->width() > 700);
    Press(Qt::Key_Escape);
    m_window.reset();
    Open();
    QTRY_VERIFY(m_window->isMaximized() && m_window->width() > 700);
    m_window->showNormal();
    QTRY_COMPARE(m_window->size(), QSize(700, 500));
    QTRY_COMPARE(m_window->pos(), place);
}

void frmTermOpenCloseTest::aMinimisedTerminalComesForward() {
    Open();
    m_window->showMinimized();
    QTRY_VERIFY(m_window->isMinimized());
    m_window->BringForward();
    QTRY_VERIFY(!m_window->isMinimized());
    QVERIFY(m_window->isVisible());
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
}

void frmTermOpenCloseTest::theMenuWorksByKeysAlone() {
    Open();
    m_window->ShowData("x\r\n", 2);
    QTRY_COMPARE(Shown(), u"x\n"_s);
    auto* menu = m_window->findChild<QMenu*>(u"mnuFile"_s);
    const auto choose = [&](Qt::Key key) {
        m_window->activateWindow(); // without a window manager a closed menu stays the active window
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        Press(Qt::Key_F, Qt::AltModifier);
        QTRY_VERIFY(menu->isVisible());
        QTest::keyClick(menu, key);
    };
    choose(Qt::Key_Return); // the first entry
    QTRY_COMPARE(Ini(u"LOGGING"_s), u"True"_s);
    choose(Qt::Key_C);
    QTRY_COMPARE(Shown(), QString());
    choose(Qt::Key_O);
    QTRY_VERIFY(!m_window->isVisible());
    QCOMPARE(m_unloadings, 1);
}

QTEST_MAIN(frmTermOpenCloseTest)
#include "frmTermOpenCloseTest.moc"
