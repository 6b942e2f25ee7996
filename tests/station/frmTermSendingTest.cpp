#include "station/TerminalRig.h"
#include "support/Drop.h"

#include <QApplication>
#include <QClipboard>
#include <QInputMethodEvent>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace Keys;

class frmTermSendingTest : public QObject, private TerminalRig {
    Q_OBJECT
private Q_SLOTS:
    void init() { Prepare(); }
    void cleanup() { TakeDown(); }

    void tabGoesThroughTheWindowAndEverythingIsSentByKeysAlone();
    void enterSendsTheLine();
    void enterWithoutConnectionWarnsAndSendsOnce();
    void enterWithoutCallsignSendsNothing();
    void controlRBringsTheLastLineBack();
    void the72ndCharacterSendsTheLine();
    void aPastedLineEndIsABlankAndSendsNothing_data();
    void aPastedLineEndIsABlankAndSendsNothing();
    void lineEndsThatComeAnotherWayAreBlanks_data();
    void lineEndsThatComeAnotherWayAreBlanks();
    void aPastedLineEndCanBeUndone();
    void aLongPasteIsSentInLinesAsTheWrapHasIt_data();
    void aLongPasteIsSentInLinesAsTheWrapHasIt();
    void aPasteOfA200CharacterWordIsSentInLines();
    void beaconsAreSentByTheirAccessKeys();
};

void frmTermSendingTest::tabGoesThroughTheWindowAndEverythingIsSentByKeysAlone() {
    m_station->setStrLat(u"5130.00N"_s);
    m_station->setStrLong(u"00030.00W"_s);
    m_station->setStrLoc(u"IO91SM"_s);
    m_link.portCount = 2;
    Open();
    const auto tabTo = [](const QString& name) {
        Press(Qt::Key_Tab);
        QCOMPARE(Focus(), name);
    };
    tabTo(u"txtTo"_s);
    Type(u"qst"_s); // in place of what is selected
    tabTo(u"txtVia"_s);
    Type(u"relay wide2-2"_s);
    tabTo(u"txtPort"_s);
    Type(u"2"_s);
    tabTo(u"cmdAprs"_s);
    Press(Qt::Key_Space);
    tabTo(u"cmdLoc"_s);
    Press(Qt::Key_Space);
    tabTo(u"rtbMon"_s);
    tabTo(u"txtTx"_s);
    Type(u"Hello"_s);
    Press(Qt::Key_Return);
    QCOMPARE(m_link.sent, (QList<RecordingLink::Sent>{
                              {2, u"XQ9ZZ-1"_s, u"APQ36Q RELAY,WIDE2-2"_s, u"!5130.00N/00030.00W-\r"_s},
                              {2, u"XQ9ZZ-1"_s, u"APQ36Q RELAY,WIDE2-2"_s, u">IO91SM/-\r"_s},
                              {2, u"XQ9ZZ-1"_s, u"QST RELAY,WIDE2-2"_s, u"Hello\r"_s}}));
    QVERIFY(m_presenter.messages.isEmpty());
    Press(Qt::Key_Escape);
    QVERIFY(!m_window->isVisible());
}

void frmTermSendingTest::enterSendsTheLine() {
    Open();
    Type(u"Hello, World"_s);
    Press(Qt::Key_Return);
    QCOMPARE(Field(u"txtTx"_s)->text(), QString());
    Press(Qt::Key_Enter); // an empty box is an empty line
    QCOMPARE(m_link.sent, (QList<RecordingLink::Sent>{{1, u"XQ9ZZ-1"_s, u"CQ QIRAN-1"_s, u"Hello, World\r"_s},
                                                      {1, u"XQ9ZZ-1"_s, u"CQ QIRAN-1"_s, u"\r"_s}}));
    QVERIFY(m_presenter.messages.isEmpty());
}

