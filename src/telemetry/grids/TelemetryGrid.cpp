#include "telemetry/grids/TelemetryGrid.h"

#include "foundation/text/Text.h"
#include "telemetry/calibration/GridLayout.h"
#include "telemetry/frames/ByteViews.h"
#include "telemetry/grids/FixedNumber.h"

#include <QLatin1StringView>
#include <QStringList>

#include <utility>

namespace {

QString HeaderText(int index, int column) {
    switch (column) {
    case TelemetryGrid::Name:
        return QLatin1StringView(GridLayout::Heading(index));
    case TelemetryGrid::ValueA:
        return QStringLiteral("A");
    case TelemetryGrid::ValueB:
        return QStringLiteral("B");
    default:
        return {};
    }
}

} // namespace

TelemetryGrid::TelemetryGrid(int index, QObject* parent)
    : QAbstractTableModel(parent)
    , m_index(index)
    , m_cells(GridLayout::RowNames(index).size())
    , m_changed(m_cells.size()) {}

QByteArrayView TelemetryGrid::Tag() const {
    return GridLayout::Tag(m_index);
}

const TelemetryGrid::Cell* TelemetryGrid::CellAt(int row, int side) const {
    if (row < 1 || row > Rows() || side < 0 || side > 1)
        return nullptr;
    return &m_cells[static_cast<std::size_t>(row - 1)][static_cast<std::size_t>(side)];
}

QString TelemetryGrid::TextMatrix(int row, int column) const {
    if (row == 0)
        return HeaderText(m_index, column);
    if (column == Name && row > 0 && row <= Rows())
        return QLatin1StringView(GridLayout::RowName(m_index, row));
    const bool isLabel = column == LabelA || column == LabelB;
    const Cell* cell = CellAt(row, column - (isLabel ? LabelA : ValueA));
    if (cell == nullptr || !cell->isSet)
        return {};
    return isLabel ? Text::FromBytes(cell->sequence) + FormatDateTime(cell->time, u"  yyyy-mmm-dd hh:nn")
                   : Text::GeneralNumber(cell->value);
}

QString TelemetryGrid::DisplayText(int row, int column) const {
    const Cell* cell = column == ValueA || column == ValueB ? CellAt(row, column - ValueA) : nullptr;
    return cell != nullptr && cell->isSet ? FixedNumber(cell->value, GridLayout::Decimals(m_index))
                                          : TextMatrix(row, column);
}

int TelemetryGrid::FindRow(QByteArrayView upperCaseName) const {
    return GridLayout::FindRow(m_index, upperCaseName);
}

void TelemetryGrid::ShowLimits(const LimitJudge& limits, std::function<qint64()> now) {
    m_limits = &limits;
    m_now = std::move(now);
}

// A value's cell; null where no value stands, and everywhere without limits.
const TelemetryGrid::Cell* TelemetryGrid::LimitedCellAt(int row, int column) const {
    const bool isLimited =
        m_limits != nullptr && !m_limits->Limits().empty() && (column == ValueA || column == ValueB);
    const Cell* cell = isLimited ? CellAt(row, column - ValueA) : nullptr;
    return cell != nullptr && cell->isSet ? cell : nullptr;
}

Level TelemetryGrid::LevelAt(int row, int column) const {
    return LimitedCellAt(row, column) == nullptr ? Level::Normal
                                                 : m_limits->LevelAt({column - ValueA, m_index, row});
}

QString TelemetryGrid::Unit(int row, int column) const {
    const ChannelLimits* limits =
        LimitedCellAt(row, column) == nullptr ? nullptr : m_limits->LimitsOf({column - ValueA, m_index, row});
    return limits == nullptr ? QString() : limits->unit;
}

// Whether a value is outside its limits, and whether it is old.
QString TelemetryGrid::Remarks(int row, int column) const {
    QStringList remarks;
    if (const Level level = LevelAt(row, column); level != Level::Normal)
        remarks += QLatin1StringView(LevelName(level));
    const Cell* cell = LimitedCellAt(row, column);
    if (cell != nullptr && IsStale(cell->utc, m_now()))
        remarks += QStringLiteral("older than 24 hours");
    return remarks.join(QStringLiteral(", "));
}

