#pragma once

#include "orbit/sky/Horizon.h"
#include "orbit/skyview/SkyGeometry.h"
#include "orbit/skyview/SkyView.h"

#include <QWidget>

/// The polar plot of frmSky. Colours are the palette's, sizes go by the font.
class SkyPicture : public QWidget {
    Q_OBJECT
public:
    SkyPicture(const SkyView& view, QWidget* parent);

    void SetEast(SkyGeometry::East east);

    /// Shades the sky by where frames were heard; nothing: not.
    void SetReception(const std::optional<Reception>& reception);
    const std::optional<Reception>& ShownReception() const { return m_reception; }

    /// Where a direction lies in the widget.
    QPointF PointOf(double azimuth, double elevation) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const SkyView& m_view;
    SkyGeometry::East m_east = SkyGeometry::East::Right;
    std::optional<Reception> m_reception;
};
