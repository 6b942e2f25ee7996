#include "orbit/map/MapPicture.h"

#include "orbit/map/NightLevels.h"
#include "orbit/service/LatLongText.h"
#include "orbit/sky/Sun.h"

#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPolygonF>

#include <algorithm>
#include <cmath>

namespace {

constexpr QColor trackColour(0, 128, 0);
constexpr QColor footprintColour(0, 0, 192);
constexpr QColor satelliteColour(0, 0, 255);
constexpr QColor plainColour(201, 219, 232);
constexpr QColor graticuleColour(140, 160, 174);
constexpr QColor otherTrackColour(176, 80, 0);
constexpr QColor otherFootprintColour(208, 112, 0);
constexpr QColor passColour(208, 0, 112);
constexpr QColor stationColour(208, 0, 0);
constexpr QColor terminatorColour(255, 216, 120);
constexpr QColor nightColour(0, 0, 32);
constexpr std::array<int, 5> nightAlpha{0, 56, 84, 112, 140}; // by day, in the twilights, at night
constexpr QSize finestNight(1080, 540);
constexpr double lineWidth = 2.0;
constexpr QSize plainSize(1080, 540);
constexpr int leastWidth = 360;
constexpr int graticuleStep = 30;

QImage PlainWorld() {
    QImage world(plainSize, QImage::Format_RGB32);
    world.fill(plainColour);
    QPainter painter(&world);
    painter.setPen(graticuleColour);
    for (int degrees = graticuleStep; degrees < 360; degrees += graticuleStep) {
        const int x = degrees * plainSize.width() / 360;
        painter.drawLine(x, 0, x, plainSize.height());
    }
    for (int degrees = graticuleStep; degrees < 180; degrees += graticuleStep) {
        const int y = degrees * plainSize.height() / 180;
        painter.drawLine(0, y, plainSize.width(), y);
    }
    return world;
}

QPointF PointAt(const MapGeometry::GeoPoint& point, const MapGeometry::MapSize& size) {
    const MapGeometry::PixelPoint pixel = MapGeometry::ToPixel(point, size);
    return {pixel.x, pixel.y};
}

void DrawPieces(QPainter& painter, const std::vector<MapGeometry::Piece>& pieces,
                const MapGeometry::MapSize& size) {
    for (const MapGeometry::Piece& piece : pieces) {
        QPolygonF line;
        line.reserve(static_cast<qsizetype>(piece.size()));
        for (const MapGeometry::GeoPoint& point : piece)
            line.append(PointAt(point, size));
        painter.drawPolyline(line);
    }
}

// The levels are the picture, their darkness its colours.
QImage NightImage(const orbitmath::Vector3& sun, const QSize& size) {
    const std::vector<std::uint8_t> levels = MapGeometry::NightLevels(sun, size.width(), size.height());
    QImage image(levels.data(), size.width(), size.height(), size.width(), QImage::Format_Indexed8);
    QList<QRgb> colours;
    for (const int alpha : nightAlpha)
        colours.append(qRgba(nightColour.red(), nightColour.green(), nightColour.blue(), alpha));
    image.setColorTable(colours);
    return image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

void DrawSatellite(QPainter& painter, const QPointF& place, const QColor& colour) {
    painter.save();
    painter.translate(place);
    painter.setPen(QPen(colour, lineWidth));
    QPolygonF body;
    for (const auto& [from, to] : MapGeometry::SatMark()) {
        painter.drawLine(QPointF(from.x, from.y), QPointF(to.x, to.y));
        if (std::hypot(to.x, to.y) < 4.0)
            body.append(QPointF(to.x, to.y));
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawPolygon(body);
    painter.restore();
}

// A triangle that stands on its place; close to the upper edge it hangs below. What lies beyond an edge at
// the side comes in at the other.
void DrawStation(QPainter& painter, const QPointF& place, const MapGeometry::MapSize& size) {
    constexpr double width = 6;
    const double height = place.y() > 12 ? -12 : 12;
    painter.setPen(QPen(Qt::white, 1.5));
    painter.setBrush(stationColour);
    const QPolygonF mark{place, place + QPointF(-width, height), place + QPointF(width, height)};
    for (const double turn : {-size.width, 0.0, size.width})
        painter.drawPolygon(mark.translated(turn, 0));
}

// A text over the map that lets the mouse through.
QLabel* Overlay(QWidget* map, const QString& name) {
    auto* label = new QLabel(map);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setAttribute(Qt::WA_TransparentForMouseEvents);
    label->setAutoFillBackground(true);
    label->setBackgroundRole(QPalette::Base);
    label->setForegroundRole(QPalette::Text);
    label->setMargin(3);
    label->hide();
    return label;
}

} // namespace

MapPicture::MapPicture(QWidget* parent)
    : QWidget(parent)
    , labPointer(Overlay(this, QStringLiteral("labPointer")))
    , labMapNote(Overlay(this, QStringLiteral("labMapNote"))) {
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent); // every pixel is painted, once
    SetWorld({});
}

void MapPicture::SetWorld(const QImage& world) {
    m_world = world.isNull() ? PlainWorld() : world;
    m_worldSize = m_world.size();
    m_background = {};
    m_ground = {};
    updateGeometry();
    update();
}

void MapPicture::SetTrack(GroundTrack track) {
    m_track = std::move(track);
    update();
}

void MapPicture::SetOverlay(MapOverlay overlay) {
    m_overlay = std::move(overlay);
    update();
}

std::optional<MapGeometry::GeoPoint> MapPicture::PointUnder(const QPoint& place) const {
    const QRectF map = MapPlace();
    if (!map.contains(place))
        return std::nullopt;
    return MapGeometry::ToPoint({.x = place.x() - map.left(), .y = place.y() - map.top()},
                                {.width = map.width(), .height = map.height()});
}

void MapPicture::SetNote(const QString& note) {
    labMapNote->setText(note);
    labMapNote->setAccessibleName(note);
    labMapNote->adjustSize();
    labMapNote->move((width() - labMapNote->width()) / 2, (height() - labMapNote->height()) / 2);
    labMapNote->setVisible(!note.isEmpty());
}

void MapPicture::mouseMoveEvent(QMouseEvent* event) {
    const auto point = PointUnder(event->position().toPoint());
    labPointer->setVisible(point.has_value());
    if (point) {
        labPointer->setText(LatLongText::Latitude(point->latitude).value_or(QString()) + u' ' +
                            LatLongText::Longitude(point->longitude).value_or(QString()));
        labPointer->adjustSize();
        labPointer->move(0, height() - labPointer->height());
    }
    QWidget::mouseMoveEvent(event);
}

void MapPicture::mouseDoubleClickEvent(QMouseEvent* event) {
    const auto point = PointUnder(event->position().toPoint());
    if (event->button() == Qt::LeftButton && point)
        Q_EMIT PointChosen(*point);
}

void MapPicture::leaveEvent(QEvent* event) {
    labPointer->hide();
    QWidget::leaveEvent(event);
}

void MapPicture::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    SetNote(labMapNote->text());
}

