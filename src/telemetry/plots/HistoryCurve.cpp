#include "telemetry/plots/HistoryCurve.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

constexpr double farthest = 1e6; // pixels; what lies farther out is never joined to what is in view

// A point that is no number breaks the line.
QList<QLine> Strokes(const QVector<QPointF>& points) {
    QList<QLine> strokes;
    strokes.reserve(points.size());
    std::optional<QPoint> last;
    int low = 0;
    int high = 0;
    const auto endColumn = [&] {
        if (last)
            strokes.append(QLine(last->x(), low, last->x(), high));
    };
    for (const QPointF& point : points) {
        if (std::isnan(point.x()) || std::isnan(point.y())) {
            endColumn();
            last.reset();
            continue;
        }
        const QPoint here(static_cast<int>(std::lround(std::clamp(point.x(), -farthest, farthest))),
                          static_cast<int>(std::lround(std::clamp(point.y(), -farthest, farthest))));
        if (last && last->x() == here.x()) {
            low = std::min(low, here.y());
            high = std::max(high, here.y());
        } else {
            endColumn();
            if (last)
                strokes.append(QLine(*last, here));
            low = high = here.y();
        }
        last = here;
    }
    endColumn();
    return strokes;
}

} // namespace

void HistoryCurve::drawLinePlot(QCPPainter* painter, const QVector<QPointF>& lines) const {
    applyDefaultAntialiasingHint(painter);
    if (painter->antialiasing() || painter->modes() != QCPPainter::pmDefault)
        QCPGraph::drawLinePlot(painter, lines);
    else
        painter->drawLines(Strokes(lines));
}

void HistoryCurve::drawScatterPlot(QCPPainter* painter, const QVector<QPointF>& scatters,
                                   const QCPScatterStyle& style) const {
    if (painter->modes() != QCPPainter::pmDefault) {
        QCPGraph::drawScatterPlot(painter, scatters, style);
        return;
    }
    const double middle = std::ceil(style.size() / 2.0 + style.pen().widthF()) + 0.5;
    const double ratio = painter->device()->devicePixelRatioF();
    const int side = static_cast<int>(std::ceil(2.0 * middle * ratio));
    QPixmap stamp(side, side);
    stamp.setDevicePixelRatio(ratio);
    stamp.fill(Qt::transparent);
    QCPPainter pen(&stamp);
    applyScattersAntialiasingHint(&pen);
    style.applyTo(&pen, mPen);
    style.drawShape(&pen, middle, middle);
    pen.end();
    for (const QPointF& place : scatters)
        painter->drawPixmap(place - QPointF(middle, middle), stamp);
}
