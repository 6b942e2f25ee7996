#pragma once

#include <QCloseEvent>
#include <QGuiApplication>
#include <QWidget>
#include <QWindow>
#include <QtTest/qtestspontaneevent.h>

/// What the window system does when the user clicks on a window's close box.
inline void PressCloseBox(QWidget& window) {
    QCloseEvent event;
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(window.windowHandle(), &event);
}
