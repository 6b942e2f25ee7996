#pragma once

#include "orbit/map/MapLayers.h"

#include <QImage>
#include <QPixmap>
#include <QWidget>

#include <optional>

class QLabel;

/// The map of frmMap: the world, and over it a satellite with its footprint and its track.
class MapPicture : public QWidget {
    Q_OBJECT
public:
    explicit MapPicture(QWidget* parent);

    /// Shows this world map; a null one is replaced by a plain background with a graticule.
    void SetWorld(const QImage& world);

    void SetTrack(GroundTrack track);

    /// What is shown beside the satellite and its track.
    void SetOverlay(MapOverlay overlay);

    /// The point of the earth at a place in the widget; nothing beside the map.
    std::optional<MapGeometry::GeoPoint> PointUnder(const QPoint& place) const;

    /// What stands on the map while it has no track: why, and what to do.
    void SetNote(const QString& note);

    /// The place of the map inside the widget. Its shape is that of the world map.
    QRectF MapPlace() const;

    QSize sizeHint() const override { return m_worldSize; }
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The user has double-clicked this point.
    void PointChosen(const MapGeometry::GeoPoint& point);

protected:
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    const QPixmap& Background(const QRectF& place);
    const QPixmap& Ground(const QRectF& place);
    void DrawOverlay(QPainter& painter, const MapGeometry::MapSize& size) const;

    QImage m_world;
    QSize m_worldSize;
    QPixmap m_background; // the world at the size and sharpness in which it is shown
    QPixmap m_ground;     // the same with day and night
    std::optional<DateTime> m_groundUtc;
    GroundTrack m_track;
    MapOverlay m_overlay;
    QLabel* labPointer; // where the mouse is
    QLabel* labMapNote;
};
