#include "Sky.h"

#include <limits>

using namespace orbitmath;
using namespace testelements;

namespace {

/// The passes that a scan in fixed steps sees to begin and end within some seconds after the start. Times at
/// which the elements fail are stepped over: what the horizon was crossed in then, it crossed at their end.
std::vector<Pass> ScanAcrossFailures(const Sky& sky, double start, double seconds, double step) {
    std::vector<Pass> passes;
    bool above = sky.Elevation(0) > 0;
    bool failed = false;
    std::optional<double> rise;
    for (double time = step; time < seconds; time += step) {
        const std::optional<double> elevation = sky.TryElevation(time);
        if (elevation && (*elevation > 0) != above) {
            above = !above;
            const double crossing = failed ? time : sky.Crossing(time - step, time);
            if (above) {
                rise = crossing;
            } else if (rise) {
                Pass pass;
                pass.riseUtc = start + *rise / secondsPerDay;
                pass.setUtc = start + crossing / secondsPerDay;
                passes.push_back(pass);
            }
        }
        failed = !elevation;
    }
    return passes;
}

} // namespace

TEST(PassLimitsTest, APassLongerThanADayIsOnePass) {
    // A near-geostationary object drifts over the sky in a week.
    for (double anomaly = 0; anomaly < 360; anomaly += 90) {
        const Sky sky(Orbit(0.5, 0, 0.001, 0, anomaly, 1.04), 45, 10, 46343);
        const PassList found = sky.Find(25);
        ASSERT_FALSE(found.passes.empty());
        EXPECT_GT(found.passes[0].setUtc - found.passes[0].riseUtc, 5);
        EXPECT_LT(found.propagations, 3000);
        const double middle =
            (0.5 * (found.passes[0].riseUtc + found.passes[0].setUtc) - 46343) * secondsPerDay;
        EXPECT_GT(sky.Elevation(middle), 0);
    }
}

TEST(PassLimitsTest, WhatNeverSetsOrNeverRisesHasNoPassesAndCostsLittle) {
    int above = 0;
    int below = 0;
    for (double longitude = -180; longitude < 180; longitude += 20) {
        const Sky sky(Orbit(0.02, 0, 0.0001, 0, 0, 1.00273), 20, longitude, 46343);
        const PassList found = sky.Find(10);
        if (std::abs(sky.Elevation(0)) < 3 * radiansPerDegree)
            continue;
        ++(sky.Elevation(0) > 0 ? above : below);
        EXPECT_TRUE(found.passes.empty());
        EXPECT_LT(found.propagations, 2000);
    }
    EXPECT_GT(above, 3);
    EXPECT_GT(below, 3);
    EXPECT_TRUE(Sky(Orbit(10, 0, 0.001, 0, 0, 15), 80, 0, 46343).Find(30).passes.empty());
}

TEST(PassLimitsTest, PassesOfTwoDaysAroundAFarApogeeAgreeWithAScan) {
    std::size_t passes = 0;
    for (const double latitude : {-60.0, 20.0, 50.0, 70.0})
        passes += CompareWithScan(Sky(Orbit(63.4, 30, 0.85, 270, 0, 0.4), latitude, 10, 46343), 10, 2, 0.02);
    EXPECT_GT(passes, 12U);
    for (const Pass& pass : Sky(Orbit(63.4, 30, 0.85, 270, 0, 0.4), 70, 10, 46343).Find(10).passes)
        EXPECT_GT(pass.setUtc - pass.riseUtc, 2);
}

