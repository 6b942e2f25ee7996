#include "telemetry/plots/ChannelTable.h"

#include "foundation/text/Text.h"
#include "telemetry/calibration/ChannelMap.h"
#include "telemetry/calibration/GridLayout.h"
#include "telemetry/grids/FixedNumber.h"
#include "telemetry/plots/HistoryCsv.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <tuple>

namespace {

// "5 s", "12 min", "3 h 20 min", "2 d 3 h".
QString AgeText(qint64 milliseconds) {
    const qint64 minutes = milliseconds / 60'000;
    if (minutes < 1)
        return QStringLiteral("%1 s").arg(milliseconds / 1000);
    if (minutes < 60)
        return QStringLiteral("%1 min").arg(minutes);
    if (minutes < 24 * 60)
        return QStringLiteral("%1 h %2 min").arg(minutes / 60).arg(minutes % 60);
    return QStringLiteral("%1 d %2 h").arg(minutes / 1440).arg(minutes / 60 % 24);
}

} // namespace

ChannelTable::ChannelTable(const ChannelMap& map, LimitTable limits, DisplayTime displayTime, QObject* parent)
    : QAbstractTableModel(parent)
    , m_limits(std::move(limits))
    , m_displayTime(std::move(displayTime)) {
    for (int side = 0; side < ChannelMap::sides; ++side)
        for (int frameType = 0; frameType < ChannelMap::frameTypes; ++frameType)
            for (int channel = 0; channel < ChannelMap::channels; ++channel)
                if (const ChannelCell* cell = map.At(side, frameType, channel))
                    m_channels.push_back({side, cell->grid, cell->row});
    std::ranges::sort(m_channels, {}, [](const HistoryChannel& channel) {
        return std::tuple(channel.grid, channel.row, channel.side);
    });
    m_isPlotted.resize(m_channels.size());
    m_values.resize(m_channels.size());
}

int ChannelTable::RowOf(const HistoryChannel& channel) const {
    const auto found = std::ranges::find(m_channels, channel);
    return found == m_channels.end() ? -1 : static_cast<int>(found - m_channels.begin());
}

std::vector<HistoryChannel> ChannelTable::Plotted() const {
    std::vector<HistoryChannel> plotted;
    for (std::size_t i = 0; i < m_channels.size(); ++i)
        if (m_isPlotted[i])
            plotted.push_back(m_channels[i]);
    return plotted;
}

void ChannelTable::SetPlotted(const std::vector<HistoryChannel>& channels) {
    for (std::size_t i = 0; i < m_channels.size(); ++i)
        m_isPlotted[i] = std::ranges::find(channels, m_channels[i]) != channels.end();
    Q_EMIT dataChanged(index(0, Channel), index(rowCount() - 1, Channel), {Qt::CheckStateRole});
}

void ChannelTable::SetValues(HistoryWorker::Values values, qint64 utc) {
    m_values = std::move(values);
    m_values.resize(m_channels.size());
    m_utc = utc;
    Q_EMIT dataChanged(index(0, Value), index(rowCount() - 1, Age));
}

void ChannelTable::Retell() {
    Q_EMIT dataChanged(index(0, Heard), index(rowCount() - 1, Heard));
}

QString ChannelTable::RowText(const HistoryChannel& channel) {
    return QString::fromLatin1(GridLayout::Heading(channel.grid)) + u' ' +
           QString::fromLatin1(GridLayout::RowName(channel.grid, channel.row));
}

QString ChannelTable::SideText(const HistoryChannel& channel) {
    return channel.side == 1 ? QStringLiteral("B") : QStringLiteral("A");
}

QString ChannelTable::NumberText(const HistoryChannel& channel, double value) {
    return std::isnan(value) ? QString() : FixedNumber(value, GridLayout::Decimals(channel.grid));
}

QString ChannelTable::NameOf(const HistoryChannel& channel) {
    return QStringLiteral("%1, side %2").arg(RowText(channel), SideText(channel));
}

QString ChannelTable::ValueText(const HistoryChannel& channel, double value, const LimitTable& limits) {
    const QString unit = UnitOf(channel, limits);
    const QString number = NumberText(channel, value);
    return unit.isEmpty() ? number : number + u' ' + unit;
}

QString ChannelTable::TextOf(std::size_t row, int column) const {
    const HistoryChannel& channel = m_channels[row];
    if (column == Channel)
        return RowText(channel);
    if (column == Side)
        return SideText(channel);
    if (column == Unit)
        return UnitOf(channel, m_limits);
    const std::optional<TelemetryHistory::Value>& value = m_values[row];
    if (!value)
        return {};
    switch (column) {
    case Value:
        return NumberText(channel, value->value);
    case Raw:
        return Text::GeneralNumber(value->raw);
    case Heard:
        return FormatDateTime(m_displayTime(value->utc), u"yyyy-mm-dd hh:nn:ss");
    default:
        return AgeText(m_utc - value->utc) +
               (IsStale(value->utc, m_utc) ? QStringLiteral(", stale") : QString());
    }
}

int ChannelTable::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_channels.size());
}

int ChannelTable::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(Columns);
}

Qt::ItemFlags ChannelTable::flags(const QModelIndex& index) const {
    return QAbstractTableModel::flags(index) |
           (index.column() == Channel ? Qt::ItemIsUserCheckable : Qt::NoItemFlags);
}

QVariant ChannelTable::data(const QModelIndex& index, int role) const {
    if (!index.isValid())
        return {};
    const auto row = static_cast<std::size_t>(index.row());
    if (role == Qt::DisplayRole)
        return TextOf(row, index.column());
    if (role == Qt::CheckStateRole && index.column() == Channel)
        return m_isPlotted[row] ? Qt::Checked : Qt::Unchecked;
    if (role == Qt::TextAlignmentRole && (index.column() == Value || index.column() == Raw))
        return int(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

bool ChannelTable::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid() || role != Qt::CheckStateRole || index.column() != Channel)
        return false;
    m_isPlotted[static_cast<std::size_t>(index.row())] = value.toInt() == Qt::Checked;
    Q_EMIT dataChanged(index, index, {Qt::CheckStateRole});
    Q_EMIT PlottedChanged();
    return true;
}

QVariant ChannelTable::headerData(int section, Qt::Orientation orientation, int role) const {
    static constexpr std::array<const char*, Columns> names{"Channel", "Side",  "Value", "Unit",
                                                            "Raw",     "Heard", "Age"};
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= Columns)
        return {};
    return QString::fromLatin1(names[static_cast<std::size_t>(section)]);
}
