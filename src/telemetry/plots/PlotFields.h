#pragma once

#include "telemetry/limits/ChannelLimits.h"
#include "telemetry/plots/CustomPlot.h"
#include "telemetry/plots/PlotPoints.h"

/// What stands in a history plot: one field a grid, one above the other, with the curves of its channels,
/// their limits, the shades of passes and the cross-hair. Times are milliseconds since 1970-01-01 00:00 UTC.
class PlotFields {
public:
    using Span = std::pair<qint64, qint64>;

    /// Where the cross-hair reads a value.
    struct Mark {
        std::size_t channel = 0;
        qint64 utc = 0;
        double value = 0.0;
    };

    /// `plot` owns what is drawn, and must outlive this object.
    PlotFields(QCustomPlot& plot, LimitTable limits);

    /// Makes the fields anew for these channels, which are sorted by their grids.
    void Build(const std::vector<HistoryChannel>& channels);
    const std::vector<QCPAxisRect*>& Rects() const { return m_rects; }
    QCPGraph* Curve(std::size_t channel) const { return m_plot.graph(static_cast<int>(channel)); }

    /// By the plot's palette and font.
    void Colour();

    void SetRange(qint64 from, qint64 to);
    void LabelTimes(qint64 range, bool isLocal);
    void ShadePasses(const std::vector<Span>& passes);
    void SetPoints(std::size_t channel, const std::vector<PlotPoints::Point>& points);

    /// Fits the axes of values to the points in the range.
    void FitValues();

    void ShowCross(std::optional<qint64> utc, const std::optional<Mark>& mark);

private:
    void AddField(const std::vector<HistoryChannel>& channels, int grid);
    void AddCurve(const HistoryChannel& channel, QCPAxisRect* rect, QCPLegend* legend);
    void AddLimits(const HistoryChannel& channel, QCPAxisRect* rect);
    QCPItemStraightLine* AddLine(QCPAxisRect* rect);
    void ColourAxis(QCPAxis* axis);

    QCustomPlot& m_plot;
    const LimitTable m_limits;
    std::vector<QCPAxisRect*> m_rects;
    std::vector<QCPLegend*> m_legends;               // of each field
    std::vector<QCPItemStraightLine*> m_cursorLines; // one a field
    std::vector<QCPItemRect*> m_shades;
    QCPMarginGroup* m_margins = nullptr;
    QCPItemStraightLine* m_level = nullptr; // of the value that is read
    QCPItemTracer* m_mark = nullptr;        // at it
};
