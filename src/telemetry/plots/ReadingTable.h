#pragma once

#include "telemetry/plots/ChannelTable.h"
#include "telemetry/plots/PlotPoints.h"

/// The readings that are plotted and in view, a row each, in the order of their times: what the curves show,
/// for those who cannot see them.
class ReadingTable : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { Time, Channel, Side, Value, Unit, Raw, Columns };

    static constexpr std::size_t most = 10'000; ///< rows

    ReadingTable(LimitTable limits, ChannelTable::DisplayTime displayTime, QObject* parent = nullptr);

    void SetReadings(std::vector<HistoryChannel> channels, HistoryWorker::Columns readings, qint64 from,
                     qint64 to);

    /// When the reading in a row was heard, milliseconds since 1970-01-01 00:00 UTC.
    qint64 TimeOf(int row) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    const LimitTable m_limits;
    const ChannelTable::DisplayTime m_displayTime;
    std::vector<HistoryChannel> m_channels;
    HistoryWorker::Columns m_readings;
    std::vector<PlotPoints::Place> m_places;
};
