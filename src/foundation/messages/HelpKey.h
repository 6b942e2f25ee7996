#pragma once

#include <QObject>

class MessageBoxPresenter;

/// F1 anywhere in the program: opens the help at the topic named after the widget that has the focus, or
/// after the nearest of its parents up to its window ("window.widget" goes before "widget"); without such a
/// topic, at its contents. One for the application, which owns it.
class HelpKey : public QObject {
    Q_OBJECT
public:
    HelpKey(QObject* application, MessageBoxPresenter& presenter);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    MessageBoxPresenter& m_presenter;
};