TEST(PassLimitsTest, APassThatDoesNotEndWithinAYearIsGivenAsOneThatDoesNotSet) {
    const double start = 46343;
    const Sky sky(Orbit(0.3, 0, 0.0003, 0, 0, 1.0022), 20, -140, start);
    const PassList found = sky.Find(30);
    ASSERT_EQ(found.passes.size(), 1U);
    const Pass& pass = found.passes.front();
    EXPECT_FALSE(pass.sets);
    EXPECT_NEAR(sky.Elevation((pass.riseUtc - start) * secondsPerDay), 0, 1e-8);
    EXPECT_GE(pass.setUtc, start + 30 + longestPassDays);
    EXPECT_LT(pass.setUtc, start + 30 + longestPassDays + 1);
    EXPECT_GT(sky.Elevation((pass.setUtc - start) * secondsPerDay), 0.1);
    double highest = 0; // of many days' tops
    for (double utc = pass.riseUtc; utc < pass.setUtc; utc += 0.005)
        highest = std::max(highest, sky.Elevation((utc - start) * secondsPerDay));
    EXPECT_NEAR(pass.maxElevation, highest, 1e-5);
    EXPECT_NEAR(pass.maxElevation, sky.Elevation((pass.highestUtc - start) * secondsPerDay), 1e-7);
    EXPECT_LT(found.propagations, 5000);
}

TEST(PassLimitsTest, NoMoreThanAskedForEvenWhereASecondPassFollowsAtOnce) {
    for (int k = 0; k < 5; ++k) {
        const Sky sky(Orbit(0.3, 0, 0.0003, 0, 0, 1.0022), 20, -141, 46343 + k * 0.05);
        ASSERT_EQ(sky.Find(30).passes.size(), 2U);
        EXPECT_EQ(sky.Find(30, 1).passes.size(), 1U);
    }
}

TEST(PassLimitsTest, WhereDragEndsTheOrbitTheSearchEndsAndAPassUnderWayIsLeftOut) {
    Elements elements = Orbit(51.6, 208, 0.0005, 70, 25, 16.2);
    elements.bstar = 0.01;
    const double start = elements.epochUtc;
    const Propagator propagator(elements);
    double decay = 0; // seconds after the start
    while (propagator.At(decay / 60))
        ++decay;
    ASSERT_NEAR(decay / secondsPerDay, 1.35, 0.01);
    const StateVector last = propagator.At((decay - 1) / 60).state;
    const double latitude = ToGeodetic(ToEarth(last, 0).position).latitude / radiansPerDegree;
    std::size_t passes = 0;
    int underWay = 0;
    std::vector<std::pair<double, double>> stations; // latitude, longitude
    for (int longitude = -180; longitude < 180; longitude += 15)
        stations.emplace_back(latitude, longitude);
    for (double before = 240; before < 1800; before += 240) { // under its last track
        const double time = decay - before;
        const Vector3 under =
            ToEarth(propagator.At(time / 60).state, SiderealTime(start + time / secondsPerDay)).position;
        const Geodetic point = ToGeodetic(under);
        stations.emplace_back(point.latitude / radiansPerDegree, point.longitude / radiansPerDegree);
    }
    for (const auto& [stationLatitude, stationLongitude] : stations) {
        const Sky sky(elements, stationLatitude, stationLongitude, start);
        const PassList found = sky.Find(3);
        const std::vector<Pass> scanned = ScanAcrossFailures(sky, start, decay, 1);
        EXPECT_EQ(found.error, PropagationError::None);
        EXPECT_LT(found.propagations, 2000);
        ASSERT_EQ(found.passes.size(), scanned.size()) << stationLatitude << ' ' << stationLongitude;
        for (std::size_t k = 0; k < scanned.size(); ++k) {
            EXPECT_NEAR(found.passes[k].riseUtc, scanned[k].riseUtc, tenMilliseconds);
            EXPECT_NEAR(found.passes[k].setUtc, scanned[k].setUtc, tenMilliseconds);
        }
        passes += scanned.size();
        underWay += sky.Elevation(decay - 1) > 0 ? 1 : 0;
    }
    EXPECT_GT(passes, 40U);
    EXPECT_GT(underWay, 0);
}

