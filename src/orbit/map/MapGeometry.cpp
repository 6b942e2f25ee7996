#include "orbit/map/MapGeometry.h"

#include <algorithm>
#include <cmath>
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

double Interpolate(double from, double to, double part) {
    return from + (to - from) * part;
}

// Puts lines onto the map. They may run on past its edges: longitudes beyond 180, latitudes beyond a pole.
class Folder {
public:
    void Move() { Close(); }

    void LineTo(const GeoPoint& to) {
        if (!m_last) {
            m_last = to;
            return;
        }
        const GeoPoint from = *m_last;
        m_last = to;
        // Where the line crosses the edges of the tiles into which the map repeats, in order along it.
        std::array<double, 6> cuts{};
        std::size_t count = 0;
        const auto cutAt = [&](double edge, double a, double b) {
            if (!((a < edge && b > edge) || (a > edge && b < edge)))
                return;
            cuts[count] = (edge - a) / (b - a);
            for (std::size_t i = count++; i > 0 && cuts[i - 1] > cuts[i]; --i)
                std::swap(cuts[i - 1], cuts[i]);
        };
        const auto cutAtMeridian = [&](double meridian) {
            const double low = std::min(from.longitude, to.longitude);
            const double edge = std::ceil((low - meridian) / 360.0) * 360.0 + meridian;
            cutAt(edge, from.longitude, to.longitude);
            cutAt(edge + 360.0, from.longitude, to.longitude);
        };
        cutAtMeridian(180.0);
        if (std::max(std::abs(from.latitude), std::abs(to.latitude)) > 90.0)
            cutAtMeridian(0.0); // beyond a pole this is longitude 180
        cutAt(90.0, from.latitude, to.latitude);
        cutAt(-90.0, from.latitude, to.latitude);
        double done = 0.0;
        for (std::size_t i = 0; i <= count; ++i) {
            const double next = i < count ? cuts[i] : 1.0;
            Add(Between(from, to, done), Between(from, to, next), Between(from, to, (done + next) / 2.0));
            done = next;
        }
    }

    std::vector<Piece> Take() {
        Close();
        return std::move(m_pieces);
    }

private:
    static GeoPoint Between(const GeoPoint& a, const GeoPoint& b, double part) {
        return {Interpolate(a.longitude, b.longitude, part), Interpolate(a.latitude, b.latitude, part)};
    }

    // A line that lies inside one tile, the one in which `middle` is.
    void Add(const GeoPoint& from, const GeoPoint& to, const GeoPoint& middle) {
        const bool over = std::abs(middle.latitude) > 90.0;
        const double turn = over ? 180.0 : 0.0;
        const double shift = turn - std::round((middle.longitude + turn) / 360.0) * 360.0;
        const auto place = [&](const GeoPoint& point) {
            const double latitude =
                over ? std::copysign(180.0, middle.latitude) - point.latitude : point.latitude;
            return GeoPoint{std::clamp(point.longitude + shift, -180.0, 180.0),
                            std::clamp(latitude, -90.0, 90.0)};
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

// The footprint's ellipse around a place, in degrees; x is walked before it is widened.
struct Ellipse {
    double latitude;
    double radius;
    double cosine;

    // The point at `x` on the upper (+1) or lower (-1) half, its longitude counted from the satellite's.
    GeoPoint At(double x, double half) const {
        return {x / cosine, latitude + half * std::sqrt(std::max(radius * radius - x * x, 0.0))};
    }

    bool Contains(double offset, double pointLatitude) const {
        const double x = offset * cosine;
        const double y = pointLatitude - latitude;
        return x * x + y * y < radius * radius * (1.0 - 1e-9);
    }

    // Whether the other way of naming the same place, over a pole, lies outside. No point is farther than
    // half a turn away.
    bool IsOutline(const GeoPoint& point) const {
        const double across = point.longitude - std::copysign(180.0, point.longitude);
        return !Contains(across, 180.0 - point.latitude) && !Contains(across, -180.0 - point.latitude);
    }

    bool MeetsItself() const { return radius > 180.0 * cosine || std::abs(latitude) + radius > 90.0; }
};

// Walks one half of an ellipse and hands its outline to `folder`.
void WalkHalf(Folder& folder, const Ellipse& ellipse, double longitude, double half, int steps) {
    const double reach = std::min(ellipse.radius, 180.0 * ellipse.cosine);
    const bool mayHide = ellipse.MeetsItself();
    const auto pointAt = [&](double x) { return ellipse.At(x, half); };
    const auto lineTo = [&](const GeoPoint& point) {
        folder.LineTo({longitude + point.longitude, point.latitude});
    };
    const auto isOutline = [&](double x) { return !mayHide || ellipse.IsOutline(pointAt(x)); };
    // Between an outline point and a hidden one: where the outline ends.
    const auto endOfOutline = [&](double outline, double hidden) {
        for (int i = 0; i < 40; ++i) {
            const double middle = (outline + hidden) / 2.0;
            (isOutline(middle) ? outline : hidden) = middle;
        }
        return pointAt(outline);
    };
    folder.Move();
    double previousX = -reach;
    bool previous = false;
    for (int i = 0; i <= steps; ++i) {
        const double x = reach * (2 * i - steps) / steps; // exactly symmetrical
        const bool outline = isOutline(x);
        if (outline && !previous && i > 0)
            lineTo(endOfOutline(x, previousX));
        if (outline)
            lineTo(pointAt(x));
        if (!outline && previous) {
            lineTo(endOfOutline(previousX, x));
            folder.Move();
        }
        previous = outline;
        previousX = x;
    }
}

} // namespace

PixelPoint ToPixel(const GeoPoint& point, const MapSize& size) {
    return {(point.longitude + 180.0) / 360.0 * size.width, (90.0 - point.latitude) / 180.0 * size.height};
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
    const Ellipse ellipse{.latitude = satellite.latitude,
                          .radius = radius,
                          .cosine = std::max(std::cos(satellite.latitude * degree), leastCosine)};
    const double reach = std::min(radius, 180.0 * ellipse.cosine);
    const double pixels = reach / 360.0 * size.width;
    const int steps =
        std::clamp(static_cast<int>(std::min(std::ceil(4.0 * pixels), 1e6)), fewestSteps, mostSteps);
    Folder folder;
    WalkHalf(folder, ellipse, satellite.longitude, 1.0, steps);
    WalkHalf(folder, ellipse, satellite.longitude, -1.0, steps);
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
