#include "orbit/map/MapGeometry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

using namespace MapGeometry;

namespace {

constexpr MapSize size{1080, 540};
constexpr double altitude = 700;
const double radius = FootprintRadius(altitude);

std::vector<GeoPoint> Points(const std::vector<Piece>& pieces) {
    std::vector<GeoPoint> points;
    for (const Piece& piece : pieces)
        points.insert(points.end(), piece.begin(), piece.end());
    return points;
}

// The greatest width of a single line, in degrees.
double WidestLine(const std::vector<Piece>& pieces) {
    double widest = 0;
    for (const Piece& piece : pieces) {
        for (std::size_t i = 1; i < piece.size(); ++i)
            widest = std::max(widest, std::abs(piece[i].longitude - piece[i - 1].longitude));
    }
    return widest;
}

void ExpectOnMap(const std::vector<Piece>& pieces) {
    for (const GeoPoint& point : Points(pieces))
        EXPECT_LE(std::abs(point.longitude), 180.0);
}

// The distance in pixels from a place of the picture to the nearest line.
double DistanceTo(const std::vector<Piece>& pieces, const PixelPoint& place, const MapSize& picture) {
    double nearest = 1e9;
    for (const Piece& piece : pieces) {
        for (std::size_t i = 1; i < piece.size(); ++i) {
            const PixelPoint a = ToPixel(piece[i - 1], picture);
            const PixelPoint b = ToPixel(piece[i], picture);
            const double dx = b.x - a.x;
            const double dy = b.y - a.y;
            const double length2 = dx * dx + dy * dy;
            const double along = length2 > 0 ? ((place.x - a.x) * dx + (place.y - a.y) * dy) / length2 : 0;
            const double part = std::clamp(along, 0.0, 1.0);
            nearest = std::min(nearest, std::hypot(a.x + part * dx - place.x, a.y + part * dy - place.y));
        }
    }
    return nearest;
}

// The distance of two places on the earth, in degrees.
double Distance(const GeoPoint& a, const GeoPoint& b) {
    constexpr double radian = std::numbers::pi / 180;
    const double dLat = std::sin((a.latitude - b.latitude) * radian / 2);
    const double dLong = std::sin((a.longitude - b.longitude) * radian / 2);
    const double h =
        dLat * dLat + std::cos(a.latitude * radian) * std::cos(b.latitude * radian) * dLong * dLong;
    return 2 * std::asin(std::min(std::sqrt(h), 1.0)) / radian;
}

// Every end of a piece is another piece's end, on the earth.
void ExpectClosed(const std::vector<Piece>& pieces) {
    std::vector<GeoPoint> ends;
    for (const Piece& piece : pieces) {
        ends.push_back(piece.front());
        ends.push_back(piece.back());
    }
    for (std::size_t i = 0; i < ends.size(); ++i) {
        double nearest = 1e9;
        for (std::size_t j = 0; j < ends.size(); ++j) {
            if (j != i)
                nearest = std::min(nearest, Distance(ends[i], ends[j]));
        }
        EXPECT_LT(nearest, 2e-3) << "an open end at " << ends[i].longitude << ", " << ends[i].latitude;
    }
}

// The area of a footprint on the map in square degrees: columns of a tenth of a degree, each between the
// highest and the lowest point of the outline.
double Area(const std::vector<Piece>& pieces) {
    constexpr int columns = 3600;
    std::vector<double> high(columns, -1e9);
    std::vector<double> low(columns, 1e9);
    for (const Piece& piece : pieces) {
        for (std::size_t i = 1; i < piece.size(); ++i) {
            for (int k = 0; k <= 100; ++k) {
                const double part = k / 100.0;
                const double longitude = std::lerp(piece[i - 1].longitude, piece[i].longitude, part);
                const double latitude = std::lerp(piece[i - 1].latitude, piece[i].latitude, part);
                const auto column = static_cast<std::size_t>(
                    std::clamp(static_cast<int>((longitude + 180) * 10), 0, columns - 1));
                high[column] = std::max(high[column], latitude);
                low[column] = std::min(low[column], latitude);
            }
        }
    }
    double area = 0;
    for (std::size_t column = 0; column < columns; ++column) {
        if (high[column] < low[column])
            continue;
        area += high[column] - low[column];
    }
    return area / 10;
}

} // namespace

