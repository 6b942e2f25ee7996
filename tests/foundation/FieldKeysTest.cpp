#include "foundation/fields/FilterKeys.h"
#include "foundation/fields/FixedFont.h"
#include "foundation/fields/SelectAllOnFocus.h"

#include <QApplication>
#include <QClipboard>
#include <QFontMetrics>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QTest>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

// The two things that every field does: select its text on entering, and filter its keys.
class FieldKeysTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup() { m_window.reset(); }

    void enteringByKeyOrCodeSelectsTheWholeText();
    void enteringByClickSelectsTheWholeText();
    void selectingWithTheMouseIsLeftAlone();
    void secondClickSetsTheCaret();
    void firstFieldOfAnOpeningWindowIsSelected();
    void comingBackFromAnotherWindowKeepsTheCaret();
    void comingBackFromAContextMenuKeepsTheSelection();

    void refusedCharactersDoNotAppear();
    void replacedCharactersTakeTheirPlace();
    void acceptedCharactersAreTypedAsEver();
    void controlKeysPass();
    void shortcutsPass();
    void pastesPass();
    void composedTextIsFilteredToo();
    void longestLengthHoldsForReplacedCharacters();
    void readOnlyFieldsStayAsTheyAre();
    void charactersOfTwoUnitsAreRefusedWhole();

    void fixedFontIsFixed();

private:
    static std::optional<QChar> Capitals(QChar typed) {
        const QChar capital = typed.toUpper();
        return capital >= u'A' && capital <= u'Z' ? std::optional(capital) : std::nullopt;
    }

    std::unique_ptr<QWidget> m_window;
    QLineEdit* m_field = nullptr;
    QLineEdit* m_other = nullptr;
};

void FieldKeysTest::init() {
    m_window = std::make_unique<QWidget>();
    m_field = new QLineEdit(u"some text"_s);
    m_other = new QLineEdit(u"other"_s);
    auto* column = new QVBoxLayout(m_window.get());
    column->addWidget(m_field);
    column->addWidget(m_other);
    SelectAllOnFocus(m_field);
    SelectAllOnFocus(m_other);
    m_window->show();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    m_other->setFocus();
    QTRY_VERIFY(m_other->hasFocus());
    m_field->deselect();
}

void FieldKeysTest::enteringByKeyOrCodeSelectsTheWholeText() {
    QTest::keyClick(m_other, Qt::Key_Backtab, Qt::ShiftModifier);
    QTRY_COMPARE(m_field->selectedText(), u"some text"_s);
    m_other->setFocus();
    QCOMPARE(m_other->selectedText(), u"other"_s);
}

void FieldKeysTest::enteringByClickSelectsTheWholeText() {
    QTest::mouseClick(m_field, Qt::LeftButton);
    QCOMPARE(m_field->selectedText(), u"some text"_s);
    QTest::keyClicks(m_field, u"x"_s);
    QCOMPARE(m_field->text(), u"x"_s);
}

void FieldKeysTest::selectingWithTheMouseIsLeftAlone() {
    const int middle = m_field->height() / 2;
    QTest::mousePress(m_field, Qt::LeftButton, {}, QPoint(4, middle));
    QTest::mouseMove(m_field, QPoint(30, middle));
    QMouseEvent drag(QEvent::MouseMove, QPointF(30, middle), m_field->mapToGlobal(QPointF(30, middle)),
                     Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(m_field, &drag);
    const QString selected = m_field->selectedText();
    QVERIFY(!selected.isEmpty() && selected.size() < 9);
    QTest::mouseRelease(m_field, Qt::LeftButton, {}, QPoint(30, middle));
    QCOMPARE(m_field->selectedText(), selected);
}

void FieldKeysTest::secondClickSetsTheCaret() {
    QTest::mouseClick(m_field, Qt::LeftButton);
    QTest::qWait(QApplication::doubleClickInterval() + 50);
    QTest::mouseClick(m_field, Qt::LeftButton);
    QVERIFY(!m_field->hasSelectedText());
}

void FieldKeysTest::firstFieldOfAnOpeningWindowIsSelected() {
    QWidget window;
    auto* field = new QLineEdit(u"first"_s, &window);
    SelectAllOnFocus(field);
    field->setFocus();
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QTRY_COMPARE(field->selectedText(), u"first"_s);
}

void FieldKeysTest::comingBackFromAnotherWindowKeepsTheCaret() {
    m_field->setFocus();
    QTest::keyClick(m_field, Qt::Key_End);
    QWidget another;
    another.show();
    another.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&another));
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    QTRY_VERIFY(m_field->hasFocus());
    QVERIFY(!m_field->hasSelectedText());
    QCOMPARE(m_field->cursorPosition(), 9);
}

