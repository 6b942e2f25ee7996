#include "telemetry/plots/EventTable.h"

#include "telemetry/plots/HistoryCsv.h"

#include <array>

EventTable::EventTable(LimitTable limits, ChannelTable::DisplayTime displayTime, QObject* parent)
    : QAbstractTableModel(parent)
    , m_limits(std::move(limits))
    , m_displayTime(std::move(displayTime)) {}

void EventTable::SetEvents(std::vector<LimitEvent> events) {
    beginResetModel();
    m_events = std::move(events);
    endResetModel();
}

int EventTable::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_events.size());
}

int EventTable::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(Columns);
}

QVariant EventTable::data(const QModelIndex& index, int role) const {
    if (!index.isValid())
        return {};
    if (role == Qt::TextAlignmentRole && index.column() == Value)
        return int(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole)
        return {};
    const LimitEvent& event = EventAt(index.row());
    const HistoryChannel channel{event.cell.side, event.cell.grid, event.cell.row};
    switch (index.column()) {
    case Time:
        return FormatDateTime(m_displayTime(event.utc), u"yyyy-mm-dd hh:nn:ss");
    case Channel:
        return ChannelTable::RowText(channel);
    case Side:
        return ChannelTable::SideText(channel);
    case Value:
        return ChannelTable::NumberText(channel, event.value);
    case Unit:
        return UnitOf(channel, m_limits);
    default:
        return QString::fromLatin1(LevelName(index.column() == From ? event.from : event.to));
    }
}

QVariant EventTable::headerData(int section, Qt::Orientation orientation, int role) const {
    static constexpr std::array<const char*, Columns> names{"Heard", "Channel", "Side", "Value",
                                                            "Unit",  "From",    "To"};
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= Columns)
        return {};
    return QString::fromLatin1(names[static_cast<std::size_t>(section)]);
}
