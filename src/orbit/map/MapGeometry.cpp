#include "orbit/map/MapGeometry.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>

namespace MapGeometry {
namespace {

// The footprint is reckoned with these rounded values.
constexpr double earthRadius = 6368.0; // km
constexpr double pi = 3.1416;
constexpr double degree = pi / 180.0;

constexpr double leastCosine = 0.001;
constexpr int fewestSteps = 64;
constexpr int mostSteps = 8192;

double ArcSine(double x) {
    return std::atan(x / std::sqrt(1.0 - x * x));
}

// `longitude` as an offset of -180 to 180.
double Wrapped(double longitude) {
    return std::remainder(longitude, 360.0);
}

// What becomes of a line that lies beyond the left or right edge of the map.
enum class Beyond { ComesIn, IsLeftAway };

// Puts lines onto the map. They may run on past its edges: longitudes beyond 180 are cut there, latitudes
// beyond a pole stay as they are.
class Folder {
public:
    void Move() { Close(); }

    void LineTo(const GeoPoint& to, Beyond beyond = Beyond::ComesIn) {
        if (!m_last) {
            m_last = to;
            return;
        }
        const GeoPoint from = *m_last;
        m_last = to;
        // The edge of the tiles into which the map repeats that the line may cross: it is shorter than a tile
        // is wide.
        const auto [west, east] = std::minmax(from.longitude, to.longitude);
        const double edge = std::ceil((west - 180.0) / 360.0) * 360.0 + 180.0;
        if (!(edge > west && edge < east)) {
            Add(from, to, beyond);
            return;
        }
        const double part = (edge - from.longitude) / (to.longitude - from.longitude);
        const GeoPoint cut{edge, std::lerp(from.latitude, to.latitude, part)};
        Add(from, cut, beyond);
        Add(cut, to, beyond);
    }

    std::vector<Piece> Take() {
        Close();
        return std::move(m_pieces);
    }

private:
    // A line that lies inside one tile.
    void Add(const GeoPoint& from, const GeoPoint& to, Beyond beyond) {
        const double middle = std::midpoint(from.longitude, to.longitude);
        const double shift = -std::round(middle / 360.0) * 360.0;
        if (shift != 0.0 && beyond == Beyond::IsLeftAway) {
            Store();
            return;
        }
        const auto place = [&](const GeoPoint& point) {
            return GeoPoint{std::clamp(point.longitude + shift, -180.0, 180.0), point.latitude};
        };
        const GeoPoint start = place(from);
        const GeoPoint end = place(to);
        if (m_piece.empty() || m_piece.back().longitude != start.longitude ||
            m_piece.back().latitude != start.latitude) {
            Store();
            m_piece.push_back(start);
        }
        m_piece.push_back(end);
    }

    void Store() {
        if (m_piece.size() > 1)
            m_pieces.push_back(std::move(m_piece));
        m_piece.clear();
    }

    void Close() {
        Store();
        m_last.reset();
    }

    std::optional<GeoPoint> m_last;
    Piece m_piece;
    std::vector<Piece> m_pieces;
};

} // namespace

PixelPoint ToPixel(const GeoPoint& point, const MapSize& size) {
    return {(point.longitude + 180.0) / 360.0 * size.width, (90.0 - point.latitude) / 180.0 * size.height};
}

GeoPoint ToPoint(const PixelPoint& pixel, const MapSize& size) {
    return {.longitude = pixel.x / size.width * 360.0 - 180.0,
            .latitude = 90.0 - pixel.y / size.height * 180.0};
}

std::vector<Piece> TrackPieces(std::span<const GeoPoint> track) {
    Folder folder;
    double unrolled = 0.0;
    for (std::size_t i = 0; i < track.size(); ++i) {
        unrolled =
            i == 0 ? track[i].longitude : unrolled + Wrapped(track[i].longitude - track[i - 1].longitude);
        folder.LineTo({unrolled, track[i].latitude});
    }
    return folder.Take();
}

double FootprintRadius(double altitude) {
    constexpr double nadirLimit = 95.0 * degree; // a right angle and the least elevation
    const double sine = earthRadius * std::sin(nadirLimit) / (earthRadius + altitude);
    if (!(sine > 0.0 && sine < 1.0))
        return 0.0;
    return std::max((pi - nadirLimit - ArcSine(sine)) / degree, 0.0);
}

std::vector<Piece> Footprint(const GeoPoint& satellite, double altitude, const MapSize& size) {
    const double radius = FootprintRadius(altitude);
    if (!(radius > 0.0) || !std::isfinite(satellite.longitude) || !(std::abs(satellite.latitude) <= 90.0))
        return {};
    const double cosine = std::max(std::cos(satellite.latitude * degree), leastCosine);
    const double centre = Wrapped(satellite.longitude);
    // A pixel is as high as it is wide: in a picture that is not twice as wide as high, degrees are not.
    const double heightPerWidth = size.width / (2.0 * size.height);
    const double reach = std::min(radius, 360.0 * cosine); // farther, nothing comes to lie on the map
    const double pixels = reach / 360.0 * size.width;
    const int steps =
        std::clamp(static_cast<int>(std::min(std::ceil(4.0 * pixels), 1e6)), fewestSteps, mostSteps);
    Folder folder;
    for (const double half : {1.0, -1.0}) {
        folder.Move();
        double previous = 0.0;
        for (int i = 0; i <= steps; ++i) {
            const double x = reach * (2 * i - steps) / steps; // exactly symmetrical
            const double y = std::sqrt(std::max(radius * radius - x * x, 0.0)) * heightPerWidth;
            const double offset = x / cosine;
            const bool isNear = std::abs(previous + offset) <= 360.0; // the line's middle, half a turn
            folder.LineTo({centre + offset, satellite.latitude + half * y},
                          isNear ? Beyond::ComesIn : Beyond::IsLeftAway);
            previous = offset;
        }
    }
    return folder.Take();
}

std::array<std::pair<PixelPoint, PixelPoint>, 8> SatMark() {
    constexpr double near = 3.0;
    constexpr double far = 6.0;
    constexpr PixelPoint top{0, -near};
    constexpr PixelPoint right{near, 0};
    constexpr PixelPoint bottom{0, near};
    constexpr PixelPoint left{-near, 0};
    return {{{top, right},
             {right, bottom},
             {bottom, left},
             {left, top},
             {top, {0, -far}},
             {right, {far, 0}},
             {bottom, {0, far}},
             {left, {-far, 0}}}};
}

int TrackLength(double meanMotion) {
    constexpr double most = 200.0;
    constexpr double unknown = 100.0;
    constexpr double minutesPerDay = 1440.0;
    if (!(meanMotion > 0.0))
        return static_cast<int>(unknown);
    return static_cast<int>(std::min(std::ceil(minutesPerDay / meanMotion), most));
}

} // namespace MapGeometry
