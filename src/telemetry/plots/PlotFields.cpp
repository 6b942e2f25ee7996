#include "telemetry/plots/PlotFields.h"

#include "telemetry/calibration/GridLayout.h"
#include "telemetry/plots/ChannelTable.h"
#include "telemetry/plots/HistoryCsv.h"
#include "telemetry/plots/HistoryCurve.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>

namespace {

constexpr int symbolsOnACurve = 40;
constexpr int symbolSize = 8; // pixels
constexpr int entriesInARow = 4;

// Told apart by who sees few colours, on white and on black.
constexpr std::array<QRgb, 8> colours{0xFF0072B2, 0xFFD55E00, 0xFF009E73, 0xFFCC79A7,
                                      0xFF8C7A00, 0xFF3FA0D8, 0xFFA0522D, 0xFF7F7F7F};
constexpr std::array shapes{QCPScatterStyle::ssCircle, QCPScatterStyle::ssSquare, QCPScatterStyle::ssTriangle,
                            QCPScatterStyle::ssDiamond, QCPScatterStyle::ssTriangleInverted};
constexpr QRgb warningColour = 0xFFC08000;
constexpr QRgb alarmColour = 0xFFD02020;

double Seconds(qint64 milliseconds) {
    return static_cast<double>(milliseconds) / 1000.0;
}

// The form of the labels of a time axis of this length.
QString LabelForm(qint64 range) {
    constexpr qint64 hour = 3'600'000;
    if (range < hour / 2)
        return QStringLiteral("hh:mm:ss\nyyyy-MM-dd");
    return range < 96 * hour ? QStringLiteral("hh:mm\nyyyy-MM-dd") : QStringLiteral("yyyy-MM-dd");
}

} // namespace

PlotFields::PlotFields(QCustomPlot& plot, LimitTable limits)
    : m_plot(plot)
    , m_limits(std::move(limits)) {}

void PlotFields::Build(const std::vector<HistoryChannel>& channels) {
    m_plot.clearPlottables();
    m_plot.clearItems();
    m_plot.plotLayout()->clear();
    m_cursorLines.clear();
    m_shades.clear();
    m_legends.clear();
    m_rects.clear();
    m_level = nullptr;
    m_mark = nullptr;
    for (int grid = 0; grid < GridLayout::grids; ++grid)
        if (std::ranges::any_of(channels, [&](const HistoryChannel& shown) { return shown.grid == grid; }))
            AddField(channels, grid);
    if (m_rects.empty())
        return;
    delete m_margins;
    m_margins = new QCPMarginGroup(&m_plot);
    for (QCPAxisRect* rect : m_rects)
        rect->setMarginGroup(QCP::msLeft | QCP::msRight, m_margins);
    m_level = AddLine(m_rects.front());
    m_mark = new QCPItemTracer(&m_plot);
    m_mark->setLayer(QStringLiteral("overlay"));
    m_mark->setStyle(QCPItemTracer::tsCircle);
    m_mark->setSize(symbolSize + 3);
    m_mark->setVisible(false);
    Colour();
}

void PlotFields::AddField(const std::vector<HistoryChannel>& channels, int grid) {
    auto* rect = new QCPAxisRect(&m_plot);
    auto* legend = new QCPLegend;
    const int row = m_plot.plotLayout()->rowCount();
    m_plot.plotLayout()->addElement(row, 0, legend);
    m_plot.plotLayout()->setRowStretchFactor(row, 0.001); // as low as it can be
    m_plot.plotLayout()->addElement(row + 1, 0, rect);
    m_rects.push_back(rect);
    rect->setRangeDrag(Qt::Horizontal);
    rect->setMinimumMargins(QMargins(4, 2, 12, 2));
    for (QCPAxis* axis : rect->axes()) {
        axis->setLayer(QStringLiteral("axes"));
        axis->grid()->setLayer(QStringLiteral("grid"));
    }
    legend->setLayer(QStringLiteral("legend"));
    legend->setFillOrder(QCPLegend::foColumnsFirst);
    legend->setWrap(entriesInARow);
    m_legends.push_back(legend);
    QString unit;
    for (const HistoryChannel& channel : channels) {
        if (channel.grid != grid)
            continue;
        AddCurve(channel, rect, legend);
        AddLimits(channel, rect);
        if (unit.isEmpty())
            unit = UnitOf(channel, m_limits);
    }
    const QString heading = QString::fromLatin1(GridLayout::Heading(grid));
    rect->axis(QCPAxis::atLeft)
        ->setLabel(unit.isEmpty() ? heading : QStringLiteral("%1 [%2]").arg(heading, unit));
    m_cursorLines.push_back(AddLine(rect));
}

