#include "station/TerminalRig.h"
#include "support/Screenshots.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFontDatabase>
#include <QFontInfo>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>

using namespace Qt::StringLiterals;
using namespace Keys;

class frmTermPaneTest : public QObject, private TerminalRig {
    Q_OBJECT
private Q_SLOTS:
    void init() { Prepare(); }
    void cleanup() { TakeDown(); }

    void whatArrivesWhileHiddenIsKeptAndLogged();
    void transmittedFramesAreCyanAndAllElseGreen();
    void shortFormsNeverReachIt();
    void textFromTheAirIsNeverMarkup();
    void aFloodTouchesThePaneOnceATurn();
    void theNewestLineIsInViewUnlessScrolledBack();
    void theNewestLineStaysInViewWhenTheWindowChangesItsSize();
    void aWindowMaximisedAndRestoredStaysWhereTheUserReads();
    void afterClearTheNewestLineIsInViewAgain();
    void aSelectionSurvivesNewTextAndCanBeCopied();
    void clearEmptiesThePane();
    void theFontIsOfFixedPitchAndSnapped();
    void theFontBesideTheProgramIsTaken();
    void theTransmitLineGrowsWithTheWindow();

private:
    void Add(int from, int to);
    QString TopLine() const { return Pane()->cursorForPosition(QPoint(0, 0)).block().text(); }
};