void frmTermSendingTest::enterWithoutConnectionWarnsAndSendsOnce() {
    m_link.isConnected = false;
    Open();
    Type(u"hello"_s);
    Press(Qt::Key_Return);
    QCOMPARE(m_presenter.Texts(), QStringList{u"To be able to transmit, you must be connected to AGWPE."_s});
    QCOMPARE(m_presenter.messages[0].owner, m_window.get());
    QCOMPARE(m_link.Data(), QStringList{u"hello\r"_s});
    QCOMPARE(Field(u"txtTx"_s)->text(), QString());
}

void frmTermSendingTest::enterWithoutCallsignSendsNothing() {
    m_station->setStrCallsign(QString());
    m_link.isConnected = false;
    Open();
    Type(u"hello"_s);
    Press(Qt::Key_Return);
    QCOMPARE(m_presenter.messages.size(), 1);
    QVERIFY(m_presenter.messages[0].text.contains(u"your callsign"_s));
    QVERIFY(m_link.sent.isEmpty());
}

void frmTermSendingTest::controlRBringsTheLastLineBack() {
    Open();
    Press(Qt::Key_R, Qt::ControlModifier); // before anything was sent
    QCOMPARE(Field(u"txtTx"_s)->text(), QString());
    Type(u"one"_s);
    Press(Qt::Key_R, Qt::ControlModifier);
    QCOMPARE(Field(u"txtTx"_s)->text(), u"one"_s);
    Press(Qt::Key_Return);
    Type(u"two"_s);
    Press(Qt::Key_R, Qt::ControlModifier);
    QCOMPARE(Field(u"txtTx"_s)->text(), u"one"_s);
    QCOMPARE(Field(u"txtTx"_s)->cursorPosition(), 3);
    QCOMPARE(m_link.Data(), QStringList{u"one\r"_s});
}

void frmTermSendingTest::the72ndCharacterSendsTheLine() {
    Open();
    const QString start = QString(59, u'a') + u' ';
    Type(start + QString(11, u'b'));
    QVERIFY(m_link.sent.isEmpty());
    Type(u"c"_s);
    QCOMPARE(m_link.Data(), QStringList{QString(59, u'a') + u'\r'});
    QCOMPARE(Field(u"txtTx"_s)->text(), QString(11, u'b') + u'c');
    QCOMPARE(Field(u"txtTx"_s)->cursorPosition(), 12);
    Press(Qt::Key_R, Qt::ControlModifier);
    QCOMPARE(Field(u"txtTx"_s)->text(), QString(59, u'a'));
}

void frmTermSendingTest::aPastedLineEndIsABlankAndSendsNothing_data() {
    QTest::addColumn<QString>("pasted");
    QTest::addColumn<QString>("line");
    QTest::newRow("LF") << "one\ntwo"
                        << "one two";
    QTest::newRow("CR LF") << "one\r\ntwo\r\n"
                           << "one two ";
    QTest::newRow("CR") << "one\rtwo"
                        << "one two";
    QTest::newRow("an empty line between") << "one\n\ntwo"
                                           << "one  two";
    QTest::newRow("nothing else") << "\r\n"
                                  << " ";
    QTest::newRow("Unicode's own") << u"one\u2028two\u2029"_s << "one two ";
}

void frmTermSendingTest::aPastedLineEndIsABlankAndSendsNothing() {
    QFETCH(const QString, pasted);
    QFETCH(const QString, line);
    Open();
    Paste(pasted);
    QCOMPARE(Field(u"txtTx"_s)->text(), line);
    QCOMPARE(m_link.Data(), QStringList());
    Press(Qt::Key_Return);
    QCOMPARE(m_link.Data(), QStringList{line + u'\r'});
}

void frmTermSendingTest::lineEndsThatComeAnotherWayAreBlanks_data() {
    QTest::addColumn<int>("way");
    QTest::newRow("dropped") << 0;
    QTest::newRow("composed") << 1;
    QTest::newRow("pasted by mouse") << 2;
    QTest::newRow("one key event of several characters") << 3;
}

