#include "foundation/panes/FindBar.h"

#include "foundation/fields/Named.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

FindBar::FindBar(QPlainTextEdit* pane)
    : QFrame(pane)
    , m_pane(pane)
    , txtFindText(Named(u"txtFindText", new QLineEdit(this)))
    , labFindResult(Named(u"labFindResult", new QLabel(this))) {
    setObjectName(QStringLiteral("picFind"));
    setAutoFillBackground(true);
    setFrameStyle(int(QFrame::StyledPanel) | int(QFrame::Raised));
    txtFindText->setAccessibleName(tr("Find"));
    txtFindText->setPlaceholderText(tr("Find"));
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(4, 2, 4, 2);
    row->addWidget(txtFindText);
    row->addWidget(labFindResult);
    txtFindText->installEventFilter(this);
    pane->installEventFilter(this);
    connect(txtFindText, &QLineEdit::textChanged, labFindResult, &QLabel::clear);
    hide();
}

void FindBar::Open() {
    show();
    Place();
    raise();
    txtFindText->setFocus(Qt::ShortcutFocusReason);
    txtFindText->selectAll();
}

bool FindBar::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_pane && event->type() == QEvent::Resize)
        Place();
    if (watched != txtFindText || event->type() != QEvent::KeyPress)
        return false;
    const auto& key = static_cast<const QKeyEvent&>(*event);
    switch (key.key()) {
    case Qt::Key_Escape:
        hide();
        m_pane->setFocus();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        Find(key.modifiers().testFlag(Qt::ShiftModifier));
        return true;
    default:
        return false;
    }
}

void FindBar::Find(bool towardsEnd) {
    if (txtFindText->text().isEmpty())
        return;
    const auto direction = towardsEnd ? QTextDocument::FindFlags() : QTextDocument::FindBackward;
    bool isFound = m_pane->find(txtFindText->text(), direction);
    labFindResult->clear();
    if (!isFound) {
        const QTextCursor before = m_pane->textCursor();
        m_pane->moveCursor(towardsEnd ? QTextCursor::Start : QTextCursor::End);
        isFound = m_pane->find(txtFindText->text(), direction);
        labFindResult->setText(isFound ? tr("from the other end") : tr("not found"));
        if (!isFound)
            m_pane->setTextCursor(before);
    }
    Place();
}

void FindBar::Place() {
    adjustSize();
    move(m_pane->width() - width(), 0);
}
