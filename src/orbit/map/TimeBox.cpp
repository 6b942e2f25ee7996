#include "orbit/map/TimeBox.h"

#include <QEvent>
#include <QFontMetrics>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace {

constexpr int margin = 6;
constexpr QColor markedGround(255, 224, 130); // under black text, whatever the theme

} // namespace

TimeBox::TimeBox(QWidget* parent)
    : QWidget(parent)
    , labTimeNote(new QLabel(parent)) {
    labTimeNote->setObjectName(QStringLiteral("labTimeNote"));
    labTimeNote->setAttribute(Qt::WA_TransparentForMouseEvents);
    labTimeNote->setAutoFillBackground(true);
    labTimeNote->setBackgroundRole(QPalette::Base);
    labTimeNote->setForegroundRole(QPalette::Text);
    labTimeNote->setMargin(margin / 3);
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

void TimeBox::SetNote(const QString& note, bool isMarked) {
    setAccessibleDescription(note);
    labTimeNote->setText(note);
    if (m_isMarked != isMarked) {
        m_isMarked = isMarked;
        QPalette colours;
        if (isMarked) {
            colours.setColor(QPalette::Base, markedGround);
            colours.setColor(QPalette::Text, Qt::black);
        }
        setPalette(colours);
        labTimeNote->setPalette(colours);
    }
    FitNote();
    update();
}

// Over the box, or under it at the upper edge.
void TimeBox::FitNote() {
    labTimeNote->adjustSize();
    const int x = geometry().center().x() - labTimeNote->width() / 2;
    const int most = parentWidget()->width() - labTimeNote->width();
    const int above = y() - labTimeNote->height();
    labTimeNote->move(std::max(std::min(x, most), 0), above >= 0 ? above : geometry().bottom() + 1);
}

void TimeBox::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    labTimeNote->show();
}

void TimeBox::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    labTimeNote->hide();
}

void TimeBox::moveEvent(QMoveEvent* event) {
    QWidget::moveEvent(event);
    FitNote();
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
