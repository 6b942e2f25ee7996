#include "foundation/fields/FieldGuard.h"

#include "foundation/messages/HelpWindow.h"
#include "foundation/placement/PlaceWindow.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QMenuBar>
#include <QScopedValueRollback>

#include <algorithm>
#include <chrono>
#include <utility>

namespace {

// Whoever clicks on another window's close box activates that window first. This is how long a click lasts:
// within it the window has closed, and there is nothing left to ask.
constexpr std::chrono::milliseconds clickTime(250);

// The widget that a press on `target` gives the focus to; none when the focus stays.
QWidget* FocusOfPress(QWidget* target) {
    for (QWidget* widget = target; widget != nullptr; widget = widget->parentWidget()) {
        QWidget* receiver = widget;
        while (receiver->focusProxy() != nullptr)
            receiver = receiver->focusProxy();
        if (widget->isEnabled() && (receiver->focusPolicy() & Qt::ClickFocus) == Qt::ClickFocus)
            return receiver;
        if (widget->isWindow())
            break;
    }
    return nullptr;
}

// Whether going to another window of the program is leaving: not to what the program itself has opened over
// this one, nor to the help that the user has asked for.
bool IsLeaving(const QWidget& window) {
    return !window.isModal() && window.windowType() != Qt::Popup && window.windowType() != Qt::ToolTip &&
           qobject_cast<const HelpWindow*>(&window) == nullptr;
}

} // namespace

FieldGuard::FieldGuard(QWidget* window)
    : QObject(window)
    , m_window(window)
    , m_otherWindow(this) {
    m_otherWindow.setObjectName(QStringLiteral("timOtherWindow"));
    m_otherWindow.setSingleShot(true);
    m_otherWindow.setInterval(clickTime);
    connect(&m_otherWindow, &QTimer::timeout, this, [this] {
        const Field* field = Current();
        if (field == nullptr || m_busy || ModalWindow() != nullptr || ActiveWindow() == nullptr ||
            ActiveWindow() == m_window)
            return;
        MayLeave(*field);
    });
    QCoreApplication::instance()->installEventFilter(this);
}

void FieldGuard::AddField(QLineEdit* field, std::function<bool()> mayLeave) {
    m_fields.append({field, std::move(mayLeave)});
}

void FieldGuard::AddExempt(QWidget* button) {
    m_exempt.append(button);
}

bool FieldGuard::MayAccept() {
    const QPointer<FieldGuard> self(this); // a check may show a message, and then anything may happen
    bool may = MayClose();
    while (may && self && !m_unchecked.isEmpty()) {
        if (const Field* field = FieldOf(m_unchecked.first()); field != nullptr && field->edit->isEnabled())
            may = MayLeave(*field);
        else
            m_unchecked.removeFirst();
    }
    return may && self;
}

bool FieldGuard::MayClose() {
    const Field* field = Current();
    return field == nullptr || MayLeave(*field);
}

bool FieldGuard::eventFilter(QObject* watched, QEvent* event) {
    if (m_busy || !watched->isWidgetType())
        return false;
    auto* widget = static_cast<QWidget*>(watched);
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        return !MouseMayPress(widget);
    case QEvent::KeyPress: {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        const bool isTab = key.key() == Qt::Key_Tab || key.key() == Qt::Key_Backtab;
        if (!isTab || FieldOf(widget) == nullptr || (key.modifiers() & ~Qt::ShiftModifier) != 0)
            return false;
        return !TabMayLeave(key.key() == Qt::Key_Tab && !key.modifiers().testFlag(Qt::ShiftModifier));
    }
    case QEvent::Shortcut:
        return !ShortcutMayReach(widget);
    case QEvent::FocusOut:
        if (const Field* field = FieldOf(widget)) {
            const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
            if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason &&
                reason != Qt::MenuBarFocusReason)
                FocusLeft(field->edit);
        }
        return false;
    case QEvent::WindowActivate:
        if (widget->isWindow())
            OtherWindowActive(*widget);
        return false;
    default:
        return false;
    }
}

const FieldGuard::Field* FieldGuard::FieldOf(const QObject* object) const {
    // A field that is being destroyed loses the focus as a mere widget, and is none of ours any more.
    if (qobject_cast<const QLineEdit*>(object) == nullptr)
        return nullptr;
    const auto found = std::ranges::find_if(
        m_fields, [&](const Field& field) { return field.edit != nullptr && field.edit == object; });
    return found == m_fields.end() ? nullptr : &*found;
}

// The field in which the user is, also while another window is active.
const FieldGuard::Field* FieldGuard::Current() const {
    return m_window->isVisible() && !m_window->isMinimized() ? FieldOf(m_window->focusWidget()) : nullptr;
}

