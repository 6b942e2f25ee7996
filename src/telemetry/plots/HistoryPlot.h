#pragma once

#include "telemetry/plots/HistoryWorker.h"
#include "telemetry/plots/PlotFields.h"

/// The curves of channels over time: one field a grid, one time axis for all. Wheel and drag, the arrow keys,
/// plus and minus zoom and move; Home and End show the beginning and the end; with Ctrl the arrow keys step
/// the cursor from reading to reading. Times are milliseconds since 1970-01-01 00:00 UTC.
class HistoryPlot : public QCustomPlot {
    Q_OBJECT
public:
    explicit HistoryPlot(LimitTable limits, QWidget* parent = nullptr);

    /// What is plotted: a channel's readings in each place; channels are sorted by their grids.
    void SetReadings(std::vector<HistoryChannel> channels, HistoryWorker::Columns readings);
    const std::vector<HistoryChannel>& Channels() const { return m_channels; }
    const std::vector<HistoryColumns>& Readings() const { return *m_readings; }
    const HistoryWorker::Columns& SharedReadings() const { return m_readings; }

    /// Whether times are labelled in local time.
    void SetLocalTime(bool isLocal);

    /// From rise to set.
    void SetPasses(std::vector<PlotFields::Span> passes);

    void SetRange(qint64 from, qint64 to);
    qint64 From() const { return m_from; }
    qint64 To() const { return m_to; }

    /// The cursor to a time; the reading that it reads out is the last one until then.
    void SetCursor(qint64 utc);
    std::optional<qint64> Cursor() const { return m_cursor; }

    /// The reading that the cursor reads out.
    std::optional<PlotPoints::Place> Nearest() const { return m_nearest; }

    /// Brings what is in view to the fields. Done whenever the view changes; for those who measure.
    void Fill();

Q_SIGNALS:
    void RangeChanged();
    void CursorChanged();
    void BackAsked(); ///< by a double click or the Backspace key
    void EndAsked(bool isLast);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void Build();
    void Zoom(double factor, qint64 around);
    void MoveCursor(qint64 utc, std::optional<PlotPoints::Place> nearest);
    void StepCursor(bool isForward);
    void PointAt(const QPointF& place);
    void ShowCursor();

    PlotFields m_fields;
    std::vector<HistoryChannel> m_channels;
    HistoryWorker::Columns m_readings = std::make_shared<const std::vector<HistoryColumns>>();
    std::vector<PlotFields::Span> m_passes;
    bool m_isLocal = false;
    bool m_isSetting = false; // the range of the fields
    qint64 m_from = 0;
    qint64 m_to = 86'400'000;
    std::optional<qint64> m_cursor;
    std::optional<PlotPoints::Place> m_nearest;
};
