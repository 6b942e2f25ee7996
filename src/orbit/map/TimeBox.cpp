#include "orbit/map/TimeBox.h"

#include <QEvent>
#include <QFontMetrics>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace {

constexpr int margin = 6;

} // namespace

TimeBox::TimeBox(QWidget* parent)
    : QWidget(parent) {
    setCursor(Qt::SizeAllCursor);
    parent->installEventFilter(this);
    FitText();
}

void TimeBox::SetText(const QString& text) {
    if (m_text == text)
        return;
    m_text = text;
    setAccessibleName(text);
    FitText();
    update();
}

void TimeBox::FitText() {
    const QFontMetrics metrics(font());
    resize(metrics.horizontalAdvance(m_text) + margin, metrics.height() + margin);
    Settle();
}

// At the bottom in the middle, or where the user has put it as far as that lies on the map.
void TimeBox::Settle() {
    const QWidget& map = *parentWidget();
    MoveInside(m_dragged ? pos() : QPoint((map.width() - width()) / 2, map.height() - height() - margin));
}

bool TimeBox::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget() && event->type() == QEvent::Resize)
        Settle();
    return QWidget::eventFilter(watched, event);
}

void TimeBox::MoveInside(const QPoint& place) {
    const QWidget& map = *parentWidget();
    move(std::max(std::min(place.x(), map.width() - width()), 0),
         std::max(std::min(place.y(), map.height() - height()), 0));
}

void TimeBox::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::Mid));
    painter.setBrush(palette().color(QPalette::Base));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, m_text);
}

void TimeBox::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        m_grip = event->position().toPoint();
    else
        event->ignore();
}

void TimeBox::mouseMoveEvent(QMouseEvent* event) {
    if ((event->buttons() & Qt::LeftButton) == 0)
        return;
    m_dragged = true;
    MoveInside(mapToParent(event->position().toPoint() - m_grip));
}

void TimeBox::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        FitText();
}
