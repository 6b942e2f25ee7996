#pragma once

#include <QDate>
#include <QTimeZone>

#include <optional>

/// The zone of times that a file tells without one. In an hour that occurs twice, the order of the file's
/// lines decides: a time is never before the one above it as long as that can be.
class ImportZone {
public:
    /// UTC.
    ImportZone();

    /// "utc", "local" (this computer's zone) or an IANA name such as "Europe/Berlin"; none for any other
    /// text. Case counts in IANA names only.
    static std::optional<ImportZone> Named(const QString& name);

    /// The UTC of a date and time of this zone, both in milliseconds, the one that is asked for since
    /// 1970-01-01 00:00. `last`: the time of the line above, where there is one. A time that a clock put
    /// forward passes over is read as if it had not been put forward yet.
    qint64 UtcOf(qint64 dateAndTime, std::optional<qint64> last) const;

    /// The UTC of a time of day, in milliseconds, in a file that bears the name of a local date. With an IANA
    /// name that is the date in its zone, else in this computer's. None where that day has no such time.
    std::optional<qint64> UtcOn(const QDate& date, qint64 timeOfDay, std::optional<qint64> last) const;

private:
    ImportZone(const QTimeZone& zone, const QTimeZone& dates);

    QTimeZone m_zone;
    QTimeZone m_dates; // of the names of files
};
