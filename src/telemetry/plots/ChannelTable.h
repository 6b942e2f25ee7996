#pragma once

#include "foundation/text/DateTime.h"
#include "telemetry/limits/ChannelLimits.h"
#include "telemetry/plots/HistoryWorker.h"

#include <QAbstractTableModel>

class ChannelMap;

/// Every channel of the satellite as the grids showed it at a time, a row each; the ticks in the first column
/// choose which of them are plotted.
class ChannelTable : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { Channel, Side, Value, Unit, Raw, Heard, Age, Columns };

    /// The local or UTC time in which the user reads times, of milliseconds since 1970-01-01 00:00 UTC.
    using DisplayTime = std::function<DateTime(qint64)>;

    ChannelTable(const ChannelMap& map, LimitTable limits, DisplayTime displayTime,
                 QObject* parent = nullptr);

    /// All channels, in the order of their rows: by grid, row and side.
    const std::vector<HistoryChannel>& Channels() const { return m_channels; }

    /// The row of a channel; -1 for none.
    int RowOf(const HistoryChannel& channel) const;

    std::vector<HistoryChannel> Plotted() const;
    void SetPlotted(const std::vector<HistoryChannel>& channels);

    /// `values` as TelemetryHistory::Shown gives them for Channels(), `utc` their time.
    void SetValues(HistoryWorker::Values values, qint64 utc);

    /// Times are told as local or UTC times from now on.
    void Retell();

    /// "POWER Batt A"; "A"; a value in the grid's decimals, empty where it is no number.
    static QString RowText(const HistoryChannel& channel);
    static QString SideText(const HistoryChannel& channel);
    static QString NumberText(const HistoryChannel& channel, double value);

    /// "POWER Batt A, side A".
    static QString NameOf(const HistoryChannel& channel);

    /// The value in the grid's decimals, with its unit where that is known.
    static QString ValueText(const HistoryChannel& channel, double value, const LimitTable& limits);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

Q_SIGNALS:
    /// The user has ticked or unticked a channel.
    void PlottedChanged();

private:
    QString TextOf(std::size_t row, int column) const;

    const LimitTable m_limits;
    const DisplayTime m_displayTime;
    std::vector<HistoryChannel> m_channels;
    std::vector<bool> m_isPlotted;
    HistoryWorker::Values m_values;
    qint64 m_utc = 0;
};