// A perigee inside the earth ends the search the first time that it is passed, however the search steps over
// it.
TEST(PassLimitsTest, WhereTheOrbitEntersTheEarthTheSearchEnds) {
    std::size_t passes = 0;
    int endings = 0;
    for (const double eccentricity : {0.06, 0.2, 0.5, 0.72}) {
        const double perigee = 6300; // km
        const double axis = perigee / (1 - eccentricity);
        const double revolutions = 86400 / twoPi * std::sqrt(398600.8 / (axis * axis * axis));
        for (double anomaly = 20; anomaly < 340; anomaly += 29) {
            const Elements elements = Orbit(63, 40, eccentricity, 300, anomaly, revolutions);
            const double start = elements.epochUtc;
            const Propagator propagator(elements);
            if (!propagator.At(0))
                continue;
            double entry = 0; // seconds after the start
            while (propagator.At(entry / 60) && entry < 3 * secondsPerDay)
                entry += 1;
            ++endings;
            for (const double latitude : {-45.0, 10.0, 60.0}) {
                const Sky sky(elements, latitude, 10 * anomaly, start);
                const PassList found = sky.Find(3);
                const std::vector<Pass> scanned = ScanAcrossFailures(sky, start, entry, 2);
                EXPECT_EQ(found.error, PropagationError::None);
                ASSERT_EQ(found.passes.size(), scanned.size())
                    << eccentricity << ' ' << anomaly << ' ' << latitude;
                for (std::size_t k = 0; k < scanned.size(); ++k)
                    EXPECT_NEAR(found.passes[k].setUtc, scanned[k].setUtc, tenMilliseconds);
                passes += scanned.size();
            }
        }
    }
    EXPECT_GT(endings, 30);
    EXPECT_GT(passes, 10U);
}

TEST(PassLimitsTest, TimesAtWhichSunAndMoonMakeTheElementsFailAreBridged) {
    const Elements elements = Orbit(124.23, 23.22, 0.000174609, 1.95, 350.92, 0.05061);
    const double start = elements.epochUtc + 1118;
    const double gapBegin = start + 2.338;
    const double gapEnd = start + 4.76;
    const Propagator propagator(elements);
    ASSERT_EQ(propagator.At(1121 * 1440).error, PropagationError::PerturbedEccentricity);
    int riseInGap = 0;
    int setInGap = 0;
    int across = 0;
    for (int longitude = -180; longitude < 180; longitude += 15) {
        const Sky sky(elements, longitude % 2 == 0 ? -40 : 50, longitude, start);
        const std::vector<Pass> found = sky.Find(8).passes;
        const std::vector<Pass> scanned = ScanAcrossFailures(sky, start, 9 * secondsPerDay, 20);
        ASSERT_GE(found.size(), scanned.size());
        for (std::size_t k = 0; k < scanned.size(); ++k) {
            const bool risesThere = std::abs(scanned[k].riseUtc - gapEnd) < 0.05;
            const bool setsThere = std::abs(scanned[k].setUtc - gapEnd) < 0.05;
            constexpr double halfAMinute = 30 / secondsPerDay;
            EXPECT_NEAR(found[k].riseUtc, scanned[k].riseUtc, risesThere ? halfAMinute : tenMilliseconds);
            EXPECT_NEAR(found[k].setUtc, scanned[k].setUtc, setsThere ? halfAMinute : tenMilliseconds);
            riseInGap += risesThere ? 1 : 0;
            setInGap += setsThere ? 1 : 0;
            across += found[k].riseUtc < gapBegin && found[k].setUtc > gapEnd + 0.05 ? 1 : 0;
        }
    }
    EXPECT_GT(riseInGap, 0);
    EXPECT_GT(setInGap, 0);
    EXPECT_GT(across, 0);
}

TEST(PassLimitsTest, ElementsThatGiveNoPositionAreAnError) {
    Elements decayed = StationLike();
    decayed.meanMotion *= 1.2;
    EXPECT_EQ(Sky(decayed, 50, 10, 46343).Find(3).error, PropagationError::Decayed);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double start : {nan, infinity, -infinity})
        EXPECT_EQ(Sky(StationLike(), 50, 10, start).Find(3).error, PropagationError::OutOfRange);
    EXPECT_NE(Sky(StationLike(), 50, 10, 1e12).Find(3).error, PropagationError::None);
    for (const double days : {nan, infinity})
        EXPECT_EQ(Sky(StationLike(), 50, 10, 46343).Find(days).error, PropagationError::OutOfRange);
}
