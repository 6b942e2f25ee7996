#include "foundation/fields/FilterCharacters.h"
#include "foundation/fields/FixedFont.h"
#include "foundation/fields/SelectAllOnFocus.h"
#include "support/Drop.h"

#include <QApplication>
#include <QClipboard>
#include <QFontMetrics>
#include <QInputMethodEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QTest>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

// The two things that fields do: select their text on entering, and filter what comes in.
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
    void aRefusedCharacterLeavesTheSelection();
    void replacedCharactersTakeTheirPlace();
    void noModifierTakesACharacterPastTheRule_data();
    void noModifierTakesACharacterPastTheRule();
    void aHeldKeyIsFilteredToo();
    void accessKeysPass();
    void acceptedCharactersAreTypedAsEver();
    void controlKeysPass();
    void shortcutsPass();
    void pastesAreFiltered_data();
    void pastesAreFiltered();
    void aFilteredPasteCanBeUndone();
    void aFilteredPasteTakesAsMuchAsFits();
    void dropsAreFiltered();
    void theContextMenusPasteIsFiltered();
    void aLineEndCountsAsOneBlank_data();
    void aLineEndCountsAsOneBlank();
    void whatTheProgramSetsStaysUntilTheUserChangesIt();
    void fieldsOfAnyTextLoseTheirLineEndsAlone();
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

    static std::optional<QChar> Digits(QChar typed) {
        return typed >= u'0' && typed <= u'9' ? std::optional(typed) : std::nullopt;
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
    FilterCharacters(m_field, &Digits);
    QTest::keyClicks(m_field, u"a1 b-2."_s);
    QCOMPARE(m_field->text(), u"12"_s);
}

