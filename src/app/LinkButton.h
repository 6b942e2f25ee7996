#pragma once

#include <QToolButton>

/// How the link stands, in the status bar; a click, Enter, the space bar or the menu key opens its menu.
class LinkButton : public QToolButton {
    Q_OBJECT
public:
    explicit LinkButton(QWidget* parent);

    void ShowLink(const QString& text);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
};
