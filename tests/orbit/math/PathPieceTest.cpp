#include "orbit/passes/PathPiece.h"

#include <gtest/gtest.h>

namespace {

using orbitmath::PathPoint;

// A path whose coordinates are polynomials of the fifth degree, over the horizon between two dips.
PathPoint Quintic(double time) {
    const double t = time / 100;
    PathPoint point;
    point.time = time;
    point.position = {900 - 700 * t + 40 * t * t * t * t * t, 400 + 60 * t * t,
                      500 - 90 * (t - 2) * (t - 2) + t * t * t};
    point.velocity = {(-700 + 200 * t * t * t * t) / 100, 120 * t / 100, (-180 * (t - 2) + 3 * t * t) / 100};
    point.acceleration = {800 * t * t * t / 1e4, 120 / 1e4, (-180 + 6 * t) / 1e4};
    point.upJerk = 6 / 1e6;
    return point;
}

const orbitmath::PathPiece piece(Quintic(50), Quintic(450));

} // namespace

TEST(PathPieceTest, APathOfTheFifthDegreeIsMetEverywhere) {
    for (double time = 50; time <= 450; time += 12.5) {
        const PathPoint truth = Quintic(time);
        EXPECT_LT(Length(piece.At(time) - truth.position), 1e-9) << time;
        EXPECT_NEAR(piece.HeightAt(time), truth.position.z, 1e-9) << time;
    }
}

TEST(PathPieceTest, TheElevationGrowsWhereItsSlopeIsPositive) {
    const orbitmath::ElevationTrend trend(piece);
    int turns = 0;
    bool before = true;
    for (double time = 50; time <= 450; time += 0.5) {
        const bool isUp = SlopeOf(Quintic(time)).first > 0;
        EXPECT_EQ(trend.IsUpAt(time), isUp) << time;
        turns += isUp != before ? 1 : 0;
        before = isUp;
    }
    EXPECT_EQ(turns, 1); // up, then down
}
