#pragma once

#include <array>
#include <span>
#include <utility>
#include <vector>

/// Lines on a world map of the plate carree projection: longitude -180 to 180 from left to right, latitude 90
/// to -90 from top to bottom. Degrees, east and north positive.
namespace MapGeometry {

struct GeoPoint {
    double longitude = 0;
    double latitude = 0;
};

/// A place in a picture, in pixels from its upper left corner.
struct PixelPoint {
    double x = 0;
    double y = 0;
};

/// The size of the picture that shows the whole map, in pixels; greater than 0.
struct MapSize {
    double width = 0;
    double height = 0;
};

/// Points that are joined by lines. Their longitudes lie on the map; what lies beyond its upper or lower edge
/// the picture clips.
using Piece = std::vector<GeoPoint>;

PixelPoint ToPixel(const GeoPoint& point, const MapSize& size);

/// The point of the earth that the picture shows at a pixel.
GeoPoint ToPoint(const PixelPoint& pixel, const MapSize& size);

/// The lines along a track whose neighbouring points are joined the shorter way round the earth. A line
/// across longitude 180 becomes two, which meet the map's edges at the latitude interpolated there: no line
/// is longer than half the map.
std::vector<Piece> TrackPieces(std::span<const GeoPoint> track);

/// The angular radius in degrees of the circle from which a satellite `altitude` km up is seen 5 degrees or
/// more above the horizon; 0 when there is none.
double FootprintRadius(double altitude);

/// The outline of the footprint around a satellite, whose `altitude` is in km. In a picture of `size` pixels
/// it is a circle, in steps of at most half a pixel across, widened by 1 / cos(latitude), the cosine held at
/// no less than 0.001.
///
/// It runs on beyond the upper and lower edge as it stands. What runs past the left or right edge comes in at
/// the other side as long as it lies within half a turn of the satellite: farther round, close to a pole, it
/// would only cross itself.
std::vector<Piece> Footprint(const GeoPoint& satellite, double altitude, const MapSize& size);

/// The lines of the mark that shows a satellite, in pixels around its place: they reach 3 and 6 pixels far.
std::array<std::pair<PixelPoint, PixelPoint>, 8> SatMark();

/// How many one-minute steps of a track make one orbit of an object with `meanMotion` revolutions a day, at
/// most 200; as for a low orbit when it is not known (0).
int TrackLength(double meanMotion);

} // namespace MapGeometry
