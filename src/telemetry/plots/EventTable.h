#pragma once

#include "telemetry/limits/LimitJudge.h"
#include "telemetry/plots/ChannelTable.h"

/// The crossings of limits, a row each, the newest first.
class EventTable : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { Time, Channel, Side, Value, Unit, From, To, Columns };

    EventTable(LimitTable limits, ChannelTable::DisplayTime displayTime, QObject* parent = nullptr);

    /// Oldest first.
    void SetEvents(std::vector<LimitEvent> events);

    const LimitEvent& EventAt(int row) const {
        return m_events[m_events.size() - 1 - static_cast<std::size_t>(row)];
    }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    const LimitTable m_limits;
    const ChannelTable::DisplayTime m_displayTime;
    std::vector<LimitEvent> m_events;
};