void frmTermPaneTest::whatArrivesWhileHiddenIsKeptAndLogged() {
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

void frmTermPaneTest::transmittedFramesAreCyanAndAllElseGreen() {
    Open();
    for (const qint16 kind : QList<qint16>{0, 2, 3, 4, 5})
        m_window->ShowData(QByteArray(1, static_cast<char>('0' + kind)) + "\r\n", kind);
    QTRY_COMPARE(Shown(), u"0\n2\n3\n4\n5\n"_s);
    for (qsizetype i = 0; i < Shown().size(); i += 2)
        QCOMPARE(ColourAt(i), Shown()[i] == u'4' ? QColor(0, 255, 255) : QColor(0, 255, 0));

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

void frmTermPaneTest::shortFormsNeverReachIt() {
    m_ini->SaveIniString(u"TERMINAL"_s, u"LOGGING"_s, u"True"_s);
    Open();
    m_session->Take("short\r\n", 1);
    m_session->Take("x\r\n", 0);
    QTRY_COMPARE(Shown(), u"x\n"_s);
    QCOMPARE(m_folder->Read(u"LOGS/20261121.TXT"_s), "x\r\n");
}

void frmTermPaneTest::textFromTheAirIsNeverMarkup() {
    Open();
    m_window->ShowData("<b>bold</b> <img src=\"/etc/passwd\"> &amp; {\\rtf1 x}\r\n", 2);
    QTRY_COMPARE(Shown(), u"<b>bold</b> <img src=\"/etc/passwd\"> &amp; {\\rtf1 x}\n"_s);
}

void frmTermPaneTest::aFloodTouchesThePaneOnceATurn() {
    Open();
    m_window->ShowData("before\r\n", 2);
    QTRY_COMPARE(Shown(), u"before\n"_s);
    const QSignalSpy touched(Pane()->document(), &QTextDocument::contentsChanged);
    for (int i = 0; i < 50'000; ++i)
        m_window->ShowData("12:00:01R XQ9ZZ-1>APRS,WIDE2-2 Port=1 <UI Len=42>:\r\nT#001,10,20\r\n\r\n",
                           static_cast<qint16>(i % 2 == 0 ? 2 : 4));
    m_window->ShowData("after\r\n", 2);
    QCOMPARE(touched.count(), 0);
    QTRY_VERIFY(Shown().endsWith(u"after\n"_s));
    QCOMPARE(touched.count(), 1);
    QVERIFY(Shown().size() <= 10200);
    for (int i = 0; i < 30; ++i) { // in parts, so that the pane is cut and not filled anew
        for (int j = 0; j < 20; ++j)
            m_window->ShowData(QByteArray::number(i * 100 + j) + " line\r\n", 2);
        QCoreApplication::processEvents();
    }
    QTRY_VERIFY(Shown().endsWith(u"\n2918 line\n2919 line\n"_s));
}

void frmTermPaneTest::Add(int from, int to) {
    for (int i = from; i < to; ++i)
        m_window->ShowData(QByteArray::number(i) + " is the line's number\r\n", 2);
    QTRY_VERIFY(Shown().contains(QString::number(to - 1) + u" is the"_s));
}

void frmTermPaneTest::theNewestLineStaysInViewWhenTheWindowChangesItsSize() {
    Open();
    const QScrollBar* bar = Pane()->verticalScrollBar();
    const QByteArray wide = QByteArray("seven words of a very long line ").repeated(5) + "\r\n";
    for (int i = 0; i < 60; ++i)
        m_window->ShowData(wide, 2);
    Add(1000, 1001);
    QTRY_VERIFY(bar->maximum() > 0 && bar->value() == bar->maximum());
    m_window->showMaximized();
    QTRY_VERIFY(m_window->isMaximized() && m_window->width() > 790);
    Add(1001, 1002);
    QCOMPARE(bar->value(), bar->maximum());
    m_window->showNormal();
    QTRY_VERIFY(!m_window->isMaximized() && m_window->width() < 790);
    QCOMPARE(bar->value(), bar->maximum());
    Add(1002, 1012);
    QCOMPARE(bar->value(), bar->maximum());
    m_window->resize(m_window->minimumSizeHint()); // the lines wrap more often
    QCoreApplication::processEvents();
    Add(1012, 1030);
    QCOMPARE(bar->value(), bar->maximum());
}

void frmTermPaneTest::aWindowMaximisedAndRestoredStaysWhereTheUserReads() {
    Open();
    Add(1000, 1200);
    Pane()->verticalScrollBar()->setValue(50);
    m_window->showMaximized();
    QTRY_VERIFY(m_window->isMaximized());
    Add(1200, 1210);
    QCOMPARE(TopLine(), u"1050 is the line's number"_s);
    m_window->showNormal();
    QTRY_VERIFY(!m_window->isMaximized());
    Add(1210, 1220);
    QCOMPARE(TopLine(), u"1050 is the line's number"_s);
}

void frmTermPaneTest::afterClearTheNewestLineIsInViewAgain() {
    Open();
    Add(1000, 1200);
    QScrollBar* bar = Pane()->verticalScrollBar();
    bar->setValue(50);
    Entry(u"mnuClear"_s)->trigger();
    QTRY_COMPARE(Shown(), QString());
    Add(1000, 1200);
    QVERIFY(bar->maximum() > 0);
    QCOMPARE(bar->value(), bar->maximum());
}

void frmTermPaneTest::theNewestLineIsInViewUnlessScrolledBack() {
    Open();
    Add(1000, 1200);
    QScrollBar* bar = Pane()->verticalScrollBar();
    QVERIFY(bar->maximum() > 0);
    QCOMPARE(bar->value(), bar->maximum());
    Add(1200, 1210);
    QCOMPARE(bar->value(), bar->maximum());

    bar->setValue(150); // the user scrolls back
    QCOMPARE(TopLine(), u"1150 is the line's number"_s);
    Add(1210, 1300);
    QVERIFY(bar->value() < bar->maximum());
    QCOMPARE(TopLine(), u"1150 is the line's number"_s);

    bar->setValue(250);
    Add(1300, 1400); // the start is cut: what the user reads moves up in the pane, but not on the screen
    QVERIFY(!Shown().contains(u"1150 is"_s));
    QCOMPARE(TopLine(), u"1250 is the line's number"_s);
    Add(1400, 1600); // now that is cut, too
    QCOMPARE(bar->value(), 0);
    bar->setValue(bar->maximum());
    Add(1600, 1700);
    QCOMPARE(bar->value(), bar->maximum());
}

void frmTermPaneTest::aSelectionSurvivesNewTextAndCanBeCopied() {
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

void frmTermPaneTest::clearEmptiesThePane() {
    Open();
    m_window->ShowData("gone\r\n", 2);
    QTRY_COMPARE(Shown(), u"gone\n"_s);
    Entry(u"mnuClear"_s)->trigger();
    QTRY_COMPARE(Shown(), QString());
    m_window->ShowData("new\r\n", 2);
    QTRY_COMPARE(Shown(), u"new\n"_s);
}

void frmTermPaneTest::theFontIsOfFixedPitchAndSnapped() {
    m_folder->Write(u"vornak.fon"_s, "this is no font");
    Open();
    const double twipsPerPixel = 1440.0 / m_window->logicalDpiX();
    const double pixels = Pane()->font().pointSizeF() * (1440.0 / twipsPerPixel) / 72.0;
    QVERIFY((QList<double>{10, 12, 14, 16, 22, 27}.contains(std::round(pixels * 1000) / 1000)));
    QVERIFY(QFontInfo(Pane()->font()).fixedPitch());
    QVERIFY(m_presenter.messages.isEmpty());
}

void frmTermPaneTest::theFontBesideTheProgramIsTaken() {
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

void frmTermPaneTest::theTransmitLineGrowsWithTheWindow() {
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

QTEST_MAIN(frmTermPaneTest)
#include "frmTermPaneTest.moc"
