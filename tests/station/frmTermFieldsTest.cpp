#include "station/TerminalRig.h"
#include "support/Drop.h"

#include <QApplication>
#include <QPushButton>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace Keys;

class frmTermFieldsTest : public QObject, private TerminalRig {
    Q_OBJECT
private Q_SLOTS:
    void init() { Prepare(); }
    void cleanup() { TakeDown(); }

    void everyFieldIsSelectedWhole();
    void theToFieldIsChecked();
    void whateverWayACharacterComesItIsRaisedOrRefused_data();
    void whateverWayACharacterComesItIsRaisedOrRefused();
    void accessKeysLeaveTheFieldAsItIs();
    void aButtonDoesNotActWhileAFieldFails();
    void theViaFieldIsBroughtIntoForm_data();
    void theViaFieldIsBroughtIntoForm();
    void theViaFieldNamesTheWrongPiece();
    void thePortIsHeldAgainstTheEngines_data();
    void thePortIsHeldAgainstTheEngines();
    void anActiveTerminalHasItsCaretInTheTransmitLine();
    void aFailingFieldKeepsTheFocusWhenTheWindowComesBack();
};

void frmTermFieldsTest::everyFieldIsSelectedWhole() {
    Open();
    Type(u"a line"_s);
    for (const QString& name : {u"txtTo"_s, u"txtVia"_s, u"txtPort"_s, u"txtTx"_s}) {
        QTest::mouseClick(Field(name), Qt::LeftButton);
        QCOMPARE(Focus(), name);
        QVERIFY(!Field(name)->text().isEmpty());
        QCOMPARE(Field(name)->selectedText(), Field(name)->text());
    }
}

void frmTermFieldsTest::theToFieldIsChecked() {
    Open();
    Press(Qt::Key_T, Qt::AltModifier);
    QCOMPARE(Focus(), u"txtTo"_s);
    QCOMPARE(Field(u"txtTo"_s)->selectedText(), u"CQ"_s);
    Replace(u"xq9/zz-16"_s);
    QCOMPARE(Field(u"txtTo"_s)->text(), u"XQ9ZZ-16"_s);
    Press(Qt::Key_Tab);
    QCoreApplication::processEvents();
    QCOMPARE(m_presenter.Texts(), QStringList{u"That is not a valid AX25 address."_s});
    QCOMPARE(m_presenter.messages[0].style, MessageStyle::Critical);
    QCOMPARE(Focus(), u"txtTo"_s);
    Press(Qt::Key_Backspace);
    Press(Qt::Key_Tab);
    QCOMPARE(Focus(), u"txtVia"_s);
    Press(Qt::Key_T, Qt::AltModifier);
    Replace(QString());
    Press(Qt::Key_Tab); // an empty field is accepted
    QCOMPARE(Focus(), u"txtVia"_s);
    Press(Qt::Key_R, Qt::AltModifier);
    Type(u"x"_s);
    Press(Qt::Key_Return);
    QVERIFY(
        m_presenter.messages.last().text.endsWith(u"you must put a valid AX25 callsign or alias in 'To'."_s));
    QVERIFY(m_link.sent.isEmpty());
}

void frmTermFieldsTest::whateverWayACharacterComesItIsRaisedOrRefused_data() {
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("text"); // no letter of it is an access key
    QTest::addColumn<QString>("becomes");
    QTest::newRow("To") << "txtTo" << u"xq9/z\u0131-1"_s << "XQ9Z-1";
    QTest::newRow("Via") << "txtVia" << u"xq9 z.w,ks\u0131"_s << "XQ9 ZW,KS";
    QTest::newRow("Port") << "txtPort" << u"x-2.\u0662"_s << "2";
}

