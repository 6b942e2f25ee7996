#include "telemetry/plots/HistoryKept.h"

#include "telemetry/calibration/GridLayout.h"

#include <QStringList>

namespace {

QString NameOf(const HistoryChannel& channel) {
    return QStringLiteral("%1/%2/%3")
        .arg(QLatin1Char(channel.side == 1 ? 'B' : 'A'))
        .arg(QLatin1StringView(GridLayout::Tag(channel.grid)),
             QLatin1StringView(GridLayout::RowName(channel.grid, channel.row)));
}

} // namespace

QString HistoryKept::Text(const std::vector<HistoryChannel>& channels) {
    QStringList names;
    for (const HistoryChannel& channel : channels)
        names.append(NameOf(channel));
    return names.join(u';');
}

std::vector<HistoryChannel> HistoryKept::Channels(const QString& text,
                                                  const std::vector<HistoryChannel>& all) {
    const QStringList names = text.split(u';');
    std::vector<HistoryChannel> channels;
    for (const HistoryChannel& channel : all)
        if (names.contains(NameOf(channel)))
            channels.push_back(channel);
    return channels;
}
