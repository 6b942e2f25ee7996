#include "telemetry/plots/HistoryPlot.h"

#include <QAccessibleWidget>

#include <algorithm>
#include <cmath>

namespace {

constexpr qint64 shortestRange = 10'000;
constexpr qint64 longestRange = qint64{200} * 365 * 86'400'000;
constexpr double zoomStep = 1.5;
constexpr double wheelStep = 120.0; // eighths of a degree

double Seconds(qint64 milliseconds) {
    return static_cast<double>(milliseconds) / 1000.0;
}

qint64 Milliseconds(double seconds) {
    return std::llround(seconds * 1000.0);
}

// A screen reader is told that these are curves, and not some box.
QAccessibleInterface* TellOfCurves(const QString& className, QObject* object) {
    return className == QLatin1StringView(HistoryPlot::staticMetaObject.className())
               ? new QAccessibleWidget(static_cast<QWidget*>(object), QAccessible::Chart)
               : nullptr;
}

} // namespace

HistoryPlot::HistoryPlot(LimitTable limits, QWidget* parent)
    : QCustomPlot(parent)
    , m_fields(*this, std::move(limits)) {
    QAccessible::installFactory(TellOfCurves); // which keeps one of each
    setLocale(QLocale::c());
    setFocusPolicy(Qt::StrongFocus);
    setAutoAddPlottableToLegend(false);
    setInteractions(QCP::iRangeDrag);
    setNoAntialiasingOnDrag(true);
    setPlottingHint(QCP::phFastPolylines);
    layer(QStringLiteral("overlay"))->setMode(QCPLayer::lmBuffered);
    plotLayout()->clear();
    m_fields.Colour();
}

void HistoryPlot::SetReadings(std::vector<HistoryChannel> channels, HistoryWorker::Columns readings) {
    const bool isSame = channels == m_channels;
    m_channels = std::move(channels);
    m_readings = std::move(readings);
    m_nearest.reset();
    if (!isSame)
        Build();
    if (m_cursor)
        m_nearest = PlotPoints::LastUntil(*m_readings, *m_cursor);
    Fill();
}

void HistoryPlot::Build() {
    m_fields.Build(m_channels);
    for (const QCPAxisRect* rect : m_fields.Rects())
        connect(rect->axis(QCPAxis::atBottom), qOverload<const QCPRange&>(&QCPAxis::rangeChanged), this,
                [this](const QCPRange& range) {
                    if (!m_isSetting)
                        SetRange(Milliseconds(range.lower), Milliseconds(range.upper));
                });
    m_fields.LabelTimes(m_to - m_from, m_isLocal);
    m_fields.ShadePasses(m_passes);
}

void HistoryPlot::SetLocalTime(bool isLocal) {
    m_isLocal = isLocal;
    m_fields.LabelTimes(m_to - m_from, m_isLocal);
    replot(rpQueuedReplot);
}

void HistoryPlot::SetPasses(std::vector<PlotFields::Span> passes) {
    m_passes = std::move(passes);
    m_fields.ShadePasses(m_passes);
    replot(rpQueuedReplot);
}

void HistoryPlot::SetRange(qint64 from, qint64 to) {
    const qint64 range = std::clamp(to - from, shortestRange, longestRange);
    const qint64 before = m_to - m_from;
    m_from = from + (to - from - range) / 2;
    m_to = m_from + range;
    if (range != before)
        m_fields.LabelTimes(range, m_isLocal);
    Fill();
    Q_EMIT RangeChanged();
}

void HistoryPlot::Fill() {
    m_isSetting = true;
    m_fields.SetRange(m_from, m_to);
    m_isSetting = false;
    for (std::size_t i = 0; i < m_readings->size() && i < m_channels.size(); ++i)
        m_fields.SetPoints(i, PlotPoints::Visible((*m_readings)[i], m_from, m_to, width()));
    m_fields.FitValues();
    ShowCursor();
    replot(rpQueuedReplot);
}

void HistoryPlot::SetCursor(qint64 utc) {
    MoveCursor(utc, PlotPoints::LastUntil(*m_readings, utc));
}

void HistoryPlot::MoveCursor(qint64 utc, std::optional<PlotPoints::Place> nearest) {
    m_cursor = utc;
    m_nearest = nearest;
    ShowCursor();
    layer(QStringLiteral("overlay"))->replot();
    Q_EMIT CursorChanged();
}

void HistoryPlot::ShowCursor() {
    std::optional<PlotFields::Mark> mark;
    if (m_nearest) {
        const HistoryColumns& readings = (*m_readings)[m_nearest->channel];
        mark =
            PlotFields::Mark{m_nearest->channel, readings.utc[m_nearest->at], readings.value[m_nearest->at]};
    }
    m_fields.ShowCross(m_cursor, mark);
}

