#include "foundation/placement/KeptPlace.h"

#include <QEvent>
#include <QWidget>

KeptPlace::KeptPlace(QWidget& window, const QString& name, clsIni& ini)
    : m_window(window) {
    m_place.Init(&window, name, &ini);
    window.installEventFilter(this);
}

bool KeptPlace::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Move)
        m_place.RecordPosition();
    else if (event->type() == QEvent::Resize && !m_window.isMinimized()) {
        if (m_window.isVisible())
            m_place.blnBeenInResize = true;
        m_place.RecordPosition();
    }
    return QObject::eventFilter(watched, event);
}
