#include "orbit/history/PastDirection.h"

#include "foundation/text/UtcTime.h"
#include "orbit/sgp4/SiderealTime.h"

using orbitmath::radiansPerDegree;

const orbitmath::Propagator* PastDirection::PropagatorAt(const QString& object, qint64 utc) {
    const ElementsHistory::Set* set = m_elements.Nearest(object, utc);
    if (set == nullptr)
        return nullptr;
    if (m_number != set->number || m_epoch != set->epoch) {
        m_number = set->number;
        m_epoch = set->epoch;
        m_propagator.reset();
        if (const auto elements = ElementsHistory::ElementsIn(*set))
            m_propagator.emplace(*elements);
    }
    return m_propagator ? &*m_propagator : nullptr;
}

std::optional<SkyPoint> PastDirection::At(const QString& object, double latitude, double longitude,
                                          DateTime utc) {
    const orbitmath::Propagator* past = PropagatorAt(object, UtcTime::FromDateTime(utc));
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
