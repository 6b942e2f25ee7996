#pragma once

#include "telemetry/plots/CustomPlot.h"

/// A channel's curve that is cheap to draw on a screen. Lines that are not smoothed become one upright stroke
/// in each column of pixels, from its lowest to its highest point, and the joints between columns; a symbol
/// is drawn once and stamped. Paper and pictures get exact shapes.
class HistoryCurve : public QCPGraph {
public:
    using QCPGraph::QCPGraph;

protected:
    void drawLinePlot(QCPPainter* painter, const QVector<QPointF>& lines) const override;
    void drawScatterPlot(QCPPainter* painter, const QVector<QPointF>& scatters,
                         const QCPScatterStyle& style) const override;
};
