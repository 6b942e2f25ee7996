#pragma once

#include <QLineEdit>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <functional>

/// Keeps the user in a field until its content is good.
///
/// A field is checked when the user tries to leave it: by Tab, by a click on a button, on another field or on
/// another window of the program, or by an access key. What he pressed happens only if the check passes, so
/// that a failing check shows its message once an attempt. The close box is such an attempt as well, where
/// the window's closeEvent asks MayClose(). The ways out stay open: Escape, exempt buttons and whatever
/// closes the window from inside are never checked. Going to another program and back is not leaving.
class FieldGuard : public QObject {
    Q_OBJECT
public:
    /// Guards fields of `window`, which owns the guard.
    explicit FieldGuard(QWidget* window);

    /// `mayLeave` tells whether the field may be left; when not, it shows its own message and answers false.
    void AddField(QLineEdit* field, std::function<bool()> mayLeave);

    /// A button that may be reached and pressed whatever stands in the fields, as Cancel.
    void AddExempt(QWidget* button);

    /// For OK: checks the field in which the user is, for Enter moves no focus, and one that was left by an
    /// exempt button and so unchecked. False after the first that fails; that one has the focus then. Fields
    /// that were never left are not asked.
    bool MayAccept();

    /// For the window's closeEvent, which only the close box brings about (QDialog::done() needs none):
    /// whether the field in which the user is may be left.
    bool MayClose();

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Field {
        QPointer<QLineEdit> edit;
        std::function<bool()> mayLeave;
    };

    const Field* FieldOf(const QObject* object) const;
    const Field* Current() const;
    bool IsExempt(const QWidget* widget) const;
    bool IsOurs(const QObject* object) const;
    bool MayLeave(const Field& field);
    bool MayReach(const QWidget* target);
    bool MouseMayPress(QWidget* target);
    bool TabMayLeave(bool forward);
    bool ShortcutMayReach(QWidget* target);
    void FocusLeft(QLineEdit* edit);
    void FocusWandered();
    void OtherWindowActive(const QWidget& other);
    void StayIn(QLineEdit* edit);

    QWidget* m_window;
    QList<Field> m_fields;
    QList<QPointer<QWidget>> m_exempt;
    bool m_busy = false; // a check or its aftermath is under way: what the focus does is our doing
    QList<QPointer<QLineEdit>> m_unchecked; // left, and not found good since then
    QPointer<QLineEdit> m_wandered;         // lost the focus in a way that could not be asked about before
    QPointer<QLineEdit> m_refused;          // the field that failed last, and the text that it failed with
    QString m_refusedText;
    QTimer m_otherWindow;
};
