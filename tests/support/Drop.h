#pragma once

#include <QCoreApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLineEdit>
#include <QMimeData>

/// Drags a text from outside over a field and drops it behind the last character. Whether the field has taken
/// it.
inline bool DropOn(QLineEdit* field, const QString& text) {
    QMimeData data;
    data.setText(text);
    const QPoint place(field->width() - 1, field->height() / 2);
    QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(field, &enter);
    if (!enter.isAccepted())
        return false;
    QDropEvent drop(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(field, &drop);
    return drop.isAccepted();
}
