#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// Which passes are asked for.
struct PassQuery {
    std::string object;   ///< a catalogue number or a name line
    double latitude = 0;  ///< of the observer, degrees, -90 to 90, north positive
    double longitude = 0; ///< likewise, -180 to 360, east positive
    double startUtc = 0;  ///< date-time; a pass that has begun by then does not count
    double days = 0;      ///< that begin within so many days, at most 366
    std::size_t most = 0; ///< and no more than so many
};

/// One pass of a satellite over an observer. Date-times are UTC with all their digits, angles in degrees.
struct SatPass {
    double riseUtc = 0;
    double culminationUtc = 0;
    double setUtc = 0;
    double riseAzimuth = 0; ///< 0 to 360, from north over east
    double setAzimuth = 0;
    double maxElevation = 0;    ///< 0 to 90, at the culmination
    double durationSeconds = 0; ///< from rise to set
    bool sets = true; ///< false: in view for a year on end, and `setUtc` is where the search gave up
};

/// The answer to a PassQuery.
struct SatPasses {
    enum class Fault {
        None,
        UnknownObject, ///< no elements of it in the folder
        NoPlace,       ///< the observer's place or the times are out of their ranges
        NoPosition,    ///< its elements give no position at the start: see OrbitLibrary::WhyNoPosition
    };

    Fault fault = Fault::None;
    std::vector<SatPass> passes; ///< in time order
};