QSize MapPicture::minimumSizeHint() const {
    const QSize least = m_worldSize.scaled(leastWidth, leastWidth, Qt::KeepAspectRatio);
    return least.boundedTo(m_worldSize);
}

QRectF MapPicture::MapPlace() const {
    QRectF place(QPointF(), QSizeF(m_worldSize).scaled(size(), Qt::KeepAspectRatio));
    place.moveCenter(QRectF(rect()).center());
    return place;
}

const QPixmap& MapPicture::Background(const QRectF& place) {
    const QSize wanted = (place.size() * devicePixelRatioF()).toSize().expandedTo(QSize(1, 1));
    if (m_background.size() != wanted) {
        m_background =
            QPixmap::fromImage(m_world.scaled(wanted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    }
    m_background.setDevicePixelRatio(devicePixelRatioF());
    return m_background;
}

// Made anew only when the minute or the size is another one.
const QPixmap& MapPicture::Ground(const QRectF& place) {
    const QPixmap& world = Background(place);
    if (!m_overlay.night)
        return world;
    if (m_ground.size() == world.size() && m_groundUtc == m_overlay.night)
        return m_ground;
    m_groundUtc = m_overlay.night;
    m_ground = world;
    m_ground.setDevicePixelRatio(1);
    const orbitmath::Vector3 sun = orbitmath::Sun::At(*m_groundUtc).OverEarth();
    QPainter painter(&m_ground);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.drawImage(m_ground.rect(), NightImage(sun, m_ground.size().boundedTo(finestNight)));
    painter.setPen(QPen(terminatorColour, 1.5 * devicePixelRatioF()));
    DrawPieces(painter, MapGeometry::Terminator(sun),
               {static_cast<double>(m_ground.width()), static_cast<double>(m_ground.height())});
    painter.end();
    m_ground.setDevicePixelRatio(devicePixelRatioF());
    return m_ground;
}

// Under the selected satellite.
void MapPicture::DrawOverlay(QPainter& painter, const MapGeometry::MapSize& size) const {
    if (const GroundTrack& other = m_overlay.other; !other.points.empty()) {
        painter.setPen(QPen(otherFootprintColour, lineWidth));
        DrawPieces(painter, MapGeometry::Footprint(other.points.front(), other.altitude, size), size);
        painter.setPen(QPen(otherTrackColour, lineWidth, Qt::DashLine));
        DrawPieces(painter, MapGeometry::TrackPieces(other.points), size);
        DrawSatellite(painter, PointAt(other.points.front(), size), otherTrackColour);
    }
    if (!m_overlay.passOver.empty()) {
        painter.setPen(QPen(passColour, 2 * lineWidth));
        DrawPieces(painter, MapGeometry::TrackPieces(m_overlay.passOver), size);
    }
    if (m_overlay.station)
        DrawStation(painter, PointAt(*m_overlay.station, size), size);
}

void MapPicture::paintEvent(QPaintEvent*) {
    const QRectF place = MapPlace();
    const MapGeometry::MapSize size{place.width(), place.height()};
    QPainter painter(this);
    if (place.size() != QSizeF(this->size()))
        painter.fillRect(rect(), palette().color(QPalette::Window));
    painter.drawPixmap(place.topLeft(), Ground(place));
    if (place.isEmpty())
        return;
    painter.setClipRect(place);
    painter.translate(place.topLeft());
    painter.setRenderHint(QPainter::Antialiasing);

    DrawOverlay(painter, size);
    if (m_track.points.empty())
        return;

    const MapGeometry::GeoPoint& satellite = m_track.points.front();
    painter.setPen(QPen(footprintColour, lineWidth));
    DrawPieces(painter, MapGeometry::Footprint(satellite, m_track.altitude, size), size);
    painter.setPen(QPen(trackColour, lineWidth));
    const QPointF centre = PointAt(satellite, size);
    painter.drawPoint(centre);
    DrawPieces(painter, MapGeometry::TrackPieces(m_track.points), size);
    DrawSatellite(painter, centre, satelliteColour);
}
