#include "station/TerminalRig.h"

#include <QAction>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace Keys;

class frmTermLogTest : public QObject, private TerminalRig {
    Q_OBJECT
private Q_SLOTS:
    void init() { Prepare(); }
    void cleanup() { TakeDown(); }

    void theLogHoldsTheBytesOfThePane();
    void anUnloadedTerminalStaysSilent();
    void logAllDataIsRememberedAndTicked();
    void timer1ClosesAnIdleLog();
};

void frmTermLogTest::theLogHoldsTheBytesOfThePane() {
    m_ini->SaveIniString(u"TERMINAL"_s, u"LOGGING"_s, u"True"_s);
    Open();
    m_session->Take("Gr\xfc\xdf\x65 5 \x80\r\n\r\n", 2);
    m_session->Take("*** AGWPE V2005.127\r\n", 0);
    QTRY_COMPARE(Shown(), QStringLiteral(u"Gr\u00fc\u00dfe 5 \u20ac\n\n*** AGWPE V2005.127\n"));
    QCOMPARE(m_folder->Read(u"LOGS/20261121.TXT"_s), "Gr\xfc\xdf\x65 5 \x80\r\n\r\n*** AGWPE V2005.127\r\n");
}

void frmTermLogTest::anUnloadedTerminalStaysSilent() {
    m_ini->SaveIniString(u"TERMINAL"_s, u"LOGGING"_s, u"True"_s);
    Open();
    Press(Qt::Key_Escape);
    m_session->Take("late\r\n", 2);
    QCOMPARE(m_folder->Read(u"LOGS/20261121.TXT"_s), "");
    m_window->Unload();
    QCOMPARE(m_unloadings, 1);
}

void frmTermLogTest::logAllDataIsRememberedAndTicked() {
    Open();
    QAction* entry = Entry(u"mnuLogAllData"_s);
    QCOMPARE(entry->text(), u"Log All Data"_s);
    entry->trigger();
    QVERIFY(entry->isChecked());
    QCOMPARE(Ini(u"LOGGING"_s), u"True"_s);
    QVERIFY(m_folder->Read(u"LOGS/20261121.TXT"_s).isNull());
    m_session->Take("one\r\n", 2);
    entry->trigger();
    QVERIFY(!entry->isChecked());
    QCOMPARE(Ini(u"LOGGING"_s), u"False"_s);
    m_session->Take("two\r\n", 2);
    entry->trigger();
    m_session->Take("three\r\n", 2);
    QCOMPARE(m_folder->Read(u"LOGS/20261121.TXT"_s), "one\r\nthree\r\n");
}

void frmTermLogTest::timer1ClosesAnIdleLog() {
    m_ini->SaveIniString(u"TERMINAL"_s, u"LOGGING"_s, u"True"_s);
    Open();
    m_session->Take("one\r\n", 2);
    QVERIFY(IsLogHeldOpen());
    m_clock.Advance(301.0);
    QTRY_VERIFY(!IsLogHeldOpen());
    m_session->Take("two\r\n", 2);
    QVERIFY(IsLogHeldOpen());
    QCOMPARE(m_folder->Read(u"LOGS/20261121.TXT"_s), "one\r\ntwo\r\n");
}

QTEST_MAIN(frmTermLogTest)
#include "frmTermLogTest.moc"