void FieldKeysTest::aRefusedCharacterLeavesTheSelection() {
    FilterCharacters(m_field, &Capitals);
    m_field->setText(u"WHOLE"_s);
    m_field->selectAll();
    QTest::keyClicks(m_field, u"1/"_s);
    QApplication::clipboard()->setText(u"12 34"_s);
    QTest::keyClick(m_field, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(m_field->text(), u"WHOLE"_s);
    QCOMPARE(m_field->selectedText(), u"WHOLE"_s);
}

void FieldKeysTest::noModifierTakesACharacterPastTheRule_data() {
    QTest::addColumn<int>("modifiers");
    QTest::newRow("none") << int(Qt::NoModifier);
    QTest::newRow("Shift") << int(Qt::ShiftModifier);
    QTest::newRow("Alt") << int(Qt::AltModifier);
    QTest::newRow("Alt+Shift") << int(Qt::AltModifier | Qt::ShiftModifier);
    QTest::newRow("Meta") << int(Qt::MetaModifier);
    QTest::newRow("Meta+Alt") << int(Qt::MetaModifier | Qt::AltModifier);
    QTest::newRow("Ctrl+Alt, AltGr elsewhere") << int(Qt::ControlModifier | Qt::AltModifier);
    QTest::newRow("Ctrl+Meta") << int(Qt::ControlModifier | Qt::MetaModifier);
    QTest::newRow("keypad") << int(Qt::KeypadModifier);
}

void FieldKeysTest::noModifierTakesACharacterPastTheRule() {
    QFETCH(const int, modifiers);
    FilterCharacters(m_field, &Capitals);
    m_field->clear();
    for (const QChar typed : u"a1Bé\u200D"_s)
        QTest::sendKeyEvent(QTest::Click, m_field, Qt::Key_unknown, typed, Qt::KeyboardModifiers(modifiers));
    QCOMPARE(m_field->text(), u"AB"_s);
}

void FieldKeysTest::aHeldKeyIsFilteredToo() {
    FilterCharacters(m_field, &Capitals);
    m_field->clear();
    for (int i = 0; i < 3; ++i) {
        QKeyEvent held(QEvent::KeyPress, Qt::Key_A, Qt::AltModifier, u"a"_s, i > 0);
        QCoreApplication::sendEvent(m_field, &held);
    }
    QCOMPARE(m_field->text(), u"AAA"_s);
}

void FieldKeysTest::accessKeysPass() {
    FilterCharacters(m_field, &Capitals);
    auto* label = new QLabel(u"&Other"_s, m_window.get());
    label->setBuddy(m_other);
    label->show();
    m_field->setText(u"ABC"_s);
    m_field->setFocus();
    QTest::keyClick(m_field, Qt::Key_O, Qt::AltModifier);
    QTRY_VERIFY(m_other->hasFocus());
    QCOMPARE(m_field->text(), u"ABC"_s);
}

void FieldKeysTest::replacedCharactersTakeTheirPlace() {
    FilterCharacters(m_field, &Capitals);
    m_field->setText(u"XY"_s);
    m_field->setCursorPosition(1);
    QTest::keyClicks(m_field, u"a1b"_s);
    QCOMPARE(m_field->text(), u"XABY"_s);
    m_field->selectAll();
    QTest::keyClicks(m_field, u"c"_s); // what is selected is typed over
    QCOMPARE(m_field->text(), u"C"_s);
}

void FieldKeysTest::acceptedCharactersAreTypedAsEver() {
    FilterCharacters(m_field, &Capitals);
    m_field->selectAll();
    QTest::keyClicks(m_field, u"OK"_s);
    QCOMPARE(m_field->text(), u"OK"_s);
    QTest::keyClick(m_field, Qt::Key_Z, Qt::ControlModifier);
    QVERIFY(m_field->text() != u"OK");
}

void FieldKeysTest::controlKeysPass() {
    FilterCharacters(m_field, &Capitals);
    m_field->setText(u"ABC"_s);
    QTest::keyClick(m_field, Qt::Key_Backspace);
    QCOMPARE(m_field->text(), u"AB"_s);
    QTest::keyClick(m_field, Qt::Key_Home);
    QTest::keyClick(m_field, Qt::Key_Delete);
    QCOMPARE(m_field->text(), u"B"_s);
    int entered = 0;
    connect(m_field, &QLineEdit::returnPressed, this, [&] { ++entered; });
    QTest::keyClick(m_field, Qt::Key_Return);
    QCOMPARE(entered, 1);
    m_field->setFocus();
    QTest::keyClick(m_field, Qt::Key_Tab);
    QTRY_VERIFY(m_other->hasFocus());
}

void FieldKeysTest::shortcutsPass() {
    FilterCharacters(m_field, &Capitals);
    m_field->setText(u"ABC"_s);
    QTest::keyClick(m_field, Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(m_field->selectedText(), u"ABC"_s);
    QTest::keyClick(m_field, Qt::Key_X, Qt::ControlModifier);
    QCOMPARE(m_field->text(), QString());
    QTest::keyClick(m_field, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(m_field->text(), u"ABC"_s);
    QTest::keyClick(m_field, Qt::Key_Z, Qt::ControlModifier);
    QTest::keyClick(m_field, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(m_field->text(), u"ABC"_s);
    QTest::keyClick(m_field, Qt::Key_Y, Qt::ControlModifier);
    QCOMPARE(m_field->text(), QString());
}

void FieldKeysTest::pastesAreFiltered_data() {
    QTest::addColumn<int>("way");
    QTest::newRow("Ctrl+V") << 0;
    QTest::newRow("Shift+Insert") << 1;
    QTest::newRow("by the program") << 2;
}

void FieldKeysTest::pastesAreFiltered() {
    QFETCH(const int, way);
    FilterCharacters(m_field, &Capitals);
    QApplication::clipboard()->setText(u"n1: low\t\x01"_s);
    const auto paste = [&] {
        if (way == 0)
            QTest::keyClick(m_field, Qt::Key_V, Qt::ControlModifier);
        else if (way == 1)
            QTest::keyClick(m_field, Qt::Key_Insert, Qt::ShiftModifier);
        else
            m_field->paste();
    };
    m_field->setText(u"XYZ"_s);
    m_field->setCursorPosition(1);
    paste();
    QCOMPARE(m_field->text(), u"XNLOWYZ"_s);
    QCOMPARE(m_field->cursorPosition(), 5);
    m_field->setSelection(0, 5);
    paste();
    QCOMPARE(m_field->text(), u"NLOWYZ"_s);
    QCOMPARE(m_field->cursorPosition(), 4);
}

void FieldKeysTest::aFilteredPasteCanBeUndone() {
    FilterCharacters(m_field, &Capitals);
    QApplication::clipboard()->setText(u"n1: low"_s);
    QTest::keyClick(m_field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(m_field, u"first"_s);
    QTest::keyClick(m_field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(m_field, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(m_field->text(), u"NLOW"_s);
    QTest::keyClick(m_field, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(m_field->text(), u"FIRST"_s);
    QTest::keyClick(m_field, Qt::Key_Y, Qt::ControlModifier);
    QCOMPARE(m_field->text(), u"NLOW"_s);
}

void FieldKeysTest::aFilteredPasteTakesAsMuchAsFits() {
    FilterCharacters(m_field, &Digits);
    m_field->clear();
    m_field->setMaxLength(5);
    QApplication::clipboard()->setText(u"port 1:234567"_s);
    QTest::keyClick(m_field, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(m_field->text(), u"12345"_s);
}

void FieldKeysTest::dropsAreFiltered() {
    FilterCharacters(m_field, &Capitals);
    m_field->setText(u"XY"_s);
    QVERIFY(DropOn(m_field, u"n1: low"_s));
    QCOMPARE(m_field->text(), u"XYNLOW"_s);
    QCOMPARE(m_field->cursorPosition(), 6);
    QTest::keyClick(m_field, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(m_field->text(), u"XY"_s);
    m_field->setReadOnly(true);
    QVERIFY(!DropOn(m_field, u"more"_s));
    QCOMPARE(m_field->text(), u"XY"_s);
}

void FieldKeysTest::theContextMenusPasteIsFiltered() {
    FilterCharacters(m_field, &Capitals);
    m_field->clear();
    QApplication::clipboard()->setText(u"n1: low"_s);
    const std::unique_ptr<QMenu> menu(m_field->createStandardContextMenu());
    const auto actions = menu->actions();
    const auto paste = std::ranges::find_if(
        actions, [](const QAction* action) { return action->text().startsWith(u"&Paste"); });
    QVERIFY(paste != actions.end());
    (*paste)->trigger();
    QCOMPARE(m_field->text(), u"NLOW"_s);
}

void FieldKeysTest::aLineEndCountsAsOneBlank_data() {
    QTest::addColumn<QString>("end");
    QTest::newRow("LF") << "\n";
    QTest::newRow("CR") << "\r";
    QTest::newRow("CR LF") << "\r\n";
    QTest::newRow("line separator") << u"\u2028"_s;
    QTest::newRow("paragraph separator") << u"\u2029"_s;
}

void FieldKeysTest::aLineEndCountsAsOneBlank() {
    QFETCH(const QString, end);
    QApplication::clipboard()->setText(u"A"_s + end + u"B"_s);
    FilterCharacters(m_other, [](QChar c) { return c == u' ' ? std::optional(c) : Capitals(c); });
    m_other->clear();
    QTest::keyClick(m_other, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(m_other->text(), u"A B"_s);
    FilterCharacters(m_field, &Capitals); // which refuses blanks
    m_field->clear();
    m_field->paste();
    QCOMPARE(m_field->text(), u"AB"_s);
}

void FieldKeysTest::whatTheProgramSetsStaysUntilTheUserChangesIt() {
    FilterCharacters(m_field, &Capitals);
    QTest::keyClicks(m_field, u"x"_s);
    m_field->setText(u"low 1"_s);
    QCOMPARE(m_field->text(), u"low 1"_s);
    QTest::keyClick(m_field, Qt::Key_Home);
    QTest::keyClick(m_field, Qt::Key_End, Qt::ShiftModifier);
    QTest::keyClick(m_field, Qt::Key_Return);
    QCOMPARE(m_field->text(), u"low 1"_s);
    QTest::keyClick(m_field, Qt::Key_End);
    QTest::keyClicks(m_field, u"x"_s);
    QCOMPARE(m_field->text(), u"LOWX"_s);
    QCOMPARE(m_field->cursorPosition(), 4);
}

void FieldKeysTest::fieldsOfAnyTextLoseTheirLineEndsAlone() {
    KeepOnOneLine(m_field);
    m_field->clear();
    QTest::keyClicks(m_field, u"a "_s);
    QApplication::clipboard()->setText(u"é\t/\r\nß"_s);
    QTest::keyClick(m_field, Qt::Key_V, Qt::ControlModifier);
    QTest::sendKeyEvent(QTest::Click, m_field, Qt::Key_unknown, u"😀"_s, Qt::NoModifier);
    QCOMPARE(m_field->text(), u"a é\t/ ß😀"_s);
}

void FieldKeysTest::composedTextIsFilteredToo() {
    FilterCharacters(m_field, &Capitals);
    m_field->clear();
    QInputMethodEvent composed;
    composed.setCommitString(u"a1é"_s);
    QCoreApplication::sendEvent(m_field, &composed);
    QCOMPARE(m_field->text(), u"A"_s);
}

void FieldKeysTest::longestLengthHoldsForReplacedCharacters() {
    FilterCharacters(m_field, &Capitals);
    m_field->clear();
    m_field->setMaxLength(3);
    QTest::keyClicks(m_field, u"abcdef"_s);
    QCOMPARE(m_field->text(), u"ABC"_s);
}

void FieldKeysTest::readOnlyFieldsStayAsTheyAre() {
    FilterCharacters(m_field, &Capitals);
    m_field->setReadOnly(true);
    QTest::keyClicks(m_field, u"abc"_s);
    QCOMPARE(m_field->text(), u"some text"_s);
}

void FieldKeysTest::charactersOfTwoUnitsAreRefusedWhole() {
    FilterCharacters(m_field, &Capitals);
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