// Colours go by place; shapes by row, filled for side A.
void PlotFields::AddCurve(const HistoryChannel& channel, QCPAxisRect* rect, QCPLegend* legend) {
    const auto place = static_cast<std::size_t>(m_plot.graphCount());
    QCPGraph* curve =
        new HistoryCurve(rect->axis(QCPAxis::atBottom), rect->axis(QCPAxis::atLeft)); // the plot's own
    const QColor colour(colours[place % colours.size()]);
    curve->setName(ChannelTable::NameOf(channel));
    // A line of width 1 stays one dot of the screen wide, however fine the screen is, and is the cheapest.
    curve->setPen(QPen(colour, m_plot.devicePixelRatioF() > 1.0 ? 1.2 : 1.0));
    curve->setAdaptiveSampling(false); // points are no more than can be seen
    QCPScatterStyle symbol(shapes[static_cast<std::size_t>(channel.row - 1) % shapes.size()], symbolSize);
    symbol.setPen(QPen(colour, 1.5));
    symbol.setBrush(channel.side == 0 ? QBrush(colour) : QBrush(Qt::NoBrush));
    curve->setScatterStyle(symbol);
    curve->addToLegend(legend);
}

void PlotFields::AddLimits(const HistoryChannel& channel, QCPAxisRect* rect) {
    const auto found = m_limits.find({channel.side, channel.grid, channel.row});
    if (found == m_limits.end())
        return;
    const auto add = [&](const std::optional<double>& limit, QRgb colour, Qt::PenStyle style) {
        if (!limit)
            return;
        auto* line = new QCPItemStraightLine(&m_plot);
        line->setObjectName(QStringLiteral("limit"));
        line->setClipAxisRect(rect);
        for (QCPItemPosition* position : line->positions())
            position->setAxes(rect->axis(QCPAxis::atBottom), rect->axis(QCPAxis::atLeft));
        line->point1->setCoords(0, *limit);
        line->point2->setCoords(1, *limit);
        line->setPen(QPen(QColor(colour), 1, style));
    };
    add(found->second.lowAlarm, alarmColour, Qt::DashDotLine);
    add(found->second.lowWarning, warningColour, Qt::DashLine);
    add(found->second.highWarning, warningColour, Qt::DashLine);
    add(found->second.highAlarm, alarmColour, Qt::DashDotLine);
}

QCPItemStraightLine* PlotFields::AddLine(QCPAxisRect* rect) {
    auto* line = new QCPItemStraightLine(&m_plot);
    line->setLayer(QStringLiteral("overlay"));
    line->setClipAxisRect(rect);
    for (QCPItemPosition* position : line->positions())
        position->setAxes(rect->axis(QCPAxis::atBottom), rect->axis(QCPAxis::atLeft));
    line->setVisible(false);
    return line;
}

void PlotFields::ShadePasses(const std::vector<Span>& passes) {
    for (QCPItemRect* shade : m_shades)
        m_plot.removeItem(shade);
    m_shades.clear();
    QColor colour = m_plot.palette().color(QPalette::Highlight);
    colour.setAlpha(36);
    for (QCPAxisRect* rect : m_rects)
        for (const auto& [rise, set] : passes) {
            auto* shade = new QCPItemRect(&m_plot);
            shade->setObjectName(QStringLiteral("pass"));
            shade->setLayer(QStringLiteral("background"));
            shade->setClipAxisRect(rect);
            for (QCPItemPosition* corner : {shade->topLeft, shade->bottomRight}) {
                corner->setTypeX(QCPItemPosition::ptPlotCoords);
                corner->setTypeY(QCPItemPosition::ptAxisRectRatio);
                corner->setAxes(rect->axis(QCPAxis::atBottom), rect->axis(QCPAxis::atLeft));
                corner->setAxisRect(rect);
            }
            shade->topLeft->setCoords(Seconds(rise), 0);
            shade->bottomRight->setCoords(Seconds(set), 1);
            shade->setPen(Qt::NoPen);
            shade->setBrush(colour);
            m_shades.push_back(shade);
        }
}

void PlotFields::LabelTimes(qint64 range, bool isLocal) {
    const QSharedPointer<QCPAxisTickerDateTime> times(new QCPAxisTickerDateTime);
    times->setDateTimeSpec(isLocal ? Qt::LocalTime : Qt::UTC);
    times->setDateTimeFormat(LabelForm(range));
    times->setTickCount(6);
    for (QCPAxisRect* rect : m_rects) {
        rect->axis(QCPAxis::atBottom)->setTicker(times);
        rect->axis(QCPAxis::atBottom)->setTickLabels(rect == m_rects.back());
    }
    if (!m_rects.empty())
        m_rects.back()
            ->axis(QCPAxis::atBottom)
            ->setLabel(isLocal ? QStringLiteral("Local time") : QStringLiteral("UTC"));
}

