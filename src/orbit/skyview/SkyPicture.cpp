#include "orbit/skyview/SkyPicture.h"

#include "orbit/skyview/SkyLabels.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace {

using Need = SkyLabels::Need;

/// The colours of a picture on a light or a dark ground.
struct Colours {
    explicit Colours(const QPalette& palette)
        : ground(palette.color(QPalette::Base))
        , text(palette.color(QPalette::Text))
        , isDark(ground.lightness() < 128) {}

    QColor Between(double share) const {
        const auto mix = [&](int a, int b) { return static_cast<int>(a + (b - a) * share); };
        return {mix(ground.red(), text.red()), mix(ground.green(), text.green()),
                mix(ground.blue(), text.blue())};
    }
    QColor Selected() const { return isDark ? QColor(0x7c, 0xb8, 0xff) : QColor(0x00, 0x50, 0xb4); }
    QColor Other() const { return isDark ? QColor(0xff, 0xb0, 0x60) : QColor(0xa0, 0x48, 0x00); }
    QColor Heard() const { return isDark ? QColor(0x60, 0xd8, 0x60) : QColor(0x00, 0x80, 0x20); }
    QColor Sun() const { return {0xff, 0xc8, 0x20}; }
    QColor Behind() const {
        QColor colour = ground;
        colour.setAlphaF(0.8F);
        return colour;
    }

    QColor ground;
    QColor text;
    bool isDark;
};

/// Draws one picture.
class Drawing {
public:
    Drawing(QPainter& painter, const SkyPicture& picture, const SkyView& view)
        : m_painter(painter)
        , m_picture(picture)
        , m_view(view)
        , m_colours(picture.palette())
        , m_unit(picture.fontMetrics().height())
        , m_labels(painter, QRectF(picture.rect()).adjusted(2, 2, -2, -2)) {}

    void All() {
        Ground();
        if (m_picture.ShownReception())
            HeardCells(*m_picture.ShownReception());
        Skyline();
        Rings();
        const auto& tracks = m_view.Scene().tracks;
        // The selected satellite is drawn over the other one; its labels come first.
        for (std::size_t k = tracks.size(); k-- > 0;)
            Way(tracks[k], k == 0);
        if (m_view.Scene().sun)
            Sun(*m_view.Scene().sun);
        for (std::size_t k = 0; k < tracks.size(); ++k)
            Marks(tracks[k], k == 0);
        HeardMarks();
    }

private:
    QPointF At(const SkyPoint& point) const { return m_picture.PointOf(point.azimuth, point.elevation); }
    double RadiusOf(double elevation) const {
        return m_picture.PointOf(90, 90).y() - m_picture.PointOf(0, elevation).y();
    }
    QColor ColourOf(bool isSelected) const { return isSelected ? m_colours.Selected() : m_colours.Other(); }

    void Ground() {
        m_painter.setPen(Qt::NoPen);
        m_painter.setBrush(m_colours.ground);
        m_painter.drawEllipse(m_picture.PointOf(0, 90), RadiusOf(0), RadiusOf(0));
    }

    void Skyline() {
        const orbitmath::Horizon& horizon = m_view.Horizon();
        if (!horizon.IsKnown())
            return;
        std::vector<double> azimuths;
        for (int degrees = 0; degrees < 360; ++degrees)
            azimuths.push_back(degrees);
        for (const auto& point : horizon.Points())
            azimuths.push_back(point.azimuth);
        std::ranges::sort(azimuths);
        QPolygonF line;
        for (const double azimuth : azimuths)
            line += m_picture.PointOf(azimuth, std::max(0.0, horizon.ElevationAt(azimuth)));
        QPainterPath hidden;
        hidden.addEllipse(m_picture.PointOf(0, 90), RadiusOf(0), RadiusOf(0));
        hidden.addPolygon(line);
        hidden.closeSubpath();
        m_painter.setBrush(m_colours.Between(0.2));
        m_painter.drawPath(hidden);
    }