void frmTermSendingTest::lineEndsThatComeAnotherWayAreBlanks() {
    QFETCH(const int, way);
    Open();
    QLineEdit* line = Field(u"txtTx"_s);
    const QString text = u"one\r\ntwo"_s;
    if (way == 0) {
        DropOn(line, text);
    } else if (way == 1) {
        QInputMethodEvent composed;
        composed.setCommitString(text);
        QCoreApplication::sendEvent(line, &composed);
    } else if (way == 2) {
        QApplication::clipboard()->setText(text);
        line->paste();
    } else {
        QTest::sendKeyEvent(QTest::Click, line, Qt::Key_unknown, text, Qt::NoModifier);
    }
    QCOMPARE(line->text(), u"one two"_s);
    QVERIFY(m_link.sent.isEmpty());
}

void frmTermSendingTest::aPastedLineEndCanBeUndone() {
    Open();
    Type(u"a line"_s);
    Press(Qt::Key_A, Qt::ControlModifier);
    Paste(u"another\none"_s);
    Press(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(Field(u"txtTx"_s)->text(), u"a line"_s);
}

void frmTermSendingTest::aLongPasteIsSentInLinesAsTheWrapHasIt_data() {
    QTest::addColumn<bool>("byKey");
    QTest::newRow("by key") << true;
    QTest::newRow("by mouse") << false;
}

void frmTermSendingTest::aLongPasteIsSentInLinesAsTheWrapHasIt() {
    QFETCH(const bool, byKey);
    Open();
    QString text;
    for (int i = 0; text.size() < 5000; ++i)
        text += QStringLiteral("word%1").arg(i) + (i % 3 == 2 ? u"\r\n"_s : u" "_s);
    QApplication::clipboard()->setText(text);
    if (byKey)
        Press(Qt::Key_V, Qt::ControlModifier);
    else
        Field(u"txtTx"_s)->paste();
    QString sent;
    for (const QString& line : m_link.Data()) {
        QVERIFY(line.size() > 52 && line.size() <= 73); // broken where it is full, and nowhere else
        QVERIFY(line.endsWith(u'\r') && line.count(u'\r') == 1 && !line.contains(u'\n'));
        sent += line.chopped(1) + u' ';
    }
    QCOMPARE(sent + Field(u"txtTx"_s)->text(), text.replace(u"\r\n"_s, u" "_s));
    QVERIFY(Field(u"txtTx"_s)->text().size() < 72);
}

void frmTermSendingTest::aPasteOfA200CharacterWordIsSentInLines() {
    Open();
    Paste(QString(200, u'w'));
    QCOMPARE(m_link.Data(), (QStringList{QString(72, u'w') + u'\r', QString(72, u'w') + u'\r'}));
    QCOMPARE(Field(u"txtTx"_s)->text(), QString(56, u'w'));
}

void frmTermSendingTest::beaconsAreSentByTheirAccessKeys() {
    m_folder->Write(u"USER.INI"_s, "[APRS]\r\nAPRS_SYMBOL_CHARACTER=>\r\nAPRS_SYMBOL_TABLE_CHARACTER=\\\r\n");
    Open();
    Press(Qt::Key_A, Qt::AltModifier);
    QTRY_COMPARE(m_presenter.messages.size(), 1);
    QVERIFY(m_presenter.messages[0].text.startsWith(u"To be able to transmit a beacon, you must input"_s));
    m_station->setStrLat(u"5130.00N"_s);
    m_station->setStrLong(u"00030.00W"_s);
    m_station->setStrLoc(u"IO91SM"_s);
    m_station->setStrComment(u"hi"_s);
    Press(Qt::Key_A, Qt::AltModifier);
    QTRY_COMPARE(m_link.sent.size(), 1);
    Press(Qt::Key_L, Qt::AltModifier);
    QTRY_COMPARE(m_link.sent.size(), 2);
    QCOMPARE(m_link.sent, (QList<RecordingLink::Sent>{
                              {1, u"XQ9ZZ-1"_s, u"APQ36Q QIRAN-1"_s, u"!5130.00N\\00030.00W>hi\r"_s},
                              {1, u"XQ9ZZ-1"_s, u"APQ36Q QIRAN-1"_s, u">IO91SM\\> hi\r"_s}}));
}

QTEST_MAIN(frmTermSendingTest)
#include "frmTermSendingTest.moc"