void PlotFields::ColourAxis(QCPAxis* axis) {
    const QColor text = m_plot.palette().color(QPalette::Text);
    QColor faint = text;
    faint.setAlpha(40);
    axis->setBasePen(QPen(text));
    axis->setTickPen(QPen(text));
    axis->setSubTickPen(QPen(text));
    axis->setTickLabelColor(text);
    axis->setLabelColor(text);
    axis->setTickLabelFont(m_plot.font());
    axis->setLabelFont(m_plot.font());
    axis->grid()->setPen(QPen(faint, 1, Qt::DotLine));
    axis->grid()->setZeroLinePen(QPen(faint));
}

void PlotFields::Colour() {
    const QColor text = m_plot.palette().color(QPalette::Text);
    const QColor behind = m_plot.palette().color(QPalette::Base);
    m_plot.setBackground(behind);
    for (QCPAxisRect* rect : m_rects)
        for (QCPAxis* axis : rect->axes())
            ColourAxis(axis);
    for (QCPLegend* legend : m_legends) {
        legend->setBrush(behind);
        legend->setBorderPen(Qt::NoPen);
        legend->setTextColor(text);
        legend->setFont(m_plot.font());
        for (int i = 0; i < legend->itemCount(); ++i) {
            legend->item(i)->setTextColor(text);
            legend->item(i)->setFont(m_plot.font());
        }
    }
    for (QCPItemStraightLine* line : m_cursorLines)
        line->setPen(QPen(text, 1, Qt::DotLine));
    if (m_mark == nullptr)
        return;
    m_level->setPen(QPen(text, 1, Qt::DotLine));
    m_mark->setPen(QPen(text, 2));
}

void PlotFields::SetRange(qint64 from, qint64 to) {
    for (QCPAxisRect* rect : m_rects)
        rect->axis(QCPAxis::atBottom)->setRange(Seconds(from), Seconds(to));
}

void PlotFields::SetPoints(std::size_t channel, const std::vector<PlotPoints::Point>& points) {
    QVector<QCPGraphData> data;
    data.reserve(static_cast<qsizetype>(points.size()));
    for (const PlotPoints::Point& point : points)
        data.append(QCPGraphData(point.seconds, point.value));
    Curve(channel)->data()->set(data, true);
    // Smoothing dense lines costs more than all the rest, and nobody sees it.
    Curve(channel)->setAntialiased(static_cast<int>(points.size()) < m_plot.width());
    Curve(channel)->setScatterSkip(static_cast<int>(points.size()) / symbolsOnACurve);
}

void PlotFields::FitValues() {
    std::map<QCPAxis*, std::pair<double, double>> extents;
    for (int i = 0; i < m_plot.graphCount(); ++i) {
        const QCPGraph* curve = m_plot.graph(i);
        const QCPRange range = curve->keyAxis()->range();
        double lowest = std::numeric_limits<double>::infinity();
        double highest = -lowest;
        for (const QCPGraphData& point : *curve->data())
            if (range.contains(point.key)) { // what is no number is neither lower nor higher
                lowest = point.value < lowest ? point.value : lowest;
                highest = point.value > highest ? point.value : highest;
            }
        if (lowest > highest)
            continue;
        auto& [low, high] = extents.try_emplace(curve->valueAxis(), lowest, highest).first->second;
        low = std::min(low, lowest);
        high = std::max(high, highest);
    }
    for (const auto& [axis, extent] : extents) {
        const auto [low, high] = extent;
        const double margin = high > low ? (high - low) * 0.1 : std::max(0.5, std::abs(low) * 0.05);
        axis->setRange(low - margin, high + margin);
    }
}

void PlotFields::ShowCross(std::optional<qint64> utc, const std::optional<Mark>& mark) {
    for (QCPItemStraightLine* line : m_cursorLines) {
        line->setVisible(utc.has_value());
        line->point1->setCoords(Seconds(utc.value_or(0)), 0);
        line->point2->setCoords(Seconds(utc.value_or(0)), 1);
    }
    if (m_mark == nullptr)
        return;
    m_mark->setVisible(mark.has_value());
    m_level->setVisible(mark.has_value());
    if (!mark)
        return;
    const QCPGraph* curve = Curve(mark->channel);
    for (QCPAbstractItem* item :
         {static_cast<QCPAbstractItem*>(m_mark), static_cast<QCPAbstractItem*>(m_level)}) {
        item->setClipAxisRect(curve->valueAxis()->axisRect());
        for (QCPItemPosition* position : item->positions())
            position->setAxes(curve->keyAxis(), curve->valueAxis());
    }
    m_mark->position->setCoords(Seconds(mark->utc), mark->value);
    m_level->point1->setCoords(0, mark->value);
    m_level->point2->setCoords(1, mark->value);
}