    void Rings() {
        const QPointF zenith = m_picture.PointOf(0, 90);
        m_painter.setBrush(Qt::NoBrush);
        m_painter.setPen(QPen(m_colours.Between(0.35), 1));
        for (int azimuth = 0; azimuth < 360; azimuth += 90)
            m_painter.drawLine(zenith, m_picture.PointOf(azimuth, 0));
        for (const int elevation : {30, 60})
            m_painter.drawEllipse(zenith, RadiusOf(elevation), RadiusOf(elevation));
        m_painter.setPen(QPen(m_colours.Between(0.7), 1.5));
        m_painter.drawEllipse(zenith, RadiusOf(0), RadiusOf(0));

        m_painter.setPen(m_picture.palette().color(QPalette::WindowText));
        QFont bold = m_painter.font();
        bold.setBold(true);
        m_painter.setFont(bold);
        static constexpr const char16_t* winds[] = {u"N", u"E", u"S", u"W"};
        for (int k = 0; k < 4; ++k) {
            QRectF place(0, 0, 1.2 * m_unit, m_unit);
            const QPointF edge = m_picture.PointOf(90 * k, 0);
            place.moveCenter(edge + (edge - zenith) * (0.7 * m_unit / RadiusOf(0)));
            m_painter.drawText(place, Qt::AlignCenter, QString::fromUtf16(winds[k]));
            m_labels.KeepFree(place);
        }
        bold.setBold(false);
        m_painter.setFont(bold);
        m_painter.setPen(m_colours.Between(0.7));
        for (const int elevation : {30, 60})
            m_labels.Add(m_picture.PointOf(0, elevation), 1, QStringLiteral("%1°").arg(elevation),
                         m_colours.Behind(), Need::Must);
    }

    void Way(const SkyScene::Track& track, bool isSelected) {
        QPolygonF line;
        for (const SkyPoint& point : track.path.points)
            line += At(point);
        m_painter.setPen(
            QPen(ColourOf(isSelected), isSelected ? 2.5 : 1.5, isSelected ? Qt::SolidLine : Qt::DashLine));
        m_painter.setBrush(Qt::NoBrush);
        m_painter.drawPolyline(line);
        if (track.path.rise)
            Arrow(line, ColourOf(isSelected));
    }

    // The direction of motion, where a quarter and three quarters of the way are behind it.
    void Arrow(const QPolygonF& line, const QColor& colour) {
        for (const qsizetype at : {line.size() / 4, line.size() * 3 / 4}) {
            if (at < 1 || at >= line.size())
                continue;
            const QPointF step = line[at] - line[at - 1];
            const double length = std::hypot(step.x(), step.y());
            if (length < 0.01)
                continue;
            const QPointF along = step * (0.45 * m_unit / length);
            const QPointF across(-along.y() * 0.6, along.x() * 0.6);
            m_painter.setPen(Qt::NoPen);
            m_painter.setBrush(colour);
            m_painter.drawPolygon(
                QPolygonF{line[at] + along, line[at] - along + across, line[at] - along - across});
        }
    }

    // The more frames came from a cell, the stronger its colour; a single one can be seen among thousands.
    void HeardCells(const Reception& reception) {
        const double most = std::log1p(std::max(reception.Most(), 1));
        m_painter.setPen(Qt::NoPen);
        for (int elevation = 0; elevation < Reception::elevations; ++elevation) {
            for (int azimuth = 0; azimuth < Reception::azimuths; ++azimuth) {
                const int frames = reception.In(azimuth, elevation);
                if (frames == 0)
                    continue;
                QColor colour = m_colours.Heard();
                colour.setAlphaF(static_cast<float>(0.15 + 0.6 * std::log1p(frames) / most));
                m_painter.setBrush(colour);
                m_painter.drawPath(Cell(azimuth, elevation));
            }
        }
    }

    QPainterPath Cell(int azimuth, int elevation) const {
        constexpr int width = 360 / Reception::azimuths;
        constexpr int height = 90 / Reception::elevations;
        QPolygonF outline;
        for (int k = 0; k <= width; ++k)
            outline += m_picture.PointOf(azimuth * width + k, elevation * height);
        for (int k = width; k >= 0; --k)
            outline += m_picture.PointOf(azimuth * width + k, (elevation + 1) * height);
        QPainterPath path;
        path.addPolygon(outline);
        path.closeSubpath();
        return path;
    }