TEST(MapGeometry, placesArePixels) {
    const PixelPoint corner = ToPixel({-180, 90}, size);
    EXPECT_EQ(corner.x, 0);
    EXPECT_EQ(corner.y, 0);
    const PixelPoint middle = ToPixel({0, 0}, {3000, 100});
    EXPECT_EQ(middle.x, 1500);
    EXPECT_EQ(middle.y, 50);
    const PixelPoint far = ToPixel({180, -90}, size);
    EXPECT_EQ(far.x, 1080);
    EXPECT_EQ(far.y, 540);
}

TEST(Track, acrossTheDateLineIsTwoPiecesThatMeetTheEdges) {
    const std::vector<GeoPoint> track{{178, 10}, {179, 20}, {-179, 30}, {-178, 40}};
    const std::vector<Piece> pieces = TrackPieces(track);
    ASSERT_EQ(pieces.size(), 2U);
    EXPECT_EQ(pieces[0].back().longitude, 180);
    EXPECT_NEAR(pieces[0].back().latitude, 25, 1e-9);
    EXPECT_EQ(pieces[1].front().longitude, -180);
    EXPECT_NEAR(pieces[1].front().latitude, 25, 1e-9);
    EXPECT_LE(WidestLine(pieces), 1.0 + 1e-9);
}

TEST(Track, acrossTheDateLineWestwardInterpolatesToo) {
    const std::vector<GeoPoint> track{{-177, 0}, {179, 8}};
    const std::vector<Piece> pieces = TrackPieces(track);
    ASSERT_EQ(pieces.size(), 2U);
    EXPECT_EQ(pieces[0].back().longitude, -180);
    EXPECT_NEAR(pieces[0].back().latitude, 6, 1e-9);
    EXPECT_EQ(pieces[1].front().longitude, 180);
    EXPECT_NEAR(pieces[1].back().longitude, 179, 1e-9);
}

TEST(Track, aPointOnTheDateLineNeedsNoLineAcross) {
    for (const double edge : {180.0, -180.0}) {
        const std::vector<GeoPoint> track{{179, 0}, {edge, 1}, {-179, 2}};
        const std::vector<Piece> pieces = TrackPieces(track);
        EXPECT_LE(WidestLine(pieces), 1.0 + 1e-9) << edge;
        ExpectOnMap(pieces);
        EXPECT_EQ(pieces.size(), 2U);
    }
}

TEST(Track, elsewhereIsOnePiece) {
    const std::vector<GeoPoint> track{{-100, 10}, {0, 20}, {100, 30}};
    const std::vector<Piece> pieces = TrackPieces(track);
    ASSERT_EQ(pieces.size(), 1U);
    EXPECT_EQ(pieces[0].size(), 3U);
}

TEST(Track, ofNoneOrOnePointHasNoPieces) {
    EXPECT_TRUE(TrackPieces({}).empty());
    EXPECT_TRUE(TrackPieces(std::vector<GeoPoint>{{1, 2}}).empty());
}

TEST(Track, ofManyTurnsStaysOnTheMap) {
    std::vector<GeoPoint> track(400);
    for (std::size_t i = 0; i < track.size(); ++i) {
        const auto turn = static_cast<double>(i);
        track[i] = {std::remainder(-170.0 + 29 * turn, 360), 60 * std::sin(turn * 0.1)};
    }
    const std::vector<Piece> pieces = TrackPieces(track);
    ExpectOnMap(pieces);
    EXPECT_LE(WidestLine(pieces), 29.0 + 1e-6);
    EXPECT_GE(pieces.size(), 32U);
}

TEST(Track, overAPoleHasNoLineLongerThanHalfTheMap) {
    // An orbit of 90 degrees: one meridian up, the opposite one down.
    std::vector<GeoPoint> track;
    for (int i = -5; i <= 5; ++i)
        track.push_back({i <= 0 ? 40.0 : -140.0, 90 - std::abs(4.0 * i)});
    const std::vector<Piece> pieces = TrackPieces(track);
    ExpectOnMap(pieces);
    EXPECT_LE(WidestLine(pieces), 180.0);
}

TEST(Track, isOneOrbitOfMinutes) {
    EXPECT_EQ(TrackLength(15.5), 93);
    EXPECT_EQ(TrackLength(14.4), 100);
    EXPECT_EQ(TrackLength(2.0), 200);
    EXPECT_EQ(TrackLength(1e-9), 200);
    EXPECT_EQ(TrackLength(0), 100);
    EXPECT_EQ(TrackLength(std::nan("")), 100);
}

