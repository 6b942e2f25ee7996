#pragma once

#include "orbit/history/PastElements.h"
#include "orbit/sgp4/Propagator.h"
#include "orbit/sky/Observer.h"
#include "orbit/skyview/SkyPath.h"

#include <optional>

/// Where a satellite stood in a station's sky, by the elements of the time asked for. Times are best asked
/// for in their order: elements are read anew only when other ones are nearer.
class PastDirection {
public:
    /// The reference outlives it.
    explicit PastDirection(PastElements& elements)
        : m_elements(elements) {}

    /// `object`: see PastElements; degrees. Nothing where no elements are near enough.
    std::optional<SkyPoint> At(const QString& object, double latitude, double longitude, DateTime utc);

private:
    const orbitmath::Propagator* PropagatorAt(const QString& object, qint64 utc);

    PastElements& m_elements;
    quint32 m_number = 0;
    qint64 m_epoch = 0; // of what the propagator was made from
    std::optional<orbitmath::Propagator> m_propagator;
};