bool FieldGuard::IsExempt(const QWidget* widget) const {
    return std::ranges::any_of(m_exempt, [&](const QPointer<QWidget>& exempt) {
        return exempt && (exempt == widget || exempt->isAncestorOf(widget));
    });
}

bool FieldGuard::IsOurs(const QObject* object) const {
    return object->isWidgetType() && static_cast<const QWidget*>(object)->window() == m_window;
}

bool FieldGuard::MayLeave(const Field& field) {
    const QPointer<FieldGuard> self(this);
    const QPointer<QLineEdit> edit(field.edit);
    const std::function<bool()> check = field.mayLeave;
    m_otherWindow.stop();
    m_wandered.clear();
    m_busy = true;
    const bool may = check();
    if (!self)
        return may; // the message stood open while the window went away
    m_busy = false;
    m_refused = may ? nullptr : edit;
    if (may)
        m_unchecked.removeAll(edit);
    if (!may && edit) {
        m_refusedText = edit->text();
        StayIn(edit);
    }
    return may;
}

bool FieldGuard::MayReach(const QWidget* target) {
    const Field* field = Current();
    return field == nullptr || target == nullptr || target == field->edit || IsExempt(target) ||
           MayLeave(*field);
}

bool FieldGuard::MouseMayPress(QWidget* target) {
    // A press on a widget moves the focus first and is seen here afterwards, but before anybody acts on it.
    if (const QPointer<QLineEdit> left = std::exchange(m_wandered, nullptr)) {
        const Field* field = FieldOf(left);
        return field == nullptr || IsExempt(m_window->focusWidget()) || IsExempt(target) || MayLeave(*field);
    }
    if (Current() == nullptr || Current()->edit->isAncestorOf(target))
        return true;
    if (!IsOurs(target))
        return !IsLeaving(*target->window()) || MayReach(target);
    if (qobject_cast<QMenuBar*>(target) != nullptr)
        return true; // menus leave the focus where it is
    if (auto* button = qobject_cast<QAbstractButton*>(target))
        return !button->isEnabled() || MayReach(button);
    return MayReach(FocusOfPress(target));
}

bool FieldGuard::TabMayLeave(bool forward) {
    QWidget* const from = Current() != nullptr ? Current()->edit : nullptr;
    if (from == nullptr)
        return true;
    QWidget* next = from;
    do
        next = forward ? next->nextInFocusChain() : next->previousInFocusChain();
    while (next != from &&
           !(next->window() == m_window && next->isEnabled() && next->isVisibleTo(m_window) &&
             next->focusProxy() == nullptr && (next->focusPolicy() & Qt::TabFocus) == Qt::TabFocus));
    return MayReach(next);
}

bool FieldGuard::ShortcutMayReach(QWidget* target) {
    if (!IsOurs(target) || Current() == nullptr || !target->isEnabled())
        return true;
    if (const auto* label = qobject_cast<QLabel*>(target))
        return MayReach(label->buddy());
    return qobject_cast<QAbstractButton*>(target) == nullptr || MayReach(target);
}

void FieldGuard::FocusLeft(QLineEdit* edit) {
    m_wandered = edit;
    if (!m_unchecked.contains(edit))
        m_unchecked.append(edit);
    QMetaObject::invokeMethod(this, &FieldGuard::FocusWandered, Qt::QueuedConnection);
}

// The focus has left a field. Where the user was asked before, the check passes again; where the program
// moved it, the field gets it back, and without a second message where this very text has been refused
// already.
void FieldGuard::FocusWandered() {
    const QPointer<QLineEdit> edit = std::exchange(m_wandered, nullptr);
    const Field* field = FieldOf(edit);
    const QWidget* now = m_window->focusWidget();
    if (m_busy || field == nullptr || !m_window->isVisible() || now == nullptr || now == edit ||
        IsExempt(now) || !edit->isEnabled() || !edit->isVisible())
        return;
    if (m_refused == edit && m_refusedText == edit->text())
        StayIn(edit);
    else
        MayLeave(*field);
}

void FieldGuard::OtherWindowActive(const QWidget& other) {
    if (&other == m_window || !IsLeaving(other))
        m_otherWindow.stop();
    else if (Current() != nullptr)
        m_otherWindow.start();
}

void FieldGuard::StayIn(QLineEdit* edit) {
    const QScopedValueRollback busy(m_busy, true);
    edit->setFocus(Qt::OtherFocusReason);
    if (ActiveWindow() != nullptr && ActiveWindow() != m_window)
        m_window->activateWindow();
}
