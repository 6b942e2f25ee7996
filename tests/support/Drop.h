#pragma once

#include <QCoreApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLineEdit>
#include <QMimeData>

/// Drags something over a widget and drops it. Whether the widget has taken it.
inline bool Drop(QWidget& widget, const QMimeData& data, const QPoint& place) {
    QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    enter.setAccepted(false);
    QCoreApplication::sendEvent(&widget, &enter);
    if (!enter.isAccepted())
        return false;
    QDropEvent drop(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &drop);
    return drop.isAccepted();
}

/// Drags a text from outside over a field and drops it behind the last character. Whether the field has taken
/// it.
inline bool DropOn(QLineEdit* field, const QString& text) {
    QMimeData data;
    data.setText(text);
    return Drop(*field, data, {field->width() - 1, field->height() / 2});
}
