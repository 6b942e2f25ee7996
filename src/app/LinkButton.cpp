#include "app/LinkButton.h"

#include <QContextMenuEvent>
#include <QKeyEvent>

LinkButton::LinkButton(QWidget* parent)
    : QToolButton(parent) {
    setObjectName(QStringLiteral("labLink"));
    setAccessibleName(tr("Link"));
    setToolTip(tr("Link"));
    setAutoRaise(true);
    setFocusPolicy(Qt::TabFocus);
    setPopupMode(QToolButton::InstantPopup);
    setMinimumWidth(1); // a long text makes no window wider
}

void LinkButton::ShowLink(const QString& text) {
    setText(QString(text).replace(u'&', QStringLiteral("&&")));
    setAccessibleDescription(text);
}

void LinkButton::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        showMenu();
    else
        QToolButton::keyPressEvent(event);
}

void LinkButton::contextMenuEvent(QContextMenuEvent* event) {
    event->accept();
    showMenu();
}