TEST(Footprint, radiusIsThatOfFiveDegreesElevation) {
    // eta = arcsin(6368 sin 95 / 7068), lambda = 180 - 95 - eta, with the exact pi.
    EXPECT_NEAR(radius,
                85 - std::asin(6368 * std::sin(95 * std::numbers::pi / 180) / 7068) * 180 / std::numbers::pi,
                1e-3);
    EXPECT_NEAR(radius, 21.164442082705, 1e-9); // and with pi taken as 3.1416
    EXPECT_NEAR(FootprintRadius(420), 15.84, 0.005);
    EXPECT_EQ(FootprintRadius(-100), 0);
    EXPECT_EQ(FootprintRadius(std::nan("")), 0);
    EXPECT_GT(FootprintRadius(35786), 70);
}

TEST(Footprint, atTheEquatorIsACircle) {
    const std::vector<Piece> pieces = Footprint({0, 0}, altitude, size);
    EXPECT_EQ(pieces.size(), 2U); // the upper half and the lower one
    ExpectClosed(pieces);
    EXPECT_NEAR(Area(pieces), std::numbers::pi * radius * radius, 0.01 * radius * radius);
    for (const GeoPoint& point : Points(pieces)) {
        EXPECT_NEAR(std::hypot(point.longitude, point.latitude), radius, 1e-9);
        const std::vector<GeoPoint> all = Points(pieces);
        EXPECT_TRUE(std::ranges::any_of(all, [&](const GeoPoint& other) {
            return std::abs(other.longitude + point.longitude) < 1e-9 && other.latitude == point.latitude;
        })) << "not symmetric";
    }
}

TEST(Footprint, stepsAreHalfAPixelAtMost) {
    for (const MapSize& picture : {size, MapSize{4000, 2000}, MapSize{100, 50}}) {
        const double step = 0.5 * 360 / picture.width;
        EXPECT_LE(WidestLine(Footprint({0, 0}, altitude, picture)), step + 1e-9) << picture.width;
    }
}

TEST(Footprint, isWidenedByTheCosineOfTheLatitude) {
    const std::vector<Piece> pieces = Footprint({0, 60}, altitude, size);
    double widest = 0;
    for (const GeoPoint& point : Points(pieces))
        widest = std::max(widest, point.longitude);
    EXPECT_NEAR(widest, 2 * radius, 0.01);
    EXPECT_NEAR(Area(pieces), 2 * std::numbers::pi * radius * radius, 0.02 * radius * radius);
}

TEST(Footprint, acrossTheDateLineComesInAtTheOtherSide) {
    for (const double longitude : {175.0, 180.0, -170.0}) {
        const std::vector<Piece> pieces = Footprint({longitude, 0}, altitude, size);
        ExpectOnMap(pieces);
        ExpectClosed(pieces);
        EXPECT_LT(WidestLine(pieces), 1.0);
        EXPECT_NEAR(Area(pieces), std::numbers::pi * radius * radius, 0.01 * radius * radius) << longitude;
        for (const GeoPoint& point : Points(pieces))
            EXPECT_NEAR(std::hypot(std::remainder(point.longitude - longitude, 360), point.latitude), radius,
                        1e-4); // lines cut at the edge are chords
    }
}

// The curve as it is prescribed, point by point: all of it that falls into the picture is drawn, and nothing
// is drawn that does not belong to it.
TEST(Footprint, isTheCurveAsItStandsWhereverTheSatelliteIs) {
    for (const MapSize& picture : {size, MapSize{600, 600}, MapSize{1000, 250}}) {
        const double radiusPixels = radius / 360 * picture.width;
        for (const double latitude : {0.0, 45.0, -60.0, 75.0, -82.0, 86.0, 89.0, 89.9, -90.0}) {
            const double cosine = std::max(std::cos(latitude * 3.1416 / 180), 0.001);
            for (const double longitude : {0.0, 100.0, -179.5}) {
                SCOPED_TRACE(testing::Message() << longitude << ", " << latitude << " in " << picture.width
                                                << " by " << picture.height);
                const std::vector<Piece> pieces = Footprint({longitude, latitude}, altitude, picture);
                const PixelPoint centre = ToPixel({longitude, latitude}, picture);
                std::size_t seen = 0;
                for (double x = -radiusPixels; x <= radiusPixels; x += 0.5) {
                    const double y = std::sqrt(radiusPixels * radiusPixels - x * x);
                    for (const double sign : {1.0, -1.0}) {
                        const PixelPoint place{centre.x + x / cosine, centre.y + sign * y};
                        const bool isInPicture = place.x >= 0 && place.x <= picture.width && place.y >= 0 &&
                                                 place.y <= picture.height;
                        if (!isInPicture)
                            continue;
                        ++seen;
                        // Steps of half a pixel leave a corner of a seventh of one, widened with the rest.
                        ASSERT_LT(DistanceTo(pieces, place, picture), 0.15 / cosine);
                    }
                }
                EXPECT_GT(seen, 0U);
                for (const GeoPoint& point : Points(pieces)) {
                    const PixelPoint drawn = ToPixel(point, picture);
                    double least = 1e9; // over the turns by which it may have come in
                    for (const double turn : {-1.0, 0.0, 1.0}) {
                        const double x = (drawn.x + turn * picture.width - centre.x) * cosine;
                        least = std::min(least, std::abs(std::hypot(x, drawn.y - centre.y) - radiusPixels));
                    }
                    ASSERT_LT(least, 0.2); // lines cut at the edge are chords
                }
            }
        }
    }
}

