#pragma once

#include "orbit/service/PassList.h"

#include <QString>

#include <optional>
#include <utility>

/// The table of pass predictions: a line for each pass, an empty one between days. Lines end with CR LF.
class PassTable {
public:
    enum class Zone { Utc, Local };   ///< of the start times in it
    enum class Names { None, Shown }; ///< whether lines end with a satellite's name

    PassTable(Zone zone, Names names)
        : m_zone(zone)
        , m_names(names) {}

    /// `start` is in the table's zone, azimuths are in degrees.
    void Add(DateTime start, const Pass& pass, qint16 startAzimuth, qint16 endAzimuth,
             const QString& name = {});

    /// The note of the zone and the heads of the columns.
    QString Head() const;

    /// The lines added since the last call: of a long table, one that is printed piece by piece.
    QString TakeLines() { return std::exchange(m_lines, {}); }

    /// Head and lines.
    QString Text() const { return Head() + m_lines; }

private:
    const Zone m_zone;
    const Names m_names;
    std::optional<double> m_day;
    QString m_lines;
};
