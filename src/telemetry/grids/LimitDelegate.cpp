#include "telemetry/grids/LimitDelegate.h"

#include "foundation/looks/Contrast.h"
#include "telemetry/grids/TelemetryGrid.h"
#include "telemetry/grids/ValueAge.h"

#include <QPainter>

#include <cstdlib>

namespace {

Level LevelShown(const QModelIndex& index) {
    return static_cast<Level>(index.data(TelemetryGrid::LevelRole).toInt());
}

void DrawTriangle(QPainter& painter, const QRectF& place, bool isUp) {
    const qreal point = isUp ? place.top() : place.bottom();
    const qreal base = isUp ? place.bottom() : place.top();
    painter.drawPolygon(QPolygonF{QPointF(place.center().x(), point), QPointF(place.left(), base),
                                  QPointF(place.right(), base)});
}

} // namespace

LimitDelegate::Colours LimitDelegate::ColoursOf(Level level) {
    const bool isAlarm = std::abs(static_cast<int>(level)) > 1;
    return isAlarm ? Colours{QColor(0xb0, 0x00, 0x20), Qt::white}
                   : Colours{QColor(0xff, 0xc1, 0x07), Qt::black};
}

void LimitDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    ShowAge(*option, index);
    const Level level = LevelShown(index);
    if (level == Level::Normal)
        return;
    const Colours colours = ColoursOf(level);
    option->backgroundBrush = colours.ground;
    option->state.setFlag(QStyle::State_MouseOver, false); // it would tint the ground
    option->palette.setColor(QPalette::Text, colours.text);
}

void LimitDelegate::ShowAge(QStyleOptionViewItem& option, const QModelIndex& index) const {
    if (m_ages == nullptr || !m_ages->IsOn())
        return;
    const QVariant heard = index.data(TelemetryGrid::HeardUtc);
    if (heard.isNull())
        return;
    const QPalette::ColorGroup group =
        option.state.testFlag(QStyle::State_Active) ? QPalette::Active : QPalette::Inactive;
    if (m_ages->IsOld(heard.toLongLong()))
        option.palette.setColor(QPalette::Text,
                                Contrast::Dimmed(option.palette.color(group, QPalette::Text),
                                                 option.palette.color(group, QPalette::Base)));
    else if (m_ages->IsFresh(heard.toLongLong()))
        option.font.setBold(true);
}

void LimitDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const {
    QStyledItemDelegate::paint(painter, option, index);
    const Level level = LevelShown(index);
    if (level == Level::Normal)
        return;
    const Colours colours = ColoursOf(level);
    const int count = std::abs(static_cast<int>(level));
    // In the margin at the left of the widest value. The colour is there in a selected cell too.
    const qreal size = option.fontMetrics.horizontalAdvance(u'0');
    const QRectF margin(option.rect.left(), option.rect.top(), size * 1.5, option.rect.height());
    const QPointF middle(margin.center().x(), margin.center().y());
    painter->save();
    painter->fillRect(margin, colours.ground);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(colours.text);
    for (int i = 0; i < count; ++i) {
        const qreal top = middle.y() - count * size / 2 + i * size;
        DrawTriangle(*painter, QRectF(middle.x() - size / 2, top, size, size * 0.85), level > Level::Normal);
    }
    painter->restore();
}