void frmTermFieldsTest::whateverWayACharacterComesItIsRaisedOrRefused() {
    QFETCH(const QString, field);
    QFETCH(const QString, text);
    QFETCH(const QString, becomes);
    Open();
    QLineEdit* edit = Field(field);
    edit->setFocus();
    for (const auto modifiers :
         {Qt::KeyboardModifiers(Qt::NoModifier), Qt::KeyboardModifiers(Qt::AltModifier),
          Qt::KeyboardModifiers(Qt::MetaModifier), Qt::AltModifier | Qt::ShiftModifier,
          Qt::AltModifier | Qt::ControlModifier}) {
        edit->clear();
        for (const QChar c : text)
            QTest::sendKeyEvent(QTest::Click, edit, Qt::Key_unknown, c, modifiers);
        QCOMPARE(edit->text(), becomes);
    }
    edit->clear();
    Paste(text);
    QCOMPARE(edit->text(), becomes);
    edit->clear();
    QVERIFY(DropOn(edit, text));
    QCOMPARE(edit->text(), becomes);
    edit->clear();
    edit->paste(); // as its context menu does
    QCOMPARE(edit->text(), becomes);
}

void frmTermFieldsTest::accessKeysLeaveTheFieldAsItIs() {
    Open();
    const QList<std::pair<Qt::Key, QString>> order{{Qt::Key_T, u"txtTo"_s},
                                                   {Qt::Key_V, u"txtVia"_s},
                                                   {Qt::Key_P, u"txtPort"_s},
                                                   {Qt::Key_R, u"txtTx"_s}};
    for (const auto& [key, field] : order) {
        Press(key, Qt::AltModifier);
        QCOMPARE(Focus(), field);
    }
    QCOMPARE(Field(u"txtTo"_s)->text(), u"CQ"_s);
    QCOMPARE(Field(u"txtVia"_s)->text(), u"QIRAN-1"_s);
    QCOMPARE(Field(u"txtPort"_s)->text(), u"1"_s);
    QCOMPARE(Field(u"txtTx"_s)->text(), QString());
}

void frmTermFieldsTest::aButtonDoesNotActWhileAFieldFails() {
    m_station->setStrLat(u"5130.00N"_s);
    m_station->setStrLong(u"00030.00W"_s);
    Open();
    Press(Qt::Key_T, Qt::AltModifier);
    Replace(u"TOOLONGNAME"_s);
    Press(Qt::Key_A, Qt::AltModifier);
    QCOMPARE(m_presenter.messages.size(), 1);
    QTest::mouseClick(m_window->findChild<QPushButton*>(u"cmdAprs"_s), Qt::LeftButton);
    QCOMPARE(m_presenter.messages.size(), 2);
    QCOMPARE(Focus(), u"txtTo"_s);
    Replace(u"CQ"_s);
    Press(Qt::Key_L, Qt::AltModifier); // lacks its locator
    QTRY_COMPARE(m_presenter.messages.size(), 3);
    QVERIFY(m_link.sent.isEmpty());
}

void frmTermFieldsTest::theViaFieldIsBroughtIntoForm_data() {
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("path");
    QTest::newRow("blanks and commas") << " qiran-1   wide2-2,,relay"
                                       << "QIRAN-1,WIDE2-2,RELAY";
    QTest::newRow("only commas") << ",,,"
                                 << "";
    QTest::newRow("eight") << "A1 A2 A3 A4 A5 A6 A7 A8"
                           << "A1,A2,A3,A4,A5,A6,A7,A8";
    QTest::newRow("strange keys") << "A./1;B*2"
                                  << "A1B2";
}

void frmTermFieldsTest::theViaFieldIsBroughtIntoForm() {
    QFETCH(const QString, keys);
    QFETCH(const QString, path);
    Open();
    Press(Qt::Key_V, Qt::AltModifier);
    Replace(keys);
    Press(Qt::Key_Tab);
    QCOMPARE(Focus(), u"txtPort"_s);
    QCOMPARE(Field(u"txtVia"_s)->text(), path);
    Press(Qt::Key_R, Qt::AltModifier);
    Press(Qt::Key_Return);
    QCOMPARE(m_link.sent[0].destination, u"CQ "_s + path);
    QVERIFY(m_presenter.messages.isEmpty());
}