void FieldKeysTest::comingBackFromAContextMenuKeepsTheSelection() {
    m_field->setFocus();
    m_field->setSelection(0, 4);
    QFocusEvent back(QEvent::FocusIn, Qt::PopupFocusReason);
    QCoreApplication::sendEvent(m_field, &back);
    QCOMPARE(m_field->selectedText(), u"some"_s);
}

void FieldKeysTest::refusedCharactersDoNotAppear() {
    m_field->clear();
    FilterKeys(m_field, [](QChar typed) { return typed.isDigit() ? std::optional(typed) : std::nullopt; });
    QTest::keyClicks(m_field, u"a1 b-2."_s);
    QCOMPARE(m_field->text(), u"12"_s);
}

void FieldKeysTest::replacedCharactersTakeTheirPlace() {
    FilterKeys(m_field, &Capitals);
    m_field->setText(u"XY"_s);
    m_field->setCursorPosition(1);
    QTest::keyClicks(m_field, u"a1b"_s);
    QCOMPARE(m_field->text(), u"XABY"_s);
    m_field->selectAll();
    QTest::keyClicks(m_field, u"c"_s); // what is selected is typed over
    QCOMPARE(m_field->text(), u"C"_s);
}

void FieldKeysTest::acceptedCharactersAreTypedAsEver() {
    FilterKeys(m_field, &Capitals);
    m_field->selectAll();
    QTest::keyClicks(m_field, u"OK"_s);
    QCOMPARE(m_field->text(), u"OK"_s);
    QTest::keyClick(m_field, Qt::Key_Z, Qt::ControlModifier);
    QVERIFY(m_field->text() != u"OK");
}

void FieldKeysTest::controlKeysPass() {
    FilterKeys(m_field, [](QChar) { return std::nullopt; });
    m_field->setText(u"abc"_s);
    QTest::keyClick(m_field, Qt::Key_Backspace);
    QCOMPARE(m_field->text(), u"ab"_s);
    QTest::keyClick(m_field, Qt::Key_Home);
    QTest::keyClick(m_field, Qt::Key_Delete);
    QCOMPARE(m_field->text(), u"b"_s);
    int entered = 0;
    connect(m_field, &QLineEdit::returnPressed, this, [&] { ++entered; });
    QTest::keyClick(m_field, Qt::Key_Return);
    QCOMPARE(entered, 1);
    m_field->setFocus();
    QTest::keyClick(m_field, Qt::Key_Tab);
    QTRY_VERIFY(m_other->hasFocus());
}

void FieldKeysTest::shortcutsPass() {
    FilterKeys(m_field, [](QChar) { return std::nullopt; });
    m_field->setText(u"abc"_s);
    QTest::keyClick(m_field, Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(m_field->selectedText(), u"abc"_s);
    QTest::keyClick(m_field, Qt::Key_X, Qt::ControlModifier);
    QCOMPARE(m_field->text(), QString());
    QTest::keyClick(m_field, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(m_field->text(), u"abc"_s);
}

void FieldKeysTest::pastesPass() {
    FilterKeys(m_field, &Capitals);
    QApplication::clipboard()->setText(u"n1: low"_s);
    m_field->clear();
    m_field->paste();
    QCOMPARE(m_field->text(), u"n1: low"_s);
}

void FieldKeysTest::composedTextIsFilteredToo() {
    FilterKeys(m_field, &Capitals);
    m_field->clear();
    QInputMethodEvent composed;
    composed.setCommitString(u"a1é"_s);
    QCoreApplication::sendEvent(m_field, &composed);
    QCOMPARE(m_field->text(), u"A"_s);
}

void FieldKeysTest::longestLengthHoldsForReplacedCharacters() {
    FilterKeys(m_field, &Capitals);
    m_field->clear();
    m_field->setMaxLength(3);
    QTest::keyClicks(m_field, u"abcdef"_s);
    QCOMPARE(m_field->text(), u"ABC"_s);
}

void FieldKeysTest::readOnlyFieldsStayAsTheyAre() {
    FilterKeys(m_field, &Capitals);
    m_field->setReadOnly(true);
    QTest::keyClicks(m_field, u"abc"_s);
    QCOMPARE(m_field->text(), u"some text"_s);
}

void FieldKeysTest::charactersOfTwoUnitsAreRefusedWhole() {
    FilterKeys(m_field, &Capitals);
    m_field->clear();
    QTest::sendKeyEvent(QTest::Click, m_field, Qt::Key_unknown, u"😀"_s, Qt::NoModifier);
    QCOMPARE(m_field->text(), QString());
}

void FieldKeysTest::fixedFontIsFixed() {
    const QFontMetrics metrics(FixedFont());
    QCOMPARE(metrics.horizontalAdvance(u"iiii"_s), metrics.horizontalAdvance(u"MMMM"_s));
}

QTEST_MAIN(FieldKeysTest)
#include "FieldKeysTest.moc"
