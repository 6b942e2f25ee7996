#include "app/SteadyBox.h"

#include <QEvent>

SteadyBox::SteadyBox(QWidget* content)
    : m_content(content)
    , m_size(content->sizeHint()) {
    content->setParent(this);
}

bool SteadyBox::event(QEvent* event) {
    // While it is hidden, nobody tells it.
    if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::Show) {
        const QSize size = m_content->sizeHint().expandedTo(m_size);
        if (size != m_size) {
            m_size = size;
            updateGeometry();
        }
    }
    return QWidget::event(event);
}

void SteadyBox::resizeEvent(QResizeEvent* event) {
    m_content->setGeometry(rect());
    QWidget::resizeEvent(event);
}
