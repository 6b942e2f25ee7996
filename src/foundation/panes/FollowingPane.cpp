#include "foundation/panes/FollowingPane.h"

#include "foundation/panes/FindBar.h"

#include <QAction>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QMenu>
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
    AddEntries();
}

void FollowingPane::AddEntries() {
    mnuCopy = AddEntry(QStringLiteral("mnuCopy"), tr("&Copy"), [this](const QTextCursor&) { copy(); });
    AddEntry(QStringLiteral("mnuCopyLine"), tr("Copy &line"),
             [](const QTextCursor& place) { QGuiApplication::clipboard()->setText(place.block().text()); });
    QAction* all = AddEntry(QStringLiteral("mnuSelectAll"), tr("Select &all"),
                            [this](const QTextCursor&) { selectAll(); });
    QAction* find = AddEntry(QStringLiteral("mnuFind"), tr("&Find…"), [this](const QTextCursor&) {
        if (m_find == nullptr)
            m_find = new FindBar(this);
        m_find->Open();
    });
    mnuCopy->setShortcut(QKeySequence::Copy);
    all->setShortcut(QKeySequence::SelectAll);
    find->setShortcut(QKeySequence::Find);
}

QAction* FollowingPane::AddEntry(const QString& name, const QString& caption,
                                 std::function<void(const QTextCursor&)> action) {
    auto* entry = new QAction(caption, this);
    entry->setObjectName(name);
    entry->setShortcutContext(Qt::WidgetShortcut);
    connect(entry, &QAction::triggered, this, [this, act = std::move(action)] {
        act(m_menuPlace.isNull() ? textCursor() : m_menuPlace);
        m_menuPlace = {};
    });
    addAction(entry);
    return entry;
}

void FollowingPane::contextMenuEvent(QContextMenuEvent* event) {
    const bool isMouse = event->reason() == QContextMenuEvent::Mouse;
    const QTextCursor place = isMouse ? cursorForPosition(event->pos()) : textCursor();
    m_menuPlace = place;
    mnuCopy->setEnabled(textCursor().hasSelection());
    PrepareMenu(place);
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("mnuPane"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addActions(actions());
    connect(menu, &QMenu::aboutToHide, mnuCopy, [this] { mnuCopy->setEnabled(true); });
    menu->popup(isMouse ? event->globalPos() : viewport()->mapToGlobal(cursorRect().bottomLeft()));
}

void FollowingPane::GoToEnd() {
    verticalScrollBar()->setValue(verticalScrollBar()->maximum());
    m_end = verticalScrollBar()->value();
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
