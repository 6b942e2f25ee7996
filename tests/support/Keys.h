#pragma once

#include <QApplication>
#include <QClipboard>
#include <QTest>
#include <QWidget>

/// A user at the keys: what they press goes to whatever has the focus.
namespace Keys {

/// The object name of what has the focus; empty when nothing has.
inline QString Focus() {
    return QApplication::focusWidget() != nullptr ? QApplication::focusWidget()->objectName() : QString();
}

inline void Type(const QString& keys) {
    QTest::keyClicks(QApplication::focusWidget(), keys);
}

inline void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(QApplication::focusWidget(), key, modifiers);
}

inline void Paste(const QString& text) {
    QApplication::clipboard()->setText(text);
    Press(Qt::Key_V, Qt::ControlModifier);
}

/// Types in place of all that stands in a field.
inline void Replace(const QString& keys) {
    Press(Qt::Key_A, Qt::ControlModifier);
    Press(Qt::Key_Delete);
    Type(keys);
}

} // namespace Keys
