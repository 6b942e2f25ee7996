#include "telemetry/imports/ImportZone.h"

#include <QDateTime>

#include <algorithm>
#include <vector>

namespace {

constexpr qint64 day = 86'400'000;

qint64 OffsetAt(const QTimeZone& zone, qint64 utc) {
    return qint64{1000} * zone.offsetFromUtc(QDateTime::fromMSecsSinceEpoch(utc, Qt::UTC));
}

// Every UTC that is this local time, in their order: none in an hour that is left out, two in one that occurs
// twice.
std::vector<qint64> Candidates(const QTimeZone& zone, qint64 local) {
    std::vector<qint64> found;
    for (const qint64 around : {local - day, local + day}) {
        const qint64 utc = local - OffsetAt(zone, around);
        if (OffsetAt(zone, utc) == local - utc)
            found.push_back(utc);
    }
    std::ranges::sort(found);
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

// The first that is not before `last`; where all are, the last of them.
qint64 Choose(const std::vector<qint64>& candidates, std::optional<qint64> last) {
    const auto found = last ? std::ranges::lower_bound(candidates, *last) : candidates.begin();
    return found == candidates.end() ? candidates.back() : *found;
}

} // namespace

ImportZone::ImportZone()
    : ImportZone(QTimeZone::utc(), QTimeZone::systemTimeZone()) {}

ImportZone::ImportZone(const QTimeZone& zone, const QTimeZone& dates)
    : m_zone(zone)
    , m_dates(dates) {}

std::optional<ImportZone> ImportZone::Named(const QString& name) {
    const QTimeZone local = QTimeZone::systemTimeZone();
    if (name.compare(QLatin1String("utc"), Qt::CaseInsensitive) == 0)
        return ImportZone(QTimeZone::utc(), local);
    if (name.compare(QLatin1String("local"), Qt::CaseInsensitive) == 0)
        return ImportZone(local, local);
    const QTimeZone zone(name.toUtf8());
    return zone.isValid() ? std::optional(ImportZone(zone, zone)) : std::nullopt;
}

qint64 ImportZone::UtcOf(qint64 dateAndTime, std::optional<qint64> last) const {
    const std::vector<qint64> candidates = Candidates(m_zone, dateAndTime);
    return candidates.empty() ? dateAndTime - OffsetAt(m_zone, dateAndTime - day) : Choose(candidates, last);
}

std::optional<qint64> ImportZone::UtcOn(const QDate& date, qint64 timeOfDay,
                                        std::optional<qint64> last) const {
    const qint64 midnight = QDateTime(date, QTime(0, 0), Qt::UTC).toMSecsSinceEpoch();
    std::vector<qint64> candidates;
    for (const qint64 near : {midnight - day, midnight, midnight + day})
        for (const qint64 utc : Candidates(m_zone, near + timeOfDay)) {
            const qint64 local = utc + OffsetAt(m_dates, utc);
            if (local >= midnight && local < midnight + day)
                candidates.push_back(utc);
        }
    return candidates.empty() ? std::nullopt : std::optional(Choose(candidates, last));
}
