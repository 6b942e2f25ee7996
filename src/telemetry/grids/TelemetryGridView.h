#pragma once

#include <QTableView>

class TelemetryGrid;
class LimitDelegate;
class TipCell;
class ValueAge;

/// Shows one telemetry grid. The header row and the name column stand still; hovering over a value tells
/// which frame brought it and when; values can be copied in full.
class TelemetryGridView : public QTableView {
    Q_OBJECT
public:
    /// `tipCell` is shared by the grids.
    TelemetryGridView(TelemetryGrid& grid, TipCell& tipCell, QWidget* parent = nullptr);

    /// Adds an entry to the menu with which old values are dimmed, in all grids that share `ages`; it
    /// outlives the view.
    void ShowAges(ValueAge& ages);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    bool eventFilter(QObject* watched, QEvent* event) override;

Q_SIGNALS:
    /// The user wants to see the history of a value: of `side` (0 A, 1 B) in a row of the grid, from 1.
    void HistoryOfValue(int side, int grid, int row);

    /// The user wants to see the history.
    void History();

    /// The user has switched the dimming of old values.
    void DimOldToggled(bool isOn);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void FitCells();
    void MouseOver(int row, int column);
    void AddHistoryEntries();
    void AskForHistory(const QModelIndex& cell);
    QAction* AddEntry(const QString& name, const QString& caption);
    void CopySelection(int role) const;

    TelemetryGrid& m_grid;
    TipCell& m_tipCell;
    LimitDelegate* m_delegate;
};
