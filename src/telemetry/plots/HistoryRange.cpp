#include "telemetry/plots/HistoryRange.h"

#include "foundation/text/IsoTime.h"

#include <algorithm>

namespace {

constexpr qint64 minute = 60'000;
constexpr qint64 day = 24 * 60 * minute;
constexpr qint64 roomShare = 50; // of the readings' length, on either side

std::pair<qint64, qint64> WithRoom(qint64 first, qint64 last) {
    const qint64 room = std::max(minute, (last - first) / roomShare);
    return {first - room, last + room};
}

} // namespace

QString HistoryRange::Text() const {
    if (kind == Kind::Typed)
        return QString::fromLatin1(IsoTime::Milliseconds(from) + '/' + IsoTime::Milliseconds(to));
    return QString::fromLatin1(captions.at(static_cast<std::size_t>(kind)));
}

HistoryRange HistoryRange::Of(const QString& text) {
    for (std::size_t i = 0; i < captions.size(); ++i)
        if (text == QLatin1StringView(captions[i]))
            return {static_cast<Kind>(i)};
    const QByteArray bytes = text.toLatin1();
    const std::string_view times(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    const std::size_t middle = times.find('/');
    if (middle == times.npos)
        return {};
    const auto from = IsoTime::Read(times.substr(0, middle));
    const auto to = IsoTime::Read(times.substr(middle + 1));
    return from && to && *from < *to ? HistoryRange{Kind::Typed, *from, *to} : HistoryRange{};
}

std::pair<qint64, qint64> HistoryRange::Times(const HistoryState& history, qint64 now) const {
    const bool isEmpty = history.frames == 0;
    const qint64 end = isEmpty ? now : std::max(now, history.last);
    switch (kind) {
    case Kind::Typed:
        return {from, to};
    case Kind::Week:
        return {end - 7 * day, end};
    case Kind::Month:
        return {end - 30 * day, end};
    case Kind::LastPass:
        if (!isEmpty)
            return WithRoom(history.lastPassFrom, history.last);
        break;
    case Kind::All:
        if (!isEmpty)
            return WithRoom(history.first, history.last);
        break;
    case Kind::Day:
        break;
    }
    return {end - day, end};
}
