#include "orbit/sky/Horizon.h"

#include <gtest/gtest.h>

using orbitmath::Horizon;

TEST(HorizonTest, WithoutPointsItIsFlat) {
    const Horizon flat;
    EXPECT_FALSE(flat.IsKnown());
    EXPECT_EQ(flat.ElevationAt(123), 0);
}

TEST(HorizonTest, OnePointIsTheHeightAllAround) {
    const Horizon wall({{90, 7}});
    for (const double azimuth : {0.0, 89.0, 90.0, 91.0, 270.0, 360.0})
        EXPECT_EQ(wall.ElevationAt(azimuth), 7);
}

TEST(HorizonTest, BetweenPointsItRisesEvenly) {
    const Horizon hills({{180, 20}, {90, 10}, {270, 0}}); // in any order
    EXPECT_EQ(hills.ElevationAt(90), 10);
    EXPECT_NEAR(hills.ElevationAt(135), 15, 1e-12);
    EXPECT_NEAR(hills.ElevationAt(225), 10, 1e-12);
}

TEST(HorizonTest, ItGoesOnThroughNorth) {
    const Horizon hills({{350, 4}, {10, 8}, {180, 0}});
    EXPECT_NEAR(hills.ElevationAt(355), 5, 1e-12);
    EXPECT_NEAR(hills.ElevationAt(0), 6, 1e-12);
    EXPECT_NEAR(hills.ElevationAt(360), 6, 1e-12);
    EXPECT_NEAR(hills.ElevationAt(5), 7, 1e-12);
    EXPECT_NEAR(hills.ElevationAt(-5), 5, 1e-12);
    EXPECT_NEAR(hills.ElevationAt(725), 7, 1e-12);
}

TEST(HorizonTest, APointAt360IsOneAt0) {
    const Horizon hills({{360, 4}, {180, 8}});
    EXPECT_EQ(hills.Points().front().azimuth, 0);
    EXPECT_NEAR(hills.ElevationAt(90), 6, 1e-12);
    EXPECT_NEAR(hills.ElevationAt(270), 6, 1e-12);
}
