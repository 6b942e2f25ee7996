#include "telemetry/monitor/MonitorPane.h"

#include "foundation/text/Text.h"
#include "support/Screenshots.h"
#include "telemetry/TelemetryRoom.h"
#include "telemetry/monitor/DisplayKind.h"
#include "telemetry/monitor/MonitorText.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>

class MonitorPaneTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();
    void showsWhatIsThereAtFirst();
    void showsTheHeldTextThroughManyCuts();
    void isTouchedOnceATurn();
    void airIsNeverMarkup();
    void allBytesAreShown();
    void isReadOnlyButCanBeCopied();
    void newestLineStaysInView();
    void scrolledBackStaysWhereTheUserReads();
    void comingBackToTheEndFollowsAgain();
    void resizingKeepsFollowing();
    void disabledPaneStillShowsNewText();
    void selectionOutlivesNewText();

private:
    void Append(const QByteArray& text);
    QString Held() const;
    void Fill(int lines);
    QString TopLine() const { return m_pane->cursorForPosition(QPoint(5, 5)).block().text(); }

    std::unique_ptr<MonitorText> m_text;
    std::unique_ptr<MonitorPane> m_pane;
};

void MonitorPaneTest::init() {
    m_text = std::make_unique<MonitorText>();
    m_pane = std::make_unique<MonitorPane>(*m_text);
    m_pane->resize(600, 200);
    m_pane->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_pane.get()));
}

void MonitorPaneTest::cleanup() {
    m_pane.reset();
    m_text.reset();
}

void MonitorPaneTest::Append(const QByteArray& text) {
    m_text->Append(text);
    QCoreApplication::processEvents();
}

QString MonitorPaneTest::Held() const {
    return Text::FromBytes(m_text->Text()).replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
}

void MonitorPaneTest::Fill(int lines) {
    for (int i = 0; i < lines; ++i)
        m_text->Append("line " + QByteArray::number(i) + "\r\n");
    QCoreApplication::processEvents();
}

void MonitorPaneTest::showsWhatIsThereAtFirst() {
    m_text->Append(QByteArray("*** before\r\n"));
    const MonitorPane late(*m_text);
    QCOMPARE(late.objectName(), QStringLiteral("txtMon"));
    QCOMPARE(late.toPlainText(), QStringLiteral("*** before\n"));
}

void MonitorPaneTest::showsTheHeldTextThroughManyCuts() {
    for (int i = 0; i < 2000; ++i) {
        m_text->Append(QByteArray(i % 97, 'a') + "\r\n");
        if (i % 3 == 0)
            QCoreApplication::processEvents();
        if (i % 3 == 0)
            QCOMPARE(m_pane->toPlainText(), Held());
    }
    QVERIFY(m_text->Begin() > 50000);
    m_text->Append(QByteArray(30000, 'b') + "\r\n"); // more than the pane showed in one turn
    m_text->Append(QByteArray("c\r\n"));
    QCoreApplication::processEvents();
    QCOMPARE(m_pane->toPlainText(), Held());
}

void MonitorPaneTest::isTouchedOnceATurn() {
    QSignalSpy touched(m_pane.get(), &QPlainTextEdit::textChanged);
    Fill(5000);
    QCOMPARE(touched.size(), 1);
    QCOMPARE(m_pane->toPlainText(), Held());
}

void MonitorPaneTest::airIsNeverMarkup() {
    Append("<b>bold</b> <img src=\"file:///etc/passwd\"> &amp;\r\n");
    QCOMPARE(m_pane->toPlainText(), QStringLiteral("<b>bold</b> <img src=\"file:///etc/passwd\"> &amp;\n"));
}

void MonitorPaneTest::allBytesAreShown() {
    TelemetryRoom room;
    const MonitorPane pane(room.monitor);
    QByteArray information;
    for (int byte = 0; byte < 256; ++byte)
        information.append(static_cast<char>(byte));
    room.intake.AddToMonitor(QByteArrayView(information), DisplayKind::Status);
    QCoreApplication::processEvents();
    QString expected =
        Text::FromBytes(room.monitor.Text()).replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    QCOMPARE(pane.toPlainText(), expected.replace(QChar(QChar::Nbsp), QChar(u' '))); // as toPlainText has it
}

void MonitorPaneTest::isReadOnlyButCanBeCopied() {
    Append("one\r\ntwo\r\n");
    m_pane->setFocus();
    QTest::keyClicks(m_pane.get(), QStringLiteral("typed"));
    QTest::keyClick(m_pane.get(), Qt::Key_Delete);
    QCOMPARE(m_pane->toPlainText(), QStringLiteral("one\ntwo\n"));
    QTest::keySequence(m_pane.get(), QKeySequence::SelectAll);
    QTest::keySequence(m_pane.get(), QKeySequence::Copy);
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("one\ntwo\n"));
}

void MonitorPaneTest::newestLineStaysInView() {
    Fill(300);
    QScrollBar* bar = m_pane->verticalScrollBar();
    QVERIFY(bar->maximum() > 0);
    QCOMPARE(bar->value(), bar->maximum());
    Fill(20);
    QCOMPARE(bar->value(), bar->maximum());
    Fill(1500); // beyond the bound
    QCOMPARE(bar->value(), bar->maximum());
}

void MonitorPaneTest::scrolledBackStaysWhereTheUserReads() {
    Fill(900);
    QScrollBar* bar = m_pane->verticalScrollBar();
    bar->setValue(bar->maximum() - 100);
    const QString top = TopLine();
    Append("new\r\n");
    QCOMPARE(TopLine(), top);
    while (m_text->Begin() == 0) { // until the head of the text is cut off
        Append(QByteArray(200, 'x') + "\r\n");
        QCOMPARE(TopLine(), top);
    }
    QVERIFY(bar->value() < bar->maximum());
    QCOMPARE(m_pane->toPlainText(), Held());
}

void MonitorPaneTest::comingBackToTheEndFollowsAgain() {
    Fill(300);
    QScrollBar* bar = m_pane->verticalScrollBar();
    bar->setValue(10);
    Append("new\r\n");
    QCOMPARE(bar->value(), 10);
    bar->setValue(bar->maximum());
    Fill(10);
    QCOMPARE(bar->value(), bar->maximum());
}

void MonitorPaneTest::resizingKeepsFollowing() {
    Fill(300);
    m_pane->resize(300, 100);
    QCoreApplication::processEvents();
    QCOMPARE(m_pane->verticalScrollBar()->value(), m_pane->verticalScrollBar()->maximum());
    Fill(10);
    QCOMPARE(m_pane->verticalScrollBar()->value(), m_pane->verticalScrollBar()->maximum());
}

void MonitorPaneTest::disabledPaneStillShowsNewText() {
    m_pane->setEnabled(false);
    Append("*** AGW-Disconnected\r\n");
    QCOMPARE(m_pane->toPlainText(), QStringLiteral("*** AGW-Disconnected\n"));
}

void MonitorPaneTest::selectionOutlivesNewText() {
    Append("first\r\nsecond\r\n");
    QTextCursor cursor = m_pane->textCursor();
    cursor.setPosition(6);
    cursor.setPosition(12, QTextCursor::KeepAnchor);
    m_pane->setTextCursor(cursor);
    QCOMPARE(m_pane->textCursor().selectedText(), QStringLiteral("second"));
    Append("third\r\n");
    QCOMPARE(m_pane->textCursor().selectedText(), QStringLiteral("second"));
}

QTEST_MAIN(MonitorPaneTest)
#include "MonitorPaneTest.moc"
