#include "orbit/sky/Sun.h"

#include "orbit/geometry/SinCos.h"
#include "orbit/sky/Shadow.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <string>

using namespace orbitmath;

namespace {

constexpr double asGoodAs = 0.01; // degrees

/// The golden file's lines, each handed over with the sun that it belongs to.
struct GoldenSun {
    double utc = 0;
    double rightAscension = 0;
    double declination = 0;
    double distance = 0;
    double latitude = 0;
    double longitude = 0;

    Vector3 Place() const {
        const SinCos lat = SinCos::Of(latitude * radiansPerDegree);
        const SinCos lon = SinCos::Of(longitude * radiansPerDegree);
        return distance * Vector3{lat.cos * lon.cos, lat.cos * lon.sin, lat.sin};
    }
};

template <class Take>
int ForEachLine(const std::string& kind, const Take& take) {
    std::ifstream file(ORBIT_GOLDEN "/sun.txt");
    std::string word;
    std::getline(file, word); // who made it
    GoldenSun sun;
    int count = 0;
    while (file >> word) {
        if (word == "sun")
            file >> sun.utc >> sun.rightAscension >> sun.declination >> sun.distance >> sun.latitude >>
                sun.longitude;
        if (word == kind) {
            take(sun, file);
            ++count;
        } else if (word != "sun") {
            std::getline(file, word);
        }
    }
    return count;
}

double Separation(const Vector3& a, const Vector3& b) {
    const double chord = Length((1 / Length(a)) * a - (1 / Length(b)) * b);
    return 2 * std::asin(chord / 2) / radiansPerDegree;
}

Vector3 Direction(double rightAscension, double declination) {
    return {std::cos(declination) * std::cos(rightAscension),
            std::cos(declination) * std::sin(rightAscension), std::sin(declination)};
}

} // namespace

TEST(SunTest, StandsWhereAstropySeesItOverAYear) {
    double worst = 0;
    const int count = ForEachLine("sun", [&](const GoldenSun& golden, std::istream&) {
        const Sun sun = Sun::At(golden.utc);
        const double off = Separation(
            Direction(sun.rightAscension, sun.declination),
            Direction(golden.rightAscension * radiansPerDegree, golden.declination * radiansPerDegree));
        EXPECT_LT(off, asGoodAs) << golden.utc;
        worst = std::max(worst, off);
        EXPECT_LT(Separation(sun.OverEarth(), golden.Place()), asGoodAs) << golden.utc;
        EXPECT_NEAR(sun.distance, golden.distance, 1e-4 * golden.distance);
    });
    EXPECT_EQ(count, 300);
    EXPECT_GT(worst, 1e-4) << "compared with itself?";
}

TEST(SunTest, ItsHeightOverTheGroundIsAstropys) {
    const int count = ForEachLine("ground", [](const GoldenSun& golden, std::istream& file) {
        Geodetic place;
        double elevation = 0;
        file >> place.latitude >> place.longitude >> elevation;
        place.latitude *= radiansPerDegree;
        place.longitude *= radiansPerDegree;
        const double found = SunElevation(Sun::At(golden.utc).OverEarth(), place) / radiansPerDegree;
        // Seen from the ground instead of the earth's centre it is lower by up to 0.0024 degrees.
        EXPECT_NEAR(found, elevation, asGoodAs + 0.0025) << golden.utc;
    });
    EXPECT_EQ(count, 600);
}

TEST(SunTest, CurvesLieWhereTheSunStandsAtTheirElevation) {
    for (const double season : {0.0, 80.0, 172.0, 300.3}) {
        const Vector3 sun = Sun::At(46023 + season).OverEarth();
        for (const double elevation : twilights) {
            const std::vector<Geodetic> curve = SunElevationCurve(sun, elevation * radiansPerDegree, 360);
            ASSERT_EQ(curve.size(), 360U);
            for (const Geodetic& point : curve)
                EXPECT_NEAR(SunElevation(sun, point) / radiansPerDegree, elevation, 1e-9);
        }
    }
}

TEST(SunTest, ACurveBeginsInTheNorthAndGoesEast) {
    const Vector3 sun{sunRadius * 200, 0, 0}; // over latitude 0, longitude 0
    const std::vector<Geodetic> curve = SunElevationCurve(sun, 60 * radiansPerDegree, 4);
    ASSERT_EQ(curve.size(), 4U);
    EXPECT_NEAR(curve[0].latitude / radiansPerDegree, 30, 1e-9);
    EXPECT_NEAR(curve[1].longitude / radiansPerDegree, 30, 1e-9);
    EXPECT_NEAR(curve[2].latitude / radiansPerDegree, -30, 1e-9);
    EXPECT_NEAR(curve[3].longitude / radiansPerDegree, -30, 1e-9);
    EXPECT_TRUE(SunElevationCurve(sun, 0, 0).empty());
}

TEST(SunTest, ShadowIsThatOfTheTwoCones) {
    int lights[3] = {};
    const int count = ForEachLine("light", [&](const GoldenSun& golden, std::istream& file) {
        Vector3 place;
        int state = 0;
        double depth = 0;
        file >> place.x >> place.y >> place.z >> state >> depth;
        ++lights[state];
        if (depth > 0.01) { // what the file's digits tell apart
            EXPECT_EQ(static_cast<int>(LightAt(place, golden.Place())), state) << golden.utc << " " << depth;
        }
        // The sun's own place is off by up to 0.01 degrees.
        if (depth > asGoodAs * radiansPerDegree * Length(place) + 0.01) {
            EXPECT_EQ(static_cast<int>(LightAt(place, Sun::At(golden.utc).OverEarth())), state) << golden.utc;
        }
    });
    EXPECT_EQ(count, 1800);
    for (const int light : lights)
        EXPECT_GT(light, 300);
}

TEST(SunTest, FarBehindTheEarthOnlyAPartOfTheSunIsCovered) {
    const Vector3 sun{149.6e6, 0, 0};
    EXPECT_EQ(LightAt({-1.3e6, 0, 0}, sun), Light::Umbra);
    EXPECT_EQ(LightAt({-1.5e6, 0, 0}, sun), Light::Penumbra); // beyond the umbra's vertex
    EXPECT_EQ(LightAt({7000, 0, 0}, sun), Light::Sunlit);
}

TEST(SunTest, APlaceOnTheEllipsoidGoesThereAndBack) {
    for (double latitude = -90; latitude <= 90; latitude += 15) {
        const Geodetic place{latitude * radiansPerDegree, 2 - latitude / 90, 420 + latitude};
        const Geodetic back = ToGeodetic(FromGeodetic(place));
        EXPECT_NEAR(back.latitude, place.latitude, 1e-9);
        EXPECT_NEAR(back.altitude, place.altitude, 1e-6);
        if (std::abs(latitude) < 90) {
            EXPECT_NEAR(back.longitude, place.longitude, 1e-12);
        }
    }
}
