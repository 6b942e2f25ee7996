#pragma once

#include <QTableView>

class TelemetryGrid;
class TipCell;

/// Shows one telemetry grid. The header row and the name column stand still; hovering over a value tells
/// which frame brought it and when; values can be copied in full.
class TelemetryGridView : public QTableView {
    Q_OBJECT
public:
    /// `tipCell` is shared by the grids.
    TelemetryGridView(TelemetryGrid& grid, TipCell& tipCell, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    bool eventFilter(QObject* watched, QEvent* event) override;

Q_SIGNALS:
    /// The user wants to see the history of a value: of `side` (0 A, 1 B) in a row of the grid, from 1.
    void HistoryOfValue(int side, int grid, int row);

    /// The user wants to see the history.
    void History();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void FitCells();
    void MouseOver(int row, int column);
    void CopySelection() const;
    void AddHistoryEntries();
    void AskForHistory(const QModelIndex& cell);

    TelemetryGrid& m_grid;
    TipCell& m_tipCell;
};
