#include "orbit/sky/Doppler.h"

#include "Sky.h"

using namespace orbitmath;
using namespace testelements;

namespace {

// By the range alone: a difference of the fourth order over four seconds.
double RateByDifferences(const Sky& sky, double seconds, double start) {
    const auto range = [&](double at) {
        const double utc = start + at / 86400;
        const Propagation found =
            sky.propagator.At((start - sky.propagator.GetElements().epochUtc) * 1440 + at / 60);
        return sky.observer.Look(ToEarth(found.state, SiderealTime(utc))).range;
    };
    return (8 * (range(seconds + 1) - range(seconds - 1)) - (range(seconds + 2) - range(seconds - 2))) / 12;
}

} // namespace

TEST(DopplerTest, ShiftIsThatOfTheFiniteDifferencesOfTheRange) {
    constexpr double frequency = 437.8e6;
    const Elements elements = StationLike();
    const double start = elements.epochUtc + 1;
    const Sky sky(elements, 52, 11, start);
    double least = 0;
    double greatest = 0;
    for (double seconds = 0; seconds < 86400; seconds += 97) {
        const double utc = start + seconds / 86400;
        const Propagation found = sky.propagator.At((utc - elements.epochUtc) * 1440);
        const double rate = sky.observer.Look(ToEarth(found.state, SiderealTime(utc))).rangeRate;
        const double shift = DopplerShift(rate, frequency);
        EXPECT_NEAR(shift, DopplerShift(RateByDifferences(sky, seconds, start), frequency), 0.1) << seconds;
        least = std::min(least, shift);
        greatest = std::max(greatest, shift);
    }
    EXPECT_LT(least, -8000);
    EXPECT_GT(greatest, 8000);
}

TEST(DopplerTest, WhatComesNearerSoundsHigher) {
    EXPECT_NEAR(DopplerShift(-7.5, 145.8e6), 3647.5, 0.1);
    EXPECT_NEAR(DopplerShift(7.5, 145.8e6), -3647.5, 0.1);
    EXPECT_EQ(DopplerShift(0, 145.8e6), 0);
}
