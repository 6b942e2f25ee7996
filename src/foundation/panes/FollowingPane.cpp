#include "foundation/panes/FollowingPane.h"

#include <QScrollBar>
#include <QTextBlock>
#include <QTextCursor>

namespace {

// Which line of the document, as wrapped, a cursor stands in.
int LineOf(const QTextCursor& cursor) {
    const QTextBlock block = cursor.block();
    const QTextLine line = block.layout()->lineForTextPosition(cursor.positionInBlock());
    return block.firstLineNumber() + (line.isValid() ? line.lineNumber() : 0);
}

} // namespace

FollowingPane::FollowingPane(QWidget* parent)
    : QPlainTextEdit(parent) {
    setReadOnly(true);
    setUndoRedoEnabled(false);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setTabChangesFocus(true);
}

bool FollowingPane::IsAtEnd() const {
    return verticalScrollBar()->value() == verticalScrollBar()->maximum();
}

// A cursor at the start of the line, as wrapped, that stands at the top of the pane.
QTextCursor FollowingPane::TopLine() const {
    const QTextBlock block = firstVisibleBlock();
    const QTextLine line = block.layout()->lineAt(verticalScrollBar()->value() - block.firstLineNumber());
    QTextCursor cursor(block);
    cursor.setPosition(block.position() + (line.isValid() ? line.textStart() : 0));
    return cursor;
}

void FollowingPane::ChangeText(const std::function<void()>& change) {
    setUpdatesEnabled(false);
    KeepPlace(change);
    setUpdatesEnabled(true);
}

void FollowingPane::changeEvent(QEvent* event) {
    KeepPlace([&] { QPlainTextEdit::changeEvent(event); });
}

void FollowingPane::resizeEvent(QResizeEvent* event) {
    KeepPlace([&] { QPlainTextEdit::resizeEvent(event); });
}

// Does the step, which may move the text, and brings back into view what was there before.
void FollowingPane::KeepPlace(const std::function<void()>& step) {
    QScrollBar* bar = verticalScrollBar();
    const bool follows = IsAtEnd() || bar->value() == m_end;
    QTextCursor top = TopLine(); // moves along when what precedes it is cut
    top.setKeepPositionOnInsert(true);
    step();
    bar->setValue(follows ? bar->maximum() : LineOf(top));
    m_end = IsAtEnd() ? bar->value() : -1;
}
