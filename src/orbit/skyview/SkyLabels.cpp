#include "orbit/skyview/SkyLabels.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>

namespace {

// From the point: the direction of the label's middle, in halves of its size.
constexpr QPointF sides[] = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}, {1, 1}, {-1, 1}, {1, -1}, {-1, -1}};

QRectF MovedInto(QRectF place, const QRectF& room) {
    place.moveLeft(
        std::clamp(place.left(), room.left(), std::max(room.left(), room.right() - place.width())));
    place.moveTop(std::clamp(place.top(), room.top(), std::max(room.top(), room.bottom() - place.height())));
    return place;
}

} // namespace

bool SkyLabels::IsFree(const QRectF& place) const {
    return m_room.contains(place) &&
           std::ranges::none_of(m_taken, [&](const QRectF& taken) { return taken.intersects(place); });
}

void SkyLabels::Add(const QPointF& point, double distance, const QString& text, const QColor& ground,
                    Need need) {
    const QFontMetricsF metrics(m_painter.font());
    QRectF place(QPointF(), QSizeF(metrics.horizontalAdvance(text) + 4, metrics.height()));
    const auto placeAt = [&](const QPointF& side) {
        place.moveCenter(point + QPointF(side.x() * (distance + place.width() / 2),
                                         side.y() * (distance + place.height() / 2)));
        return place;
    };
    const auto* const found =
        std::ranges::find_if(sides, [&](const QPointF& side) { return IsFree(placeAt(side)); });
    if (found == std::end(sides) && need == Need::WhereThereIsRoom)
        return;
    place = found != std::end(sides) ? placeAt(*found) : MovedInto(placeAt(sides[0]), m_room);
    m_taken += place;
    m_painter.fillRect(place, ground);
    m_painter.drawText(place, Qt::AlignCenter, text);
}
