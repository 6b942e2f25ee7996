#pragma once

#include "TestElements.h"
#include "orbit/passes/PassSearch.h"
#include "orbit/sgp4/SiderealTime.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace testelements {

using namespace orbitmath;

inline constexpr double tenMilliseconds = 0.01 / secondsPerDay;

/// The sky over a station, asked moment by moment.
class Sky {
public:
    Sky(const Elements& elements, double latitude, double longitude, double start)
        : propagator(elements)
        , observer(latitude, longitude)
        , m_start(start) {}

    /// Radians, `seconds` after the start. Nothing where the elements fail.
    std::optional<double> TryElevation(double seconds) const {
        const double utc = m_start + seconds / secondsPerDay;
        const double minutes = (m_start - propagator.GetElements().epochUtc) * 1440 + seconds / 60;
        const Propagation found = propagator.At(minutes);
        if (!found)
            return {};
        return observer.Look(ToEarth(found.state, SiderealTime(utc))).elevation;
    }

    double Elevation(double seconds) const { return TryElevation(seconds).value(); }

    double Crossing(double before, double after) const {
        const bool rising = Elevation(after) > 0;
        for (int k = 0; k < 30; ++k) {
            const double middle = 0.5 * (before + after);
            ((Elevation(middle) > 0) == rising ? after : before) = middle;
        }
        return 0.5 * (before + after);
    }

    /// Every crossing of the horizon by a scan that knows nothing of orbits but how fast an elevation can
    /// grow at most (radians a second, `fastest`): steps of `step` seconds wherever it is above -3 degrees,
    /// farther ones only as far as it could not have come up to that in the meantime.
    std::vector<Pass> Scan(double days, double step, double fastest) const {
        const double careful = -3 * radiansPerDegree;
        std::vector<Pass> passes;
        double before = Elevation(0);
        bool counts = false; // the pass under way began after the start
        double rise = 0;
        for (double time = 0; time < days * secondsPerDay || counts;) {
            const double next = time + std::max(step, (careful - before) / fastest);
            const double elevation = Elevation(next);
            if (before <= 0 && elevation > 0) {
                rise = Crossing(time, next);
                counts = rise < days * secondsPerDay;
            } else if (before > 0 && elevation <= 0 && counts) {
                Pass pass;
                pass.riseUtc = m_start + rise / secondsPerDay;
                pass.setUtc = m_start + Crossing(time, next) / secondsPerDay;
                passes.push_back(pass);
                counts = false;
            }
            before = elevation;
            time = next;
        }
        return passes;
    }

    PassList Find(double days, std::size_t most = 1000) const {
        return FindPasses(propagator, observer, m_start, days, most);
    }

    const Propagator propagator;
    const Observer observer;

private:
    double m_start;
};

/// Compares the passes found with those of a scan; answers how many there were.
inline std::size_t CompareWithScan(const Sky& sky, double days, double step, double fastest) {
    const std::vector<Pass> found = sky.Find(days).passes;
    const std::vector<Pass> scanned = sky.Scan(days, step, fastest);
    EXPECT_EQ(found.size(), scanned.size());
    for (std::size_t k = 0; k < std::min(found.size(), scanned.size()); ++k) {
        EXPECT_NEAR(found[k].riseUtc, scanned[k].riseUtc, tenMilliseconds);
        EXPECT_NEAR(found[k].setUtc, scanned[k].setUtc, tenMilliseconds);
        EXPECT_TRUE(found[k].sets);
    }
    return scanned.size();
}

inline Elements StationLike() {
    return Orbit(51.64, 208.9, 0.00067, 70, 25, 15.4956);
}

} // namespace testelements
