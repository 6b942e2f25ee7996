#include "app/SteadyBox.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

class SteadyBoxTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup() { m_window.reset(); }

    void aTextGivenWhileItIsHiddenGetsItsRoom();
    void aTextThatNeedsNoMoreRoomAsksForNoLayout();
    void aLongerTextGetsItsRoomAndAShorterOneLeavesIt();
    void aLongTextMakesNoWindowWider();
    void theTextFillsTheBox();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == m_window.get() && event->type() == QEvent::LayoutRequest)
            ++m_layouts;
        return false;
    }

private:
    std::unique_ptr<QWidget> m_window;
    QLabel* m_label = nullptr;
    SteadyBox* m_box = nullptr;
    int m_layouts = 0;
};

void SteadyBoxTest::init() {
    m_window = std::make_unique<QWidget>();
    m_label = new QLabel(u"0000"_s);
    m_box = new SteadyBox(m_label);
    auto* layout = new QHBoxLayout(m_window.get());
    layout->addWidget(m_box);
    layout->addStretch();
    m_window->resize(500, 50);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    m_window->installEventFilter(this);
    m_layouts = 0;
}

void SteadyBoxTest::aTextGivenWhileItIsHiddenGetsItsRoom() {
    m_window->hide();
    m_label->setText(u"0000000000"_s);
    m_window->show();
    QTRY_COMPARE(m_box->width(), m_label->sizeHint().width());
}

void SteadyBoxTest::aTextThatNeedsNoMoreRoomAsksForNoLayout() {
    for (const QString& text : {u"1"_s, u"0000"_s, u""_s, u"000"_s}) {
        m_label->setText(text);
        QCoreApplication::processEvents();
    }
    QCOMPARE(m_layouts, 0);
}

void SteadyBoxTest::aLongerTextGetsItsRoomAndAShorterOneLeavesIt() {
    m_label->setText(u"0000000000"_s);
    QTRY_COMPARE(m_box->width(), m_label->sizeHint().width());
    const int width = m_box->width();
    m_label->setText(u"0"_s);
    QCoreApplication::processEvents();
    QCOMPARE(m_box->width(), width);
}

void SteadyBoxTest::aLongTextMakesNoWindowWider() {
    m_label->setText(QString(1000, u'0'));
    QCoreApplication::processEvents();
    QCOMPARE(m_window->width(), 500);
    m_window->resize(100, 50);
    QCoreApplication::processEvents();
    QCOMPARE(m_window->width(), 100);
}

void SteadyBoxTest::theTextFillsTheBox() {
    QCOMPARE(m_label->geometry(), m_box->rect());
    m_label->setText(u"0000000000"_s);
    QTRY_VERIFY(m_box->width() > 40);
    QTRY_COMPARE(m_label->geometry(), m_box->rect());
}

QTEST_MAIN(SteadyBoxTest)
#include "SteadyBoxTest.moc"
