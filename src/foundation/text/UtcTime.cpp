#include "foundation/text/UtcTime.h"

#include <QDateTime>

#include <cmath>

namespace UtcTime {
namespace {

constexpr double millisecondsPerDay = secondsPerDay * 1000.0;

} // namespace

qint64 FromDateTime(DateTime utc) {
    return std::llround((utc - dayOf1970) * millisecondsPerDay);
}

DateTime ToDateTime(qint64 utc) {
    return dayOf1970 + static_cast<double>(utc) / millisecondsPerDay;
}

qint64 ToNearestSecond(qint64 utc) {
    const qint64 half = utc + 500;
    const qint64 rest = half % 1000;
    return half - (rest < 0 ? rest + 1000 : rest);
}

QString ToLocalText(qint64 utc, Digits digits) {
    const bool isWhole = digits == Digits::Seconds;
    return QDateTime::fromMSecsSinceEpoch(isWhole ? ToNearestSecond(utc) : utc)
        .toString(isWhole ? QStringLiteral("yyyy-MM-dd hh:mm:ss")
                          : QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz"));
}

std::optional<qint64> Parse(const QString& text) {
    constexpr int firstYear = 1900;
    constexpr int lastYear = 2199;
    constexpr qsizetype lengthOfDate = 10;
    QString iso = text.trimmed().toUpper();
    if (iso.size() > lengthOfDate && iso[lengthOfDate] == u' ')
        iso[lengthOfDate] = u'T';
    if (iso.size() == lengthOfDate)
        iso += QStringLiteral("T00:00");
    QDateTime time = QDateTime::fromString(iso, Qt::ISODateWithMs);
    if (time.isValid() && time.timeSpec() == Qt::LocalTime) // it names no zone
        time = QDateTime(time.date(), time.time(), Qt::UTC);
    if (!time.isValid())
        return std::nullopt;
    const int year = time.toUTC().date().year();
    return year >= firstYear && year <= lastYear ? std::optional(time.toMSecsSinceEpoch()) : std::nullopt;
}

} // namespace UtcTime