// The cursor to where the mouse is, and the mark to the reading that is nearest to it on the screen.
void HistoryPlot::PointAt(const QPointF& place) {
    const QCPAxisRect* field = axisRectAt(place);
    if (field == nullptr || m_readings->size() != m_channels.size())
        return;
    const qint64 utc = Milliseconds(field->axis(QCPAxis::atBottom)->pixelToCoord(place.x()));
    std::optional<PlotPoints::Place> nearest;
    double shortest = std::numeric_limits<double>::max();
    for (std::size_t i = 0; i < m_channels.size(); ++i) {
        const HistoryColumns& readings = (*m_readings)[i];
        const QCPGraph* curve = m_fields.Curve(i);
        const auto at = PlotPoints::Nearest(readings, utc);
        if (!at || curve->keyAxis()->axisRect() != field || std::isnan(readings.value[*at]))
            continue;
        const double distance =
            std::hypot(curve->keyAxis()->coordToPixel(Seconds(readings.utc[*at])) - place.x(),
                       curve->valueAxis()->coordToPixel(readings.value[*at]) - place.y());
        if (distance < shortest) {
            shortest = distance;
            nearest = PlotPoints::Place{i, *at};
        }
    }
    MoveCursor(utc, nearest);
}

// To the next reading, of whatever channel, after or before the cursor; from outside the view to its edge.
void HistoryPlot::StepCursor(bool isForward) {
    const bool isInView = m_cursor && *m_cursor >= m_from && *m_cursor <= m_to;
    const qint64 utc = isInView ? *m_cursor : (isForward ? m_from - 1 : m_to + 1);
    const auto next =
        isForward ? PlotPoints::FirstAfter(*m_readings, utc) : PlotPoints::LastUntil(*m_readings, utc - 1);
    if (!next)
        return;
    const qint64 when = (*m_readings)[next->channel].utc[next->at];
    MoveCursor(when, next);
    if (when < m_from || when > m_to)
        SetRange(when - (m_to - m_from) / 2, when + (m_to - m_from) / 2);
}

// `factor` above 1 shows less; what lies at `around` stays where it is.
void HistoryPlot::Zoom(double factor, qint64 around) {
    const double share = static_cast<double>(around - m_from) / static_cast<double>(m_to - m_from);
    const auto range = std::llround(static_cast<double>(m_to - m_from) / factor);
    const qint64 clamped = std::clamp<qint64>(range, shortestRange, longestRange);
    const qint64 from = around - std::llround(share * static_cast<double>(clamped));
    SetRange(from, from + clamped);
}

void HistoryPlot::keyPressEvent(QKeyEvent* event) {
    const bool isStep = event->modifiers().testFlag(Qt::ControlModifier);
    if (event->modifiers() & (Qt::AltModifier | Qt::MetaModifier))
        return QCustomPlot::keyPressEvent(event);
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Right: {
        const bool isForward = event->key() == Qt::Key_Right;
        const qint64 step = (m_to - m_from) / (isForward ? 10 : -10);
        isStep ? StepCursor(isForward) : SetRange(m_from + step, m_to + step);
        break;
    }
    case Qt::Key_Plus:
    case Qt::Key_Up:
        Zoom(zoomStep, m_from + (m_to - m_from) / 2);
        break;
    case Qt::Key_Minus:
    case Qt::Key_Down:
        Zoom(1.0 / zoomStep, m_from + (m_to - m_from) / 2);
        break;
    case Qt::Key_Home:
    case Qt::Key_End:
        Q_EMIT EndAsked(event->key() == Qt::Key_End);
        break;
    case Qt::Key_Backspace:
        Q_EMIT BackAsked();
        break;
    default:
        QCustomPlot::keyPressEvent(event);
    }
}

void HistoryPlot::mouseMoveEvent(QMouseEvent* event) {
    QCustomPlot::mouseMoveEvent(event);
    if (event->buttons() == Qt::NoButton)
        PointAt(event->position());
}

void HistoryPlot::mouseDoubleClickEvent(QMouseEvent* event) {
    QCustomPlot::mouseDoubleClickEvent(event);
    Q_EMIT BackAsked();
}

void HistoryPlot::wheelEvent(QWheelEvent* event) {
    if (m_fields.Rects().empty())
        return;
    const double steps = event->angleDelta().y() / wheelStep;
    const double seconds =
        m_fields.Rects().front()->axis(QCPAxis::atBottom)->pixelToCoord(event->position().x());
    Zoom(std::pow(zoomStep, steps), std::clamp(Milliseconds(seconds), m_from, m_to));
    event->accept();
}

void HistoryPlot::resizeEvent(QResizeEvent* event) {
    QCustomPlot::resizeEvent(event);
    Fill();
}

void HistoryPlot::changeEvent(QEvent* event) {
    QCustomPlot::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        m_fields.Colour();
        m_fields.ShadePasses(m_passes);
        replot();
    }
}
