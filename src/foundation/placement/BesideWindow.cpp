#include "foundation/placement/BesideWindow.h"

#include <QPoint>
#include <QSize>

#include <algorithm>
#include <array>

QRect BesideWindow(const QSize& size, const QRect& other, const QRect& area) {
    const QSize fitting = size.boundedTo(area.size());
    const auto inside = [&](int x, int y) {
        return QRect(QPoint(std::clamp(x, area.left(), area.right() + 1 - fitting.width()),
                            std::clamp(y, area.top(), area.bottom() + 1 - fitting.height())),
                     fitting);
    };
    const std::array places{
        inside(other.right() + 1, other.top()), inside(other.left() - fitting.width(), other.top()),
        inside(other.left(), other.bottom() + 1), inside(other.left(), other.top() - fitting.height())};
    const auto covered = [&](const QRect& place) {
        const QRect common = place.intersected(other);
        return common.isEmpty() ? 0 : common.width() * common.height();
    };
    return *std::ranges::min_element(places, {}, covered);
}