TEST(Footprint, atThePolesIsALineAcrossTheWholeMap) {
    for (const double pole : {90.0, -90.0}) {
        const std::vector<Piece> pieces = Footprint({0, pole}, altitude, size);
        ASSERT_EQ(pieces.size(), 2U); // one turn of each half, not all of the many
        ExpectOnMap(pieces);
        double west = 0;
        double east = 0;
        for (const GeoPoint& point : Points(pieces)) {
            if (std::abs(point.latitude) > 90)
                continue; // beyond the picture
            EXPECT_NEAR(point.latitude, pole - std::copysign(radius, pole), 0.01);
            west = std::min(west, point.longitude);
            east = std::max(east, point.longitude);
        }
        EXPECT_EQ(west, -180);
        EXPECT_EQ(east, 180);
    }
}

TEST(Footprint, stretchIsCappedAtThePole) {
    // Half a turn from the satellite is 0.18 degrees before it is widened a thousandfold.
    const std::vector<Piece> capped = Footprint({0, 90}, altitude, size);
    double lowest = 90;
    double highest = 0;
    for (const GeoPoint& point : Points(capped)) {
        if (point.latitude > 90)
            continue;
        lowest = std::min(lowest, point.latitude);
        highest = std::max(highest, point.latitude);
    }
    EXPECT_NEAR(lowest, 90 - radius, 1e-9);
    EXPECT_NEAR(highest, 90 - std::sqrt(radius * radius - 0.18 * 0.18), 1e-5);
}

TEST(Footprint, nearAPoleIsBounded) {
    for (int quarter = 60 * 4; quarter <= 90 * 4; ++quarter) {
        for (const double longitude : {0.0, 100.0, 180.0, -179.9}) {
            for (const double sign : {1.0, -1.0}) {
                const std::vector<Piece> pieces =
                    Footprint({longitude, sign * quarter / 4.0}, altitude, size);
                ASSERT_FALSE(pieces.empty());
                ExpectOnMap(pieces);
                EXPECT_LE(WidestLine(pieces), 180.0);
                EXPECT_LT(Points(pieces).size(), 2000U);
            }
        }
    }
}

TEST(Footprint, northAndSouthMirrorEachOther) {
    const std::vector<GeoPoint> north = Points(Footprint({30, 80}, altitude, size));
    const std::vector<GeoPoint> south = Points(Footprint({30, -80}, altitude, size));
    ASSERT_EQ(north.size(), south.size());
    for (const GeoPoint& point : north) {
        EXPECT_TRUE(std::ranges::any_of(south,
                                        [&](const GeoPoint& other) {
                                            return std::abs(other.longitude - point.longitude) < 1e-6 &&
                                                   std::abs(other.latitude + point.latitude) < 1e-6;
                                        }))
            << point.longitude << ", " << point.latitude;
    }
}

TEST(Footprint, ofNonsenseIsNone) {
    EXPECT_TRUE(Footprint({std::nan(""), 0}, altitude, size).empty());
    EXPECT_TRUE(Footprint({0, std::nan("")}, altitude, size).empty());
    EXPECT_TRUE(Footprint({0, 91}, altitude, size).empty());
    EXPECT_TRUE(Footprint({0, 0}, std::nan(""), size).empty());
    EXPECT_TRUE(Footprint({0, 0}, -1000, size).empty());
    EXPECT_FALSE(Footprint({0, 0}, 1e12, {1e9, 1e9}).empty()); // bounded, however large the picture
}

TEST(SatMark, reachesThreeAndSixPixels) {
    for (const auto& [from, to] : SatMark()) {
        EXPECT_EQ(std::hypot(from.x, from.y), 3);
        EXPECT_TRUE(std::hypot(to.x, to.y) == 3 || std::hypot(to.x, to.y) == 6);
    }
}
