#pragma once

#include "orbit/history/ElementsHistory.h"
#include "orbit/sgp4/Propagator.h"
#include "orbit/sky/Observer.h"
#include "orbit/skyview/SkyPath.h"

#include <optional>

/// Where a satellite stood in a station's sky, by the elements of the time asked for: those of the history or
/// the present ones, whichever are nearer to it. Times are best asked for in their order: elements are read
/// anew only when other ones are nearer.
class PastDirection {
public:
    /// The references outlive it.
    PastDirection(const ElementsHistory& history, const clsSats& cSats);

    /// `number`: of the catalogue; degrees. Nothing where no elements are near enough.
    std::optional<SkyPoint> At(quint32 number, double latitude, double longitude, DateTime utc);

private:
    const orbitmath::Propagator* PropagatorAt(quint32 number, qint64 utc);

    const ElementsHistory& m_history;
    const clsSats& m_cSats;
    quint32 m_number = 0;
    qint64 m_epoch = 0; // of what the propagator was made from
    std::optional<orbitmath::Propagator> m_propagator;
};
