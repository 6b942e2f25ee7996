#pragma once

#include "foundation/records/Record.h"
#include "orbit/service/SatPass.h"

#include <QByteArray>

#include <span>

/// A pass and whose it is.
struct NamedPass {
    QString satellite; ///< QIRAN, ISS, or the name in the element file
    quint32 number = 0;
    SatPass pass;
};

/// Passes as both programs write them into files, to the second.
namespace PassRecords {

extern const RecordType type;

Record Of(const NamedPass& pass);

/// A table in CSV, its lines ended by CR LF.
QByteArray Csv(std::span<const NamedPass> passes);

/// What a calendar of passes is made with.
struct CalendarMaking {
    double latitude = 0; ///< of the observer, degrees
    double longitude = 0;
    int alarmMinutes = 0; ///< before a rise; 0: no alarm
    QString program = {};
    qint64 now = 0; ///< milliseconds since 1970-01-01 00:00 UTC
};

/// An iCalendar object. An entry stays the same one whenever it is made.
QByteArray Calendar(std::span<const NamedPass> passes, const CalendarMaking& making);

} // namespace PassRecords
