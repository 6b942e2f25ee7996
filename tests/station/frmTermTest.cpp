#include "station/terminal/frmTerm.h"

#include "foundation/messages/mb.h"
#include "foundation/settings/clsIni.h"
#include "station/RecordingLink.h"
#include "station/identity/Station.h"
#include "support/CloseBox.h"
#include "support/Keys.h"
#include "support/RecordingPresenter.h"
#include "support/Screenshots.h"
#include "support/TemporaryProgramFolder.h"
#include "support/TestClock.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QFontDatabase>
#include <QFontInfo>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace Keys;

class frmTermTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();

    void aFirstStartWritesItsKeys();
    void itOpensHiddenAndFillsItsFields();
    void whatArrivesWhileHiddenIsKeptAndLogged();
    void transmittedFramesAreCyanAndAllElseGreen();
    void shortFormsNeverReachIt();
    void textFromTheAirIsNeverMarkup();
    void theLogHoldsTheBytesOfThePane();
    void aFloodTouchesThePaneOnceATurn();
    void theNewestLineIsInViewUnlessScrolledBack();
    void aSelectionSurvivesNewTextAndCanBeCopied();
    void clearEmptiesThePane();
    void theFontIsOfFixedPitchAndSnapped();
    void theFontBesideTheProgramIsTaken();
    void theTransmitLineGrowsWithTheWindow();

    void tabGoesThroughTheWindowAndEverythingIsSentByKeysAlone();
    void enterSendsTheLine();
    void enterWithoutConnectionWarnsAndSendsOnce();
    void enterWithoutCallsignSendsNothing();
    void controlRBringsTheLastLineBack();
    void the72ndCharacterSendsTheLine();
    void aPasteOf5000CharactersIsSentInLines();
    void aPasteOfA200CharacterWordIsSentInLines();
    void beaconsAreSentByTheirAccessKeys();

    void everyFieldIsSelectedWhole();
    void theToFieldIsChecked();
    void aPastedLowerCaseCallsignIsRefused();
    void aButtonDoesNotActWhileAFieldFails();
    void theViaFieldIsBroughtIntoForm_data();
    void theViaFieldIsBroughtIntoForm();
    void theViaFieldNamesTheWrongPiece();
    void thePortIsHeldAgainstTheEngines_data();
    void thePortIsHeldAgainstTheEngines();
    void anActiveTerminalHasItsCaretInTheTransmitLine();
    void aFailingFieldKeepsTheFocusWhenTheWindowComesBack();

    void everyWayOfClosingUnloads_data();
    void everyWayOfClosingUnloads();
    void closingIsNotHeldUpByAFailingField_data();
    void closingIsNotHeldUpByAFailingField();
    void anUnloadedTerminalStaysSilent();
    void theNextTerminalOpensAsTheLastOneWasLeft();
    void closedMaximisedItReopensSoWithItsPlaceKept();
    void aMinimisedTerminalComesForward();

    void logAllDataIsRememberedAndTicked();
    void timer1ClosesAnIdleLog();
    void theMenuWorksByKeysAlone();
    void itsPicture();

private:
    QLineEdit* Field(const QString& name) const { return m_window->findChild<QLineEdit*>(name); }
    QPlainTextEdit* Pane() const { return m_window->findChild<QPlainTextEdit*>(u"rtbMon"_s); }
    QString Shown() const { return Pane()->toPlainText(); }
    QAction* Entry(const QString& name) const { return m_window->findChild<QAction*>(name); }
    QString Ini(const QString& key, const QString& section = u"TERMINAL"_s) const {
        return m_ini->GetIniString(section, key, u"absent"_s);
    }
    static bool IsLogHeldOpen() {
        const QFileInfoList open = QDir(u"/proc/self/fd"_s).entryInfoList(QDir::Files);
        return std::ranges::any_of(
            open, [](const QFileInfo& file) { return file.symLinkTarget().endsWith(u"20261121.TXT"_s); });
    }
    void Make() {
        m_session->Open();
        m_window = std::make_unique<frmTerm>(*m_ini, m_messages, m_link, *m_session, m_folder->Program());
        connect(m_window.get(), &frmTerm::ImUnloading, this, [this] { ++m_unloadings; });
    }
    void Open() {
        Make();
        m_window->show();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        QTRY_COMPARE(Focus(), u"txtTx"_s);
    }
    QColor ColourAt(qsizetype position) const {
        QTextCursor cursor(Pane()->document());
        cursor.setPosition(static_cast<int>(position) + 1);
        return cursor.charFormat().foreground().color();
    }

    std::unique_ptr<TemporaryProgramFolder> m_folder;
    std::unique_ptr<clsIni> m_ini;
    std::unique_ptr<Station> m_station;
    RecordingPresenter m_presenter;
    mb m_messages{m_presenter};
    RecordingLink m_link;
    TestClock m_clock;
    std::unique_ptr<TerminalSession> m_session;
    std::unique_ptr<frmTerm> m_window;
    int m_unloadings = 0;
};

