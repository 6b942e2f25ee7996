#pragma once

#include "orbit/sgp4/Propagator.h"
#include "orbit/sky/Observer.h"

#include <cstddef>
#include <vector>

namespace orbitmath {

/// One passage over a station's horizon. Date-times are days since 1899-12-30 00:00 UTC, angles are radians.
///
/// Against the propagator's own path: where an object rises and sets, its height over the horizon's plane is
/// 0 to a centimetre. The times are so good to a tenth of a millisecond wherever it climbs or falls by 100
/// m/s or more, as all low orbits do but in the most grazing passes, and in proportion where it does so more
/// slowly. The highest point is one by its elevation, which lies within a millionth of a radian of the
/// greatest; its time is as good as that allows.
struct Pass {
    double riseUtc = 0;
    double setUtc = 0;
    double highestUtc = 0;
    double riseAzimuth = 0; ///< 0 to 2 pi, from north over east
    double setAzimuth = 0;
    double maxElevation = 0; ///< 0 to pi / 2
    /// False: still above the horizon when the search gave up, and `setUtc` is that time.
    bool sets = true;
};

/// What a search found.
struct PassList {
    /// Why there is nothing: the elements give no position at the start.
    PropagationError error = PropagationError::None;
    std::vector<Pass> passes; ///< in time order
    int propagations = 0;     ///< that the search cost
};

/// The longest time that is searched, and how long a pass is followed beyond the days searched, before it is
/// called unending.
constexpr double longestSearchDays = 366;
constexpr double longestPassDays = 366;

/// The passes that begin at or after `startUtc`, less than `days` days (longestSearchDays at most) later, at
/// most `most` of them. A pass that is under way at the start has begun already and does not count.
///
/// Between two propagations the path is a polynomial of the fifth degree in the station's own frame, made
/// from position, velocity and acceleration at both ends; the third derivative tells how far it may be wrong.
/// As long as its control points stay under the horizon by more than that, so does the object. Otherwise the
/// piece is halved until it is good to about a kilometre, and rise, set and highest point are found on it and
/// then on the true path. The height over the horizon's plane is what is searched: unlike the elevation it is
/// smooth on the whole orbit.
///
/// Times at which sun and moon make the elements fail (a nearly circular high orbit) are bridged. Where drag
/// ends the orbit, or the orbit enters the earth, the search ends at the first time at which the elements
/// fail, found by bisection to a tenth of a millisecond, and a pass under way then is left out. Only an orbit
/// that touches the earth by less than some metres may be taken for one that does not.
PassList FindPasses(const Propagator& propagator, const Observer& observer, double startUtc, double days,
                    std::size_t most);

} // namespace orbitmath
