#include "foundation/panes/FollowingPane.h"

#include <QScrollBar>
#include <QTest>
#include <QTextBlock>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

// A pane into which a test writes.
class Pane : public FollowingPane {
public:
    void Add(int lines, const QString& text = u"line"_s) {
        ChangeText([&] {
            QTextCursor cursor(document());
            cursor.movePosition(QTextCursor::End);
            for (int i = 0; i < lines; ++i)
                cursor.insertText(text + u' ' + QString::number(m_next++) + u'\n');
        });
    }
    void CutFirst(int blocks) {
        ChangeText([&] {
            QTextCursor cursor(document());
            cursor.movePosition(QTextCursor::NextBlock, QTextCursor::KeepAnchor, blocks);
            cursor.removeSelectedText();
        });
    }
    QString TopText() const { return cursorForPosition(QPoint(0, 0)).block().text(); }

private:
    int m_next = 0;
};

} // namespace

class FollowingPaneTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup() { m_window.reset(); }

    void theNewestLineIsInView();
    void itStaysInViewThroughSizes_data();
    void itStaysInViewThroughSizes();
    void itStaysInViewWhereLinesWrapOften();
    void itStaysInViewWhenTheFontGrows();
    void itIsInViewWhenTheWindowIsShownAgain();
    void scrolledBackTheTopLineStays();
    void scrolledBackWithinAWrappedLineItStays();
    void scrolledBackThroughSizesTheTopLineStays();
    void atTheEndAgainItFollows();
    void emptiedItFollows();
    void whereAllFitsItFollows();

private:
    bool IsAtEnd() const { return m_bar->value() == m_bar->maximum(); }

    std::unique_ptr<QWidget> m_window;
    Pane* m_pane = nullptr;
    QScrollBar* m_bar = nullptr;
};

void FollowingPaneTest::init() {
    m_window = std::make_unique<QWidget>();
    m_pane = new Pane;
    m_bar = m_pane->verticalScrollBar();
    auto* layout = new QVBoxLayout(m_window.get());
    layout->addWidget(m_pane);
    m_window->resize(400, 200);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
}

void FollowingPaneTest::theNewestLineIsInView() {
    m_pane->Add(10);
    m_pane->Add(100);
    QVERIFY(m_bar->maximum() > 0 && IsAtEnd());
    m_pane->CutFirst(50);
    QVERIFY(m_bar->maximum() > 0 && IsAtEnd());
}

void FollowingPaneTest::itStaysInViewThroughSizes_data() {
    QTest::addColumn<QSize>("size");
    QTest::newRow("lower") << QSize(400, 100);
    QTest::newRow("higher") << QSize(400, 350);
    QTest::newRow("narrower") << QSize(150, 200);
    QTest::newRow("wider") << QSize(700, 200);
    QTest::newRow("smaller") << QSize(150, 100);
    QTest::newRow("larger than all of the text") << QSize(400, 3000);
}

void FollowingPaneTest::itStaysInViewThroughSizes() {
    QFETCH(const QSize, size);
    m_pane->Add(100, u"some words in a line"_s);
    const QSize before = m_window->size();
    for (const QSize& next : {size, before, size}) {
        m_window->resize(next);
        QTRY_COMPARE(m_window->size(), next);
        QCoreApplication::processEvents();
        QVERIFY(IsAtEnd());
        m_pane->Add(1, u"some words in a line"_s);
        QVERIFY(IsAtEnd());
    }
}

void FollowingPaneTest::itStaysInViewWhereLinesWrapOften() {
    m_pane->Add(100, u"a word and one more "_s.repeated(20));
    QVERIFY(IsAtEnd());
    for (const int width : {150, 600, 200}) {
        m_window->resize(width, 200);
        QTRY_COMPARE(m_window->width(), width);
        m_window->grab(); // what is drawn is laid out, and the scroll bar learns of it
        m_pane->Add(1);
        m_window->grab();
        QVERIFY(IsAtEnd());
        m_pane->Add(1);
        QVERIFY(IsAtEnd());
    }
}

void FollowingPaneTest::itStaysInViewWhenTheFontGrows() {
    m_pane->Add(100);
    m_pane->zoomIn(6);
    QCoreApplication::processEvents();
    QVERIFY(IsAtEnd());
    m_pane->Add(1);
    QVERIFY(IsAtEnd());
}

void FollowingPaneTest::itIsInViewWhenTheWindowIsShownAgain() {
    m_pane->Add(50);
    m_window->hide();
    m_pane->Add(50);
    m_window->resize(300, 120);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    QVERIFY(IsAtEnd());
    m_pane->Add(1);
    QVERIFY(IsAtEnd());
}

void FollowingPaneTest::scrolledBackTheTopLineStays() {
    m_pane->Add(100);
    m_bar->setValue(40);
    m_pane->Add(10);
    QCOMPARE(m_pane->TopText(), u"line 40"_s);
    m_pane->CutFirst(30);
    QCOMPARE(m_pane->TopText(), u"line 40"_s);
    m_pane->CutFirst(30); // what the user reads is gone
    QCOMPARE(m_bar->value(), 0);
    m_pane->Add(10);
    QCOMPARE(m_bar->value(), 0);
}

void FollowingPaneTest::scrolledBackWithinAWrappedLineItStays() {
    m_pane->Add(50, u"a word and one more "_s.repeated(20));
    m_window->grab();
    m_bar->setValue(7);
    m_window->grab();
    const int top = m_pane->cursorForPosition(QPoint(0, 0)).position();
    m_pane->Add(10);
    m_window->grab();
    QCOMPARE(m_pane->cursorForPosition(QPoint(0, 0)).position(), top);
}

void FollowingPaneTest::scrolledBackThroughSizesTheTopLineStays() {
    m_pane->Add(200);
    m_bar->setValue(40);
    for (const QSize size : {QSize(400, 100), QSize(600, 350), QSize(200, 150)}) {
        m_window->resize(size);
        QTRY_COMPARE(m_window->size(), size);
        m_pane->Add(1);
        QCOMPARE(m_pane->TopText(), u"line 40"_s);
    }
}

void FollowingPaneTest::atTheEndAgainItFollows() {
    m_pane->Add(100);
    m_pane->setFocus();
    QTest::keyClick(m_pane, Qt::Key_PageUp);
    const int there = m_bar->value();
    QVERIFY(there > 0 && there < m_bar->maximum());
    m_pane->Add(1);
    QCOMPARE(m_bar->value(), there);
    m_bar->triggerAction(QAbstractSlider::SliderToMaximum);
    QVERIFY(IsAtEnd());
    m_pane->Add(10);
    QVERIFY(IsAtEnd());
}

void FollowingPaneTest::emptiedItFollows() {
    m_pane->Add(100);
    m_bar->setValue(10);
    m_pane->CutFirst(100);
    m_pane->Add(100);
    QVERIFY(m_bar->maximum() > 0 && IsAtEnd());
}

void FollowingPaneTest::whereAllFitsItFollows() {
    m_pane->Add(30);
    m_bar->setValue(3);
    m_window->resize(400, 3000);
    QTRY_COMPARE(m_bar->maximum(), 0);
    m_pane->Add(1000);
    QVERIFY(m_bar->maximum() > 0 && IsAtEnd());
}

QTEST_MAIN(FollowingPaneTest)
#include "FollowingPaneTest.moc"
