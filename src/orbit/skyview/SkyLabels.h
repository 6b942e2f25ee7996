#pragma once

#include <QColor>
#include <QList>
#include <QPointF>
#include <QRectF>
#include <QString>

class QPainter;

/// The labels of a picture: each goes beside its point where there is room, the more important ones first.
class SkyLabels {
public:
    /// They stay inside `room`.
    SkyLabels(QPainter& painter, const QRectF& room)
        : m_painter(painter)
        , m_room(room) {}

    /// Nothing goes over this.
    void KeepFree(const QRectF& place) { m_taken += place; }

    enum class Need { Must, WhereThereIsRoom };

    /// Draws a text in the painter's pen, `distance` pixels from its point, on a ground of `ground`.
    void Add(const QPointF& point, double distance, const QString& text, const QColor& ground, Need need);

private:
    bool IsFree(const QRectF& place) const;

    QPainter& m_painter;
    const QRectF m_room;
    QList<QRectF> m_taken;
};
