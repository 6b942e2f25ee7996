#include "orbit/geometry/ArcTangent.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

using orbitmath::ArcTangent;

namespace {

// What is left of an angle's digits, in units of the last one.
double LastDigits(double y, double x) {
    const double wanted = std::atan2(y, x);
    const double unit = std::nextafter(std::abs(wanted), 10.0) - std::abs(wanted);
    return std::abs(ArcTangent(y, x) - wanted) / unit;
}

} // namespace

TEST(ArcTangentTest, AllDirectionsAreRightToTheLastTwoDigits) {
    double worst = 0;
    for (int k = 0; k < 100000; ++k) {
        const double angle = k * (2 * std::numbers::pi / 99999) - std::numbers::pi;
        worst = std::max(worst, LastDigits(6871 * std::sin(angle), 6871 * std::cos(angle)));
    }
    EXPECT_LE(worst, 3);
}

TEST(ArcTangentTest, SmallAnglesKeepTheirDigits) {
    for (double y = 1; y > 1e-300; y *= 0.37) {
        EXPECT_LE(LastDigits(y, 1000), 3) << y;
        EXPECT_LE(LastDigits(-y, 1000), 3) << y;
        EXPECT_LE(LastDigits(1000, y), 3) << y;
        EXPECT_LE(LastDigits(y, -1000), 3) << y;
    }
}

TEST(ArcTangentTest, LengthsOfAnySizeAreTaken) {
    for (const double size : {1e-320, 1e-200, 1e-45, 1e-30, 1e30, 1e38, 1e45, 1e200, 1e308}) {
        for (const double y : {-0.7, 0.0, 0.2, 1.0}) {
            EXPECT_LE(LastDigits(y * size, 0.5 * size), 3) << size;
            EXPECT_LE(LastDigits(y * size, -size), 3) << size;
        }
    }
}

TEST(ArcTangentTest, AxesAndNoDirectionAreThoseOfTheLibrary) {
    EXPECT_EQ(ArcTangent(0, 0), 0);
    EXPECT_EQ(ArcTangent(0, 1), 0);
    EXPECT_EQ(ArcTangent(1, 0), std::numbers::pi / 2);
    EXPECT_EQ(ArcTangent(-1, 0), -std::numbers::pi / 2);
    EXPECT_EQ(ArcTangent(0, -1), std::numbers::pi);
    EXPECT_EQ(ArcTangent(1, 1), std::numbers::pi / 4);
    EXPECT_EQ(ArcTangent(-1, -1), -3 * std::numbers::pi / 4);
    const double infinite = std::numeric_limits<double>::infinity();
    EXPECT_EQ(ArcTangent(infinite, infinite), std::numbers::pi / 4);
    EXPECT_EQ(ArcTangent(-infinite, 1), -std::numbers::pi / 2);
    EXPECT_TRUE(std::isnan(ArcTangent(std::nan(""), 1)));
    EXPECT_TRUE(std::isnan(ArcTangent(1, std::nan(""))));
}