void frmTermFieldsTest::theViaFieldNamesTheWrongPiece() {
    Open();
    Press(Qt::Key_V, Qt::AltModifier);
    Press(Qt::Key_A, Qt::ControlModifier);
    Paste(u"relay wide2-2-2"_s);
    Press(Qt::Key_Tab);
    QCoreApplication::processEvents();
    QCOMPARE(m_presenter.Texts(), QStringList{u"WIDE2-2-2 is not a valid AX25 address."_s});
    QCOMPARE(m_presenter.messages[0].style, MessageStyle::Critical);
    QCOMPARE(Focus(), u"txtVia"_s);
    QCOMPARE(Field(u"txtVia"_s)->text(), u"RELAY WIDE2-2-2"_s);
}

void frmTermFieldsTest::thePortIsHeldAgainstTheEngines_data() {
    QTest::addColumn<QString>("entry");
    QTest::addColumn<bool>("isTyped"); // the other ones stand in the file
    QTest::addColumn<int>("portCount");
    QTest::addColumn<int>("sentOn"); // 0: refused
    QTest::newRow("3 of 2") << "3" << true << 2 << 0;
    QTest::newRow("2 of 2") << "2" << true << 2 << 2;
    QTest::newRow("0") << "0" << true << 2 << 1;
    QTest::newRow("empty") << "" << true << 2 << 1;
    QTest::newRow("letters do not appear") << "x2y" << true << 2 << 2;
    QTest::newRow("3 of none known") << "3" << true << 0 << 0;
    QTest::newRow("65536") << "65536" << true << 2 << 0;
    QTest::newRow("1.5 of 2") << "1.5" << false << 2 << 2;
    QTest::newRow("2.5 of 2") << "2.5" << false << 2 << 0;
    QTest::newRow("2.5 of 3") << "2.5" << false << 3 << 2;
    QTest::newRow("-1") << "-1" << false << 2 << -1;
}

void frmTermFieldsTest::thePortIsHeldAgainstTheEngines() {
    QFETCH(const QString, entry);
    QFETCH(const bool, isTyped);
    QFETCH(const int, portCount);
    QFETCH(const int, sentOn);
    m_link.portCount = portCount;
    if (!isTyped)
        m_ini->SaveIniString(u"TERMINAL"_s, u"PORT"_s, entry);
    Open();
    Press(Qt::Key_P, Qt::AltModifier);
    QCOMPARE(Focus(), u"txtPort"_s);
    if (isTyped)
        Replace(entry);
    Press(Qt::Key_R, Qt::AltModifier);
    QCoreApplication::processEvents();
    if (sentOn == 0) {
        QCOMPARE(
            m_presenter.Texts(),
            QStringList{
                QStringLiteral("The highest available port is %1.").arg(portCount == 0 ? 2 : portCount)});
        QCOMPARE(m_presenter.messages[0].style, MessageStyle::Critical);
        QCOMPARE(Focus(), u"txtPort"_s);
        return;
    }
    QCOMPARE(Focus(), u"txtTx"_s);
    Press(Qt::Key_Return);
    QCOMPARE(m_link.sent.size(), 1);
    QCOMPARE(static_cast<int>(m_link.sent[0].port), sentOn);
}

void frmTermFieldsTest::anActiveTerminalHasItsCaretInTheTransmitLine() {
    Open();
    Press(Qt::Key_V, Qt::AltModifier);
    Replace(u"A  B"_s);
    QWidget other;
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    QTRY_COMPARE(Focus(), u"txtTx"_s);
    QCOMPARE(Field(u"txtVia"_s)->text(), u"A,B"_s);
}

void frmTermFieldsTest::aFailingFieldKeepsTheFocusWhenTheWindowComesBack() {
    Open();
    Press(Qt::Key_T, Qt::AltModifier);
    Replace(u"TOOLONGNAME"_s);
    QWidget other;
    other.show();
    other.activateWindow();
    QTRY_COMPARE(m_presenter.messages.size(), 1);
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    QTRY_COMPARE(Focus(), u"txtTo"_s);
    QTRY_VERIFY(!m_window->findChild<QTimer*>(u"timOtherWindow"_s)->isActive());
    QCOMPARE(m_presenter.messages.size(), 1);
}

QTEST_MAIN(frmTermFieldsTest)
#include "frmTermFieldsTest.moc"