bool TelemetryGrid::SetValue(int row, int side, double value, const FrameLabel& label) {
    if (CellAt(row, side) == nullptr)
        return false;
    Cell& cell = m_cells[static_cast<std::size_t>(row - 1)][static_cast<std::size_t>(side)];
    cell.isSet = true;
    cell.value = value;
    cell.sequence.assign(ToView(label.sequence));
    cell.time = label.time;
    cell.utc = label.utc;
    m_changed[static_cast<std::size_t>(row - 1)] = true;
    if (!m_announced) {
        m_announced = true;
        QMetaObject::invokeMethod(this, &TelemetryGrid::Announce, Qt::QueuedConnection);
    }
    return true;
}

void TelemetryGrid::Announce() {
    m_announced = false;
    for (int row = 0; row < Rows(); ++row) {
        if (!m_changed[static_cast<std::size_t>(row)])
            continue;
        m_changed[static_cast<std::size_t>(row)] = false;
        Q_EMIT dataChanged(index(row, ValueA), index(row, LabelB));
    }
}

int TelemetryGrid::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : Rows();
}

int TelemetryGrid::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : Columns;
}

Qt::ItemFlags TelemetryGrid::flags(const QModelIndex& index) const {
    // The name column is fixed like the header row: nobody selects it.
    return index.column() == Name ? Qt::ItemIsEnabled : QAbstractTableModel::flags(index);
}

// A value alone says nothing to somebody who cannot see its row and column.
QString TelemetryGrid::AccessibleText(int row, int column) const {
    if (column == Name)
        return DisplayText(row, Name);
    const QString remarks = Remarks(row, column);
    const QString text = QStringLiteral("%1, %2: %3")
                             .arg(TextMatrix(row, Name), TextMatrix(0, column), DisplayText(row, column));
    return remarks.isEmpty() ? text : text + QStringLiteral(", ") + remarks;
}

// The value with its unit, where that is known, and what else is to be said of it.
QString TelemetryGrid::TipRemarks(int row, int column) const {
    const QString unit = Unit(row, column);
    const QString remarks = Remarks(row, column);
    if (unit.isEmpty())
        return remarks;
    const QString value = QStringLiteral("%1 %2").arg(DisplayText(row, column), unit);
    return remarks.isEmpty() ? value : value + QStringLiteral(", ") + remarks;
}

QVariant TelemetryGrid::data(const QModelIndex& index, int role) const {
    const int row = index.row() + 1;
    switch (role) {
    case Qt::DisplayRole:
        return DisplayText(row, index.column());
    case FullText:
        return TextMatrix(row, index.column());
    case Qt::AccessibleTextRole:
        return AccessibleText(row, index.column());
    case LevelRole:
        return static_cast<int>(LevelAt(row, index.column()));
    case LimitText:
        return TipRemarks(row, index.column());
    case HeardUtc: {
        const Cell* cell = index.column() == Name ? nullptr : CellAt(row, index.column() - ValueA);
        return cell != nullptr && cell->isSet ? QVariant(cell->utc) : QVariant();
    }
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(Qt::Alignment(index.column() == Name ? Qt::AlignLeft : Qt::AlignRight) |
                                   Qt::AlignVCenter);
    default:
        return {};
    }
}

QVariant TelemetryGrid::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue(Qt::Alignment(section == Name ? Qt::AlignLeft : Qt::AlignRight) |
                                   Qt::AlignVCenter);
    return role == Qt::DisplayRole ? HeaderText(m_index, section) : QVariant();
}

TelemetryGrids MakeTelemetryGrids() {
    TelemetryGrids grids;
    for (int index = 0; index < GridLayout::grids; ++index)
        grids[static_cast<std::size_t>(index)] = std::make_unique<TelemetryGrid>(index);
    return grids;
}
