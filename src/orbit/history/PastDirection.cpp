#include "orbit/history/PastDirection.h"

#include "foundation/text/UtcTime.h"
#include "orbit/sgp4/SiderealTime.h"

#include <cmath>

using orbitmath::radiansPerDegree;

PastDirection::PastDirection(const ElementsHistory& history, const clsSats& cSats)
    : m_history(history)
    , m_cSats(cSats) {}

const orbitmath::Propagator* PastDirection::PropagatorAt(quint32 number, qint64 utc) {
    const ElementsHistory::Set* set = m_history.Nearest(number, utc);
    if (set == nullptr)
        return nullptr;
    if (m_number != number || m_epoch != set->epoch) {
        m_number = number;
        m_epoch = set->epoch;
        m_propagator.reset();
        if (const auto elements = m_history.ElementsAt(number, utc))
            m_propagator.emplace(*elements);
    }
    return m_propagator ? &*m_propagator : nullptr;
}

std::optional<SkyPoint> PastDirection::At(quint32 number, double latitude, double longitude, DateTime utc) {
    const qint64 time = UtcTime::FromDateTime(utc);
    const orbitmath::Propagator* past = PropagatorAt(number, time);
    const QString object = QString::number(number);
    if (const auto present = m_cSats.ElementsOf(object)) {
        const double age = std::abs(present->epochUtc - utc);
        const double ageOfPast = past ? std::abs(past->GetElements().epochUtc - utc) : HUGE_VAL;
        if (age <= ageOfPast && age <= ElementsHistory::farthest / (1000 * secondsPerDay)) {
            const auto position = m_cSats.PositionAt(object, utc);
            return position ? std::optional(SkyPoint{utc, position->dblAz, position->dblEl}) : std::nullopt;
        }
    }
    if (past == nullptr)
        return std::nullopt;
    const orbitmath::Propagation found = past->At((utc - past->GetElements().epochUtc) * minutesPerDay);
    if (!found)
        return std::nullopt;
    const orbitmath::LookAngles look =
        orbitmath::Observer(latitude, longitude)
            .Look(orbitmath::ToEarth(found.state, orbitmath::SiderealTime(utc)));
    return SkyPoint{utc, look.azimuth / radiansPerDegree, look.elevation / radiansPerDegree};
}
