#include "foundation/messages/HelpKey.h"

#include "foundation/messages/HelpWindow.h"
#include "foundation/messages/MessageBoxPresenter.h"

#include <QKeyEvent>

HelpKey::HelpKey(QObject* application, MessageBoxPresenter& presenter)
    : QObject(application)
    , m_presenter(presenter) {
    application->installEventFilter(this);
}

bool HelpKey::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress || !watched->isWidgetType())
        return false;
    const auto& key = static_cast<const QKeyEvent&>(*event);
    if (key.key() != Qt::Key_F1 || key.modifiers() != Qt::NoModifier)
        return false;
    // The first widget that a key comes to is the one with the focus, or the window when none has it. A name
    // that stands in several windows has its topic under "window.name".
    const QString window = static_cast<const QWidget*>(watched)->window()->objectName();
    QStringList topics;
    for (const QObject* object = watched; object != nullptr; object = object->parent()) {
        if (!object->objectName().isEmpty())
            topics << window + u'.' + object->objectName() << object->objectName();
        if (!object->isWidgetType() || static_cast<const QWidget*>(object)->isWindow())
            break;
    }
    m_presenter.OpenHelp(topics);
    return true;
}
