#include "telemetry/plots/ReadingTable.h"

#include "foundation/text/Text.h"
#include "telemetry/plots/HistoryCsv.h"

#include <array>

ReadingTable::ReadingTable(LimitTable limits, ChannelTable::DisplayTime displayTime, QObject* parent)
    : QAbstractTableModel(parent)
    , m_limits(std::move(limits))
    , m_displayTime(std::move(displayTime)) {}

void ReadingTable::SetReadings(std::vector<HistoryChannel> channels, HistoryWorker::Columns readings,
                               qint64 from, qint64 to) {
    beginResetModel();
    m_channels = std::move(channels);
    m_readings = std::move(readings);
    m_places = PlotPoints::InOrder(*m_readings, from, to, most);
    endResetModel();
}

qint64 ReadingTable::TimeOf(int row) const {
    const PlotPoints::Place& place = m_places[static_cast<std::size_t>(row)];
    return (*m_readings)[place.channel].utc[place.at];
}

int ReadingTable::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_places.size());
}

int ReadingTable::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(Columns);
}

QVariant ReadingTable::data(const QModelIndex& index, int role) const {
    if (!index.isValid())
        return {};
    if (role == Qt::TextAlignmentRole && (index.column() == Value || index.column() == Raw))
        return int(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole)
        return {};
    const PlotPoints::Place& place = m_places[static_cast<std::size_t>(index.row())];
    const HistoryChannel& channel = m_channels[place.channel];
    const HistoryColumns& readings = (*m_readings)[place.channel];
    switch (index.column()) {
    case Time:
        return FormatDateTime(m_displayTime(readings.utc[place.at]), u"yyyy-mm-dd hh:nn:ss");
    case Channel:
        return ChannelTable::RowText(channel);
    case Side:
        return ChannelTable::SideText(channel);
    case Value:
        return ChannelTable::NumberText(channel, readings.value[place.at]);
    case Unit:
        return UnitOf(channel, m_limits);
    default:
        return Text::GeneralNumber(readings.raw[place.at]);
    }
}

QVariant ReadingTable::headerData(int section, Qt::Orientation orientation, int role) const {
    static constexpr std::array<const char*, Columns> names{"Heard", "Channel", "Side",
                                                            "Value", "Unit",    "Raw"};
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= Columns)
        return {};
    return QString::fromLatin1(names[static_cast<std::size_t>(section)]);
}
