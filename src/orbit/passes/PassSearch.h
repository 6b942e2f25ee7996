#pragma once

#include "orbit/sgp4/Propagator.h"
#include "orbit/sky/Observer.h"

#include <cstddef>
#include <vector>

namespace orbitmath {

/// One passage over a station's horizon. Date-times are days since 1899-12-30 00:00 UTC and good to a tenth
/// of a millisecond against the propagator's own path; angles are radians.
struct Pass {
    double riseUtc = 0;
    double setUtc = 0;
    double highestUtc = 0;
    double riseAzimuth = 0;
    double setAzimuth = 0;
    double maxElevation = 0;
    /// False: still above the horizon when the search gave up, and `setUtc` is that time.
    bool sets = true;
};

struct PassList {
    /// Why there is nothing: the elements give no position at the start.
    PropagationError error = PropagationError::None;
    std::vector<Pass> passes; ///< in time order
    int propagations = 0;     ///< what the search cost
};

/// How long a pass is followed beyond the days searched, before it is called unending.
constexpr double longestPassDays = 366;

/// The passes that begin at or after `startUtc`, less than `days` days (366 at most) later, at most `most` of
/// them. A pass that is under way at the start has begun already and does not count.
///
/// Between two propagations the path is a polynomial of the fifth degree in the station's own frame, made
/// from position, velocity and acceleration at both ends; the third derivative tells how far it may be wrong.
/// As long as its control points stay under the horizon by more than that, so does the object. Otherwise the
/// piece is halved until it is good to about a kilometre, and rise, set and highest point are found on it and
/// then on the true path. The height over the horizon's plane is what is searched: unlike the elevation it is
/// smooth on the whole orbit.
///
/// Times at which sun and moon make the elements fail (a nearly circular high orbit) are bridged. Where drag
/// ends the orbit the search ends, and a pass under way then is left out.
PassList FindPasses(const Propagator& propagator, const Observer& observer, double startUtc, double days,
                    std::size_t most);

} // namespace orbitmath