    // A short stroke across the way for each frame.
    void HeardMarks() {
        m_painter.setPen(QPen(m_colours.Heard(), 2));
        for (const SkyPoint& heard : m_view.Scene().heard) {
            const auto& way = m_view.Scene().tracks.front().path.points;
            const auto behind = std::ranges::lower_bound(way, heard.utc, {}, &SkyPoint::utc);
            if (behind == way.begin() || behind == way.end())
                continue;
            const QPointF along = At(*behind) - At(*(behind - 1));
            const double length = std::max(std::hypot(along.x(), along.y()), 0.01);
            const QPointF stroke = QPointF(-along.y(), along.x()) * (0.45 * m_unit / length);
            m_painter.drawLine(At(heard) - stroke, At(heard) + stroke);
        }
    }

    void Sun(const SkyPoint& sun) {
        const QPointF place = At(sun);
        const double radius = 0.4 * m_unit;
        m_painter.setPen(QPen(m_colours.text, 1));
        m_painter.setBrush(m_colours.Sun());
        m_painter.drawEllipse(place, radius, radius);
        m_labels.KeepFree(QRectF(place - QPointF(radius, radius), QSizeF(2 * radius, 2 * radius)));
        m_labels.Add(place, radius + 2, QObject::tr("Sun"), m_colours.Behind(), Need::Must);
    }

    void Marks(const SkyScene::Track& track, bool isSelected) {
        const SkyPath& path = track.path;
        const double dot = isSelected ? 0.17 * m_unit : 0.12 * m_unit;
        m_painter.setBrush(ColourOf(isSelected));
        m_painter.setPen(Qt::NoPen);
        for (const SkyPoint& tick : path.ticks)
            m_painter.drawEllipse(At(tick), dot, dot);
        if (track.now)
            Satellite(track, ColourOf(isSelected));
        m_painter.setPen(m_colours.text);
        const auto label = [&](const std::optional<SkyPoint>& point, const QString& word,
                               const QString& angle) {
            if (point)
                m_labels.Add(At(*point), 0.5 * m_unit,
                             word + m_view.TimeOfDay(point->utc) + u' ' + angle + u'°', m_colours.Behind(),
                             Need::Must);
        };
        if (!isSelected)
            return;
        const auto whole = [](double degrees) { return QString::number(std::lround(degrees)); };
        label(path.rise, QObject::tr("rise "), path.rise ? whole(path.rise->azimuth) : QString());
        label(path.set, QObject::tr("set "), path.set ? whole(path.set->azimuth) : QString());
        label(path.culmination, QObject::tr("top "),
              path.culmination ? whole(path.culmination->elevation) : QString());
        m_painter.setPen(m_colours.Between(0.85));
        for (const SkyPoint& tick : path.ticks)
            m_labels.Add(At(tick), 0.3 * m_unit, m_view.MinuteOfDay(tick.utc), m_colours.Behind(),
                         Need::WhereThereIsRoom);
    }

    void Satellite(const SkyScene::Track& track, const QColor& colour) {
        const QPointF place = At(*track.now);
        const double radius = 0.4 * m_unit;
        m_painter.setPen(QPen(m_colours.text, 2));
        m_painter.setBrush(colour);
        m_painter.drawEllipse(place, radius, radius);
        m_labels.KeepFree(QRectF(place - QPointF(radius, radius), QSizeF(2 * radius, 2 * radius)));
        m_labels.Add(place, radius + 3, track.name, m_colours.Behind(), Need::Must);
    }

    QPainter& m_painter;
    const SkyPicture& m_picture;
    const SkyView& m_view;
    const Colours m_colours;
    const double m_unit;
    SkyLabels m_labels;
};

} // namespace

SkyPicture::SkyPicture(const SkyView& view, QWidget* parent)
    : QWidget(parent)
    , m_view(view) {}

void SkyPicture::SetEast(SkyGeometry::East east) {
    m_east = east;
    update();
}

void SkyPicture::SetReception(const std::optional<Reception>& reception) {
    m_reception = reception;
    update();
}

QPointF SkyPicture::PointOf(double azimuth, double elevation) const {
    const double margin = 1.5 * fontMetrics().height();
    const double radius = std::max(1.0, std::min(width(), height()) / 2.0 - margin);
    const SkyGeometry::PlotPoint point = SkyGeometry::At(azimuth, elevation, m_east);
    return QRectF(rect()).center() + radius * QPointF(point.x, point.y);
}

QSize SkyPicture::sizeHint() const {
    return QSize(30, 30) * fontMetrics().height();
}

QSize SkyPicture::minimumSizeHint() const {
    return QSize(16, 16) * fontMetrics().height();
}

void SkyPicture::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    Drawing(painter, *this, m_view).All();
}