void frmTermTest::init() {
    m_folder = std::make_unique<TemporaryProgramFolder>();
    m_ini = std::make_unique<clsIni>(m_folder->IniFile());
    m_station = std::make_unique<Station>(*m_ini);
    m_station->setStrCallsign(u"XQ9ZZ-1"_s);
    m_session = std::make_unique<TerminalSession>(*m_ini, m_clock, m_folder->Program(), *m_station, m_link,
                                                  m_messages, ProgramVersion{2, 4, 2});
    m_presenter.messages.clear();
    m_presenter.whileShown = nullptr;
    m_link.sent.clear();
    m_link.isConnected = true;
    m_link.portCount = 0;
    m_clock.Set(DateOf(2026, 11, 21) + 0.5);
    m_clock.SetOffsetHours(0);
    m_unloadings = 0;
}

void frmTermTest::cleanup() {
    m_window.reset();
    QFontDatabase::removeAllApplicationFonts();
}

void frmTermTest::aFirstStartWritesItsKeys() {
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

void frmTermTest::itOpensHiddenAndFillsItsFields() {
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

void frmTermTest::whatArrivesWhileHiddenIsKeptAndLogged() {
    m_ini->SaveIniString(u"TERMINAL"_s, u"LOGGING"_s, u"True"_s);
    Make();
    QVERIFY(Entry(u"mnuLogAllData"_s)->isChecked());
    QCOMPARE(m_folder->Read(u"LOGS/20261121.TXT"_s), "");
    for (int i = 0; i < 1000; ++i)
        m_session->Take(QByteArray::number(i) + "\r\n", 2);
    QCOMPARE(m_folder->Read(u"LOGS/20261121.TXT"_s).count('\n'), 1000);
    m_window->show();
    QVERIFY(Shown().endsWith(u"\n998\n999\n"_s));
    QVERIFY(Shown().size() <= 10000);
}

void frmTermTest::transmittedFramesAreCyanAndAllElseGreen() {
    Open();
    for (const qint16 kind : QList<qint16>{0, 2, 3, 4, 5})
        m_window->ShowData(QByteArray(1, static_cast<char>('0' + kind)) + "\r\n", kind);
    QTRY_COMPARE(Shown(), u"0\n2\n3\n4\n5\n"_s);
    for (qsizetype i = 0; i < Shown().size(); i += 2)
        QCOMPARE(ColourAt(i), Shown()[i] == u'4' ? QColor(0, 255, 255) : QColor(0, 255, 0));
}

void frmTermTest::shortFormsNeverReachIt() {
    m_ini->SaveIniString(u"TERMINAL"_s, u"LOGGING"_s, u"True"_s);
    Open();
    m_session->Take("short\r\n", 1);
    m_session->Take("x\r\n", 0);
    QTRY_COMPARE(Shown(), u"x\n"_s);
    QCOMPARE(m_folder->Read(u"LOGS/20261121.TXT"_s), "x\r\n");
}

void frmTermTest::textFromTheAirIsNeverMarkup() {
    Open();
    m_window->ShowData("<b>bold</b> <img src=\"/etc/passwd\"> &amp; {\\rtf1 x}\r\n", 2);
    QTRY_COMPARE(Shown(), u"<b>bold</b> <img src=\"/etc/passwd\"> &amp; {\\rtf1 x}\n"_s);
}

void frmTermTest::theLogHoldsTheBytesOfThePane() {
    m_ini->SaveIniString(u"TERMINAL"_s, u"LOGGING"_s, u"True"_s);
    Open();
    m_session->Take("Gr\xfc\xdf\x65 5 \x80\r\n\r\n", 2);
    m_session->Take("*** AGWPE V2005.127\r\n", 0);
    QTRY_COMPARE(Shown(), QStringLiteral(u"Gr\u00fc\u00dfe 5 \u20ac\n\n*** AGWPE V2005.127\n"));
    QCOMPARE(m_folder->Read(u"LOGS/20261121.TXT"_s), "Gr\xfc\xdf\x65 5 \x80\r\n\r\n*** AGWPE V2005.127\r\n");
}

void frmTermTest::aFloodTouchesThePaneOnceATurn() {
    Open();
    m_window->ShowData("before\r\n", 2);
    QTRY_COMPARE(Shown(), u"before\n"_s);
    const QSignalSpy touched(Pane()->document(), &QTextDocument::contentsChanged);
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < 50'000; ++i)
        m_window->ShowData("12:00:01R XQ9ZZ-1>APRS,WIDE2-2 Port=1 <UI Len=42>:\r\nT#001,10,20\r\n\r\n",
                           static_cast<qint16>(i % 2 == 0 ? 2 : 4));
    m_window->ShowData("after\r\n", 2);
    QCOMPARE(touched.count(), 0);
    QTRY_VERIFY(Shown().endsWith(u"after\n"_s));
    QCOMPARE(touched.count(), 1);
    QVERIFY(timer.elapsed() < 10'000);
    QVERIFY(Shown().size() <= 10200);
    for (int i = 0; i < 30; ++i) { // in parts, so that the pane is cut and not filled anew
        for (int j = 0; j < 20; ++j)
            m_window->ShowData(QByteArray::number(i * 100 + j) + " line\r\n", 2);
        QCoreApplication::processEvents();
    }
    QTRY_VERIFY(Shown().endsWith(u"\n2918 line\n2919 line\n"_s));
}

void frmTermTest::theNewestLineIsInViewUnlessScrolledBack() {
    Open();
    const auto add = [&](int from, int to) {
        for (int i = from; i < to; ++i)
            m_window->ShowData(QByteArray::number(i) + " is the line's number\r\n", 2);
        QTRY_VERIFY(Shown().contains(QString::number(to - 1) + u" is the"_s));
    };
    add(1000, 1200);
    QScrollBar* bar = Pane()->verticalScrollBar();
    QVERIFY(bar->maximum() > 0);
    QCOMPARE(bar->value(), bar->maximum());
    add(1200, 1210);
    QCOMPARE(bar->value(), bar->maximum());

    bar->setValue(150); // the user scrolls back
    const auto topLine = [&] { return Pane()->cursorForPosition(QPoint(0, 0)).block().text(); };
    QCOMPARE(topLine(), u"1150 is the line's number"_s);
    add(1210, 1300);
    QVERIFY(bar->value() < bar->maximum());
    QCOMPARE(topLine(), u"1150 is the line's number"_s);

    bar->setValue(250);
    add(1300, 1400); // the start is cut: what the user reads moves up in the pane, but not on the screen
    QVERIFY(!Shown().contains(u"1150 is"_s));
    QCOMPARE(topLine(), u"1250 is the line's number"_s);
    add(1400, 1600); // now that is cut, too
    QCOMPARE(bar->value(), 0);
    bar->setValue(bar->maximum());
    add(1600, 1700);
    QCOMPARE(bar->value(), bar->maximum());
}

void frmTermTest::aSelectionSurvivesNewTextAndCanBeCopied() {
    Open();
    m_window->ShowData("first\r\nsecond\r\n", 2);
    QTRY_COMPARE(Shown(), u"first\nsecond\n"_s);
    QVERIFY(!Pane()->textCursor().hasSelection());
    Pane()->setFocus();
    Press(Qt::Key_A, Qt::ControlModifier);
    m_window->ShowData("third\r\n", 2);
    QTRY_COMPARE(Shown(), u"first\nsecond\nthird\n"_s);
    Press(Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QApplication::clipboard()->text(), u"first\nsecond\n"_s);
    Press(Qt::Key_Home, Qt::ControlModifier);
    Press(Qt::Key_End, Qt::ShiftModifier);
    Press(Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QApplication::clipboard()->text(), u"first"_s);
    m_window->ShowData(QByteArray(12000, 'x'), 2); // cuts nothing yet
    m_window->ShowData("y", 2);                    // cuts all that was selected
    QTRY_VERIFY(Shown().endsWith(u'y'));
    QVERIFY(!Pane()->textCursor().hasSelection());
    m_window->ShowData("z", 2);
    QTRY_VERIFY(Shown().endsWith(u'z'));
    QVERIFY(!Pane()->textCursor().hasSelection());
    const QString before = Shown();
    Type(u"x"_s);
    Press(Qt::Key_Delete);
    QCOMPARE(Shown(), before);
}

void frmTermTest::clearEmptiesThePane() {
    Open();
    m_window->ShowData("gone\r\n", 2);
    QTRY_COMPARE(Shown(), u"gone\n"_s);
    Entry(u"mnuClear"_s)->trigger();
    QTRY_COMPARE(Shown(), QString());
    m_window->ShowData("new\r\n", 2);
    QTRY_COMPARE(Shown(), u"new\n"_s);
}

void frmTermTest::theFontIsOfFixedPitchAndSnapped() {
    m_folder->Write(u"vornak.fon"_s, "this is no font");
    Open();
    const double twipsPerPixel = 1440.0 / m_window->logicalDpiX();
    const double pixels = Pane()->font().pointSizeF() * (1440.0 / twipsPerPixel) / 72.0;
    QVERIFY((QList<double>{10, 12, 14, 16, 22, 27}.contains(std::round(pixels * 1000) / 1000)));
    QVERIFY(QFontInfo(Pane()->font()).fixedPitch());
    QVERIFY(m_presenter.messages.isEmpty());
}

void frmTermTest::theFontBesideTheProgramIsTaken() {
    // One letter, 14 pixels high.
    m_folder->Write(u"vornak.fon"_s,
                    "STARTFONT 2.1\nFONT -x-VORNAK-Medium-R-Normal--14-140-72-72-C-70-ISO10646-1\n"
                    "SIZE 14 72 72\nFONTBOUNDINGBOX 7 14 0 -3\nSTARTPROPERTIES 6\nFAMILY_NAME \"VORNAK\"\n"
                    "CHARSET_REGISTRY \"ISO10646\"\nCHARSET_ENCODING \"1\"\n"
                    "PIXEL_SIZE 14\nFONT_ASCENT 11\nFONT_DESCENT 3\nENDPROPERTIES\nCHARS 1\nSTARTCHAR A\n"
                    "ENCODING 65\nSWIDTH 500 0\nDWIDTH 7 0\nBBX 7 14 0 -3\nBITMAP\n" +
                        QByteArray("FE\n").repeated(14) + "ENDCHAR\nENDFONT\n");
    QVERIFY(!QFontDatabase::hasFamily(u"VORNAK"_s));
    Open();
    QVERIFY(QFontDatabase::hasFamily(u"VORNAK"_s));
    QCOMPARE(Pane()->font().family(), u"VORNAK"_s);
    QCOMPARE(Field(u"txtTx"_s)->font().family(), u"VORNAK"_s);
    QVERIFY(m_presenter.messages.isEmpty());
}

void frmTermTest::theTransmitLineGrowsWithTheWindow() {
    Open();
    const auto place = [&](const QWidget* widget) {
        return QRect(widget->mapTo(m_window.get(), QPoint()), widget->size());
    };
    const QSize window = m_window->size();
    const QRect pane = place(Pane());
    const QRect line = place(Field(u"txtTx"_s));
    QCOMPARE(line.left(), pane.left());
    QCOMPARE(line.width(), pane.width());
    QCOMPARE(pane.left(), window.width() - 1 - pane.right()); // the same margin on both sides
    m_window->resize(window + QSize(150, 80));
    QTRY_COMPARE(place(Field(u"txtTx"_s)), line.translated(0, 80).adjusted(0, 0, 150, 0));
    QCOMPARE(place(Pane()), pane.adjusted(0, 0, 150, 80));
}

void frmTermTest::tabGoesThroughTheWindowAndEverythingIsSentByKeysAlone() {
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

void frmTermTest::enterSendsTheLine() {
    Open();
    Type(u"Hello, World"_s);
    Press(Qt::Key_Return);
    QCOMPARE(Field(u"txtTx"_s)->text(), QString());
    Press(Qt::Key_Enter); // an empty box is an empty line
    QCOMPARE(m_link.sent, (QList<RecordingLink::Sent>{{1, u"XQ9ZZ-1"_s, u"CQ QIRAN-1"_s, u"Hello, World\r"_s},
                                                      {1, u"XQ9ZZ-1"_s, u"CQ QIRAN-1"_s, u"\r"_s}}));
    QVERIFY(m_presenter.messages.isEmpty());
}

void frmTermTest::enterWithoutConnectionWarnsAndSendsOnce() {
    m_link.isConnected = false;
    Open();
    Type(u"hello"_s);
    Press(Qt::Key_Return);
    QCOMPARE(m_presenter.Texts(), QStringList{u"To be able to transmit, you must be connected to AGWPE."_s});
    QCOMPARE(m_presenter.messages[0].owner, m_window.get());
    QCOMPARE(m_link.Data(), QStringList{u"hello\r"_s});
    QCOMPARE(Field(u"txtTx"_s)->text(), QString());
}

void frmTermTest::enterWithoutCallsignSendsNothing() {
    m_station->setStrCallsign(QString());
    m_link.isConnected = false;
    Open();
    Type(u"hello"_s);
    Press(Qt::Key_Return);
    QCOMPARE(m_presenter.messages.size(), 1);
    QVERIFY(m_presenter.messages[0].text.contains(u"your callsign"_s));
    QVERIFY(m_link.sent.isEmpty());
}

void frmTermTest::controlRBringsTheLastLineBack() {
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

void frmTermTest::the72ndCharacterSendsTheLine() {
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

void frmTermTest::aPasteOf5000CharactersIsSentInLines() {
    Open();
    QString text;
    for (int i = 0; text.size() < 5000; ++i)
        text += QStringLiteral("word%1").arg(i) + (i % 23 == 22 ? u"\r\n"_s : u" "_s);
    text.truncate(5000);
    Paste(text);
    QString sent;
    for (const QString& line : m_link.Data()) {
        QVERIFY(line.size() <= 73 && line.endsWith(u'\r') && line.count(u'\r') == 1 && !line.contains(u'\n'));
        sent += line.chopped(1) + u' ';
    }
    QCOMPARE((sent + Field(u"txtTx"_s)->text()).simplified(), text.simplified());
    QVERIFY(Field(u"txtTx"_s)->text().size() < 72);
}

void frmTermTest::aPasteOfA200CharacterWordIsSentInLines() {
    Open();
    Paste(QString(200, u'w'));
    QCOMPARE(m_link.Data(), (QStringList{QString(72, u'w') + u'\r', QString(72, u'w') + u'\r'}));
    QCOMPARE(Field(u"txtTx"_s)->text(), QString(56, u'w'));
}

void frmTermTest::beaconsAreSentByTheirAccessKeys() {
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

void frmTermTest::everyFieldIsSelectedWhole() {
    Open();
    Type(u"a line"_s);
    for (const QString& name : {u"txtTo"_s, u"txtVia"_s, u"txtPort"_s, u"txtTx"_s}) {
        QTest::mouseClick(Field(name), Qt::LeftButton);
        QCOMPARE(Focus(), name);
        QVERIFY(!Field(name)->text().isEmpty());
        QCOMPARE(Field(name)->selectedText(), Field(name)->text());
    }
}

void frmTermTest::theToFieldIsChecked() {
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

void frmTermTest::aPastedLowerCaseCallsignIsRefused() {
    Open();
    Press(Qt::Key_T, Qt::AltModifier);
    Paste(u"qst"_s);
    Press(Qt::Key_Tab);
    QCOMPARE(m_presenter.Texts(), QStringList{u"That is not a valid AX25 address."_s});
    QCOMPARE(Focus(), u"txtTo"_s);
    QCOMPARE(Field(u"txtTo"_s)->text(), u"qst"_s);
}

void frmTermTest::aButtonDoesNotActWhileAFieldFails() {
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

void frmTermTest::theViaFieldIsBroughtIntoForm_data() {
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

void frmTermTest::theViaFieldIsBroughtIntoForm() {
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

void frmTermTest::theViaFieldNamesTheWrongPiece() {
    Open();
    Press(Qt::Key_V, Qt::AltModifier);
    Press(Qt::Key_A, Qt::ControlModifier);
    Paste(u"RELAY wide"_s);
    Press(Qt::Key_Tab);
    QCoreApplication::processEvents();
    QCOMPARE(m_presenter.Texts(), QStringList{u"wide is not a valid AX25 address."_s});
    QCOMPARE(m_presenter.messages[0].style, MessageStyle::Critical);
    QCOMPARE(Focus(), u"txtVia"_s);
    QCOMPARE(Field(u"txtVia"_s)->text(), u"RELAY wide"_s);
}

void frmTermTest::thePortIsHeldAgainstTheEngines_data() {
    QTest::addColumn<QString>("entry");
    QTest::addColumn<bool>("isTyped");
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

void frmTermTest::thePortIsHeldAgainstTheEngines() {
    QFETCH(const QString, entry);
    QFETCH(const bool, isTyped);
    QFETCH(const int, portCount);
    QFETCH(const int, sentOn);
    m_link.portCount = portCount;
    Open();
    Press(Qt::Key_P, Qt::AltModifier);
    QCOMPARE(Focus(), u"txtPort"_s);
    Replace(isTyped ? entry : QString());
    if (!isTyped)
        Paste(entry);
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

void frmTermTest::anActiveTerminalHasItsCaretInTheTransmitLine() {
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

void frmTermTest::aFailingFieldKeepsTheFocusWhenTheWindowComesBack() {
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
    QTest::qWait(300);
    QCOMPARE(m_presenter.messages.size(), 1);
}

void frmTermTest::everyWayOfClosingUnloads_data() {
    QTest::addColumn<int>("way");
    QTest::newRow("close box") << 0;
    QTest::newRow("Escape") << 1;
    QTest::newRow("Escape in the pane") << 2;
    QTest::newRow("menu") << 3;
    QTest::newRow("the program's own close()") << 4;
    QTest::newRow("the program ends and deletes it") << 5;
    QTest::newRow("the program ends and it was never shown") << 6;
}

void frmTermTest::everyWayOfClosingUnloads() {
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

void frmTermTest::closingIsNotHeldUpByAFailingField_data() {
    QTest::addColumn<int>("way");
    QTest::addColumn<int>("messages");
    QTest::newRow("close box") << 0 << 1;
    QTest::newRow("Escape") << 1 << 0;
    QTest::newRow("menu") << 2 << 0;
    QTest::newRow("the program ends") << 3 << 0;
}

void frmTermTest::closingIsNotHeldUpByAFailingField() {
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

void frmTermTest::anUnloadedTerminalStaysSilent() {
    m_ini->SaveIniString(u"TERMINAL"_s, u"LOGGING"_s, u"True"_s);
    Open();
    Press(Qt::Key_Escape);
    m_session->Take("late\r\n", 2);
    QCOMPARE(m_folder->Read(u"LOGS/20261121.TXT"_s), "");
    m_window->Unload();
    QCOMPARE(m_unloadings, 1);
}

void frmTermTest::theNextTerminalOpensAsTheLastOneWasLeft() {
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

void frmTermTest::closedMaximisedItReopensSoWithItsPlaceKept() {
    Open();
    m_window->setGeometry(50, 60, 700, 500);
    const QPoint place = m_window->pos();
    QTest::qWait(150); // a place counts once the window has stood there for a moment
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

void frmTermTest::aMinimisedTerminalComesForward() {
    Open();
    m_window->showMinimized();
    QTRY_VERIFY(m_window->isMinimized());
    m_window->BringForward();
    QTRY_VERIFY(!m_window->isMinimized());
    QVERIFY(m_window->isVisible());
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
}

void frmTermTest::logAllDataIsRememberedAndTicked() {
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

void frmTermTest::timer1ClosesAnIdleLog() {
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

void frmTermTest::theMenuWorksByKeysAlone() {
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

void frmTermTest::itsPicture() {
    if (Screenshots::Folder().isEmpty())
        QSKIP("no pictures asked for");
    Open();
    m_window->ShowData(
        "*** AGW-Connected to - localhost\r\n*** AGWPE V2005.127\r\n*** Port1 first soundcard\r\n", 0);
    for (int i = 0; i < 6; ++i) {
        m_window->ShowData("12:00:01R XQ9ZZ-1>APRS,WIDE2-2 Port=1 <UI Len=42 PF=0>:\r\n"
                           "T#001,10,20,30,40,0,0,00101111,0\r\n\r\n",
                           2);
        m_window->ShowData(
            "12:00:09T XQ9ZZ>CQ,QIRAN-1 Port=1 <UI Len=12 PF=0>:\r\nHello, Gr\xfc\xdf\x65\r\n\r\n", 4);
    }
    Type(u"A line to be sent"_s);
    QTRY_VERIFY(Shown().contains(u"Hello"_s));
    Screenshots::Take(*m_window, u"frmTerm"_s);
}

QTEST_MAIN(frmTermTest)
#include "frmTermTest.moc"
