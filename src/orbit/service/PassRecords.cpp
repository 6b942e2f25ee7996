#include "orbit/service/PassRecords.h"

#include "foundation/records/Calendar.h"
#include "foundation/records/RecordText.h"
#include "foundation/text/DateTime.h"
#include "foundation/text/UtcTime.h"

#include <QCryptographicHash>

namespace PassRecords {

using Kind = Column::Kind;

// NOLINTBEGIN(cert-err58-cpp): memory for this one is there, or nothing is.
const RecordType type{
    "pass",
    u"A pass over the station.",
    {
        {"satellite", Kind::Text, 0, 12, u"QIRAN, ISS, or the name in the element file"},
        {"number", Kind::Whole, 0, 9, u"its catalogue number"},
        {"rise", Kind::Seconds, 0, 20, u"when it comes over the horizon"},
        {"culmination", Kind::Seconds, 0, 20, u"when it stands highest"},
        {"set", Kind::Seconds, 0, 20, u"when it goes under the horizon"},
        {"rise_azimuth", Kind::Decimal, 2, 12, u"degrees from north over east"},
        {"set_azimuth", Kind::Decimal, 2, 11, u"degrees from north over east"},
        {"max_elevation", Kind::Decimal, 2, 13, u"degrees"},
        {"duration_s", Kind::Whole, 0, 10, u"seconds from rise to set"},
    },
};
// NOLINTEND(cert-err58-cpp)

namespace {

// The same to the second for all programs: from rise to set it lasts as long as is printed.
struct WholeSeconds {
    qint64 rise;
    qint64 culmination;
    qint64 set;
};

WholeSeconds SecondsOf(const SatPass& pass) {
    const auto rounded = [](DateTime utc) { return UtcTime::ToNearestSecond(UtcTime::FromDateTime(utc)); };
    return {rounded(pass.riseUtc), rounded(pass.culminationUtc), rounded(pass.setUtc)};
}

// The same whenever it is asked for: newer elements move a pass by seconds, and two passes of a satellite are
// an orbit apart.
QString UidOf(const NamedPass& pass, const WholeSeconds& time, const CalendarMaking& making) {
    constexpr qint64 halfAnHour = 1800 * 1000;
    const qint64 slot = (time.culmination + halfAnHour / 2) / halfAnHour;
    // A calendar may be shown to others, who need not read from it where the station is.
    const QByteArray where =
        QByteArray::number(making.latitude, 'f', 2) + ',' + QByteArray::number(making.longitude, 'f', 2);
    const QByteArray hash = QCryptographicHash::hash(where, QCryptographicHash::Sha256).first(4).toHex();
    return QStringLiteral("%1-%2-%3@qirandecode").arg(pass.number).arg(slot).arg(QString::fromLatin1(hash));
}

} // namespace

Record Of(const NamedPass& one) {
    const SatPass& pass = one.pass;
    const WholeSeconds time = SecondsOf(pass);
    return {one.satellite,    qint64{one.number}, time.rise,
            time.culmination, time.set,           pass.riseAzimuth,
            pass.setAzimuth,  pass.maxElevation,  (time.set - time.rise) / 1000};
}

QByteArray Csv(std::span<const NamedPass> passes) {
    QByteArray csv = RecordText::CsvHead(type) + "\r\n";
    for (const NamedPass& one : passes)
        csv += RecordText::Csv(type, Of(one)) + "\r\n";
    return csv;
}

QByteArray Calendar(std::span<const NamedPass> passes, const CalendarMaking& making) {
    QList<CalendarEvent> events;
    for (const NamedPass& one : passes) {
        const SatPass& pass = one.pass;
        const WholeSeconds time = SecondsOf(pass);
        events.append({.uid = UidOf(one, time, making),
                       .start = time.rise,
                       .end = time.set,
                       .summary = QStringLiteral("%1 %2° (rise %3°, set %4°)")
                                      .arg(one.satellite)
                                      .arg(pass.maxElevation, 0, 'f', 0)
                                      .arg(pass.riseAzimuth, 0, 'f', 0)
                                      .arg(pass.setAzimuth, 0, 'f', 0),
                       .alarmMinutes = making.alarmMinutes});
    }
    return ::Calendar(events, making.program, making.now);
}

} // namespace PassRecords
