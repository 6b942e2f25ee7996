#pragma once

#include "foundation/text/DateTime.h"
#include "telemetry/calibration/GridLayout.h"
#include "telemetry/limits/LimitJudge.h"

#include <QAbstractTableModel>
#include <QByteArrayView>

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// Which frame brought a value.
struct FrameLabel {
    QByteArrayView sequence; ///< the frame's sequence field, Windows-1252
    DateTime time = 0.0;     ///< when it was heard, in display time
    qint64 utc = 0;          ///< the same, milliseconds since 1970-01-01 00:00 UTC
};

/// One of the three grids of decoded telemetry: a header row 0, one row from 1 on for each quantity, and the
/// columns below. As an item model it has the rows without the header: model row r - 1 is grid row r.
///
/// A cell keeps its full value; texts are made when somebody looks, and views hear of changes once a turn of
/// the event loop, for a stream may set the same cell a million times a second.
class TelemetryGrid : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column {
        Name = 0,
        ValueA = 1,
        ValueB = 2,
        LabelA = 3, ///< hidden
        LabelB = 4, ///< hidden
        Columns = 5
    };

    enum Role {
        FullText = Qt::UserRole, ///< the text of a cell before its display format
        LevelRole,               ///< how far its value lies outside its limits, a Level as int
        LimitText,               ///< what is to be said of a cell beside its label: unit, limits, age
        HeardUtc, ///< when its value was heard, milliseconds since 1970; none while it has none
    };

    /// `index`: 0 POWER, 1 CURRENT, 2 TEMP.
    explicit TelemetryGrid(int index, QObject* parent = nullptr);

    int Index() const { return m_index; }

    /// The name by which the formula file calls the grid.
    QByteArrayView Tag() const;

    /// Rows without the header row: row numbers run from 1 to this.
    int Rows() const { return static_cast<int>(m_cells.size()); }

    /// The text of a cell, values in full; empty for what is outside the grid or was never set.
    QString TextMatrix(int row, int column) const;

    /// The text of a cell as it is shown: values in the grid's display format.
    QString DisplayText(int row, int column) const;

    /// From now on the cells show what is known of their channels' limits, as soon as there are any. `now`:
    /// milliseconds since 1970-01-01 00:00 UTC. Both must outlive the grid.
    void ShowLimits(const LimitJudge& limits, std::function<qint64()> now);

    /// The first row whose name in upper case is `upperCaseName`; 0 when there is none.
    int FindRow(QByteArrayView upperCaseName) const;

    /// Sets the value of `side` (0 A, 1 B) and its label; false, and nothing changes, outside the grid.
    bool SetValue(int row, int side, double value, const FrameLabel& label);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    struct Cell {
        bool isSet = false;
        double value = 0.0;
        std::string sequence;
        DateTime time = 0.0;
        qint64 utc = 0;
    };

    const Cell* CellAt(int row, int side) const;
    const Cell* LimitedCellAt(int row, int column) const;
    Level LevelAt(int row, int column) const;
    QString Remarks(int row, int column) const;
    QString Unit(int row, int column) const;
    QString AccessibleText(int row, int column) const;
    QString TipRemarks(int row, int column) const;
    void Announce();

    const int m_index;
    std::vector<std::array<Cell, 2>> m_cells; // [row - 1][side]
    std::vector<bool> m_changed;              // [row - 1]
    bool m_announced = false;
    const LimitJudge* m_limits = nullptr; // none until it is given
    std::function<qint64()> m_now;
};

/// The three grids in the order of their indices.
using TelemetryGrids = std::array<std::unique_ptr<TelemetryGrid>, GridLayout::grids>;

TelemetryGrids MakeTelemetryGrids();
