#pragma once

#include "orbit/passes/PathPiece.h"
#include "orbit/sgp4/Propagator.h"
#include "orbit/sgp4/SiderealTime.h"
#include "orbit/sky/Observer.h"

#include <optional>

namespace orbitmath {

/// An object's true path as a station sees it, asked point by point. Times are seconds after a start; where
/// the elements fail there is no point.
class StationPath {
public:
    /// Keeps both: they outlive it.
    StationPath(const Propagator& propagator, const Observer& observer, double startUtc);

    struct Node {
        PathPoint point;
        /// How long, in seconds, a polynomial of the fifth degree follows the path well from here on.
        double pieceLength = 0;
        double climb = 0;           ///< away from the centre of the earth, km/s
        bool mayEnterEarth = false; ///< the perigee lies in the air or below
    };
    std::optional<Node> At(double time);

    /// The time nearest to `bad`, to a tenth of a millisecond, at which the elements hold; they do at `good`.
    double LastGood(double good, double bad);

    /// A time between two neighbouring nodes at which the path lies inside the earth; nothing when it does
    /// not.
    std::optional<double> InsideEarth(const Node& from, const Node& to);

    double Utc(double time) const;

    int Propagations() const { return m_propagations; } ///< so far
    PropagationError LastError() const { return m_lastError; }

private:
    const Propagator& m_propagator;
    const Observer& m_observer;
    const double m_startUtc;
    const double m_startMinutes; ///< after the elements' epoch
    const SiderealClock m_siderealClock;

    int m_propagations = 0;
    PropagationError m_lastError = PropagationError::None;
};

} // namespace orbitmath
