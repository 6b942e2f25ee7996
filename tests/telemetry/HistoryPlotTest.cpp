#include "telemetry/plots/HistoryPlot.h"

#include "HistoryRoom.h"

#include <QTest>

using namespace HistoryRoom;

namespace {

constexpr qint64 minute = 60'000;
constexpr int dense = 20'000; // readings, many in a column of pixels

// A reading a minute.
HistoryColumns Steady(int count, double value) {
    HistoryColumns readings;
    for (int i = 0; i < count; ++i) {
        readings.utc.push_back(i * minute);
        readings.raw.push_back(0);
        readings.value.push_back(value + 0.1 * (i % 3));
        readings.frame.push_back(static_cast<quint32>(i));
    }
    return readings;
}

// Whether the colour of the first curve, about, is found at a place in a picture of the plot.
bool IsDrawn(const QImage& image, const HistoryPlot& plot, double x, double y) {
    const QColor wanted = plot.graph(0)->pen().color();
    for (int dx = -1; dx <= 1; ++dx) {
        const QColor found = image.pixelColor(QPointF(x + dx, y).toPoint());
        if (std::abs(found.red() - wanted.red()) + std::abs(found.green() - wanted.green()) +
                std::abs(found.blue() - wanted.blue()) <
            60)
            return true;
    }
    return false;
}

double XOf(const HistoryPlot& plot, double minutes) {
    return plot.graph(0)->keyAxis()->coordToPixel(minutes * 60.0);
}

double YOf(const HistoryPlot& plot, double value) {
    return plot.graph(0)->valueAxis()->coordToPixel(value);
}

} // namespace

class HistoryPlotTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void aSpikeInDenseReadingsIsDrawn();
    void denseReadingsAreJoinedFromColumnToColumn();
    void noStrokeCrossesAGap();
    void aReadingAloneIsADot();
    void symbolsStandWhereTheReadingsAre();

private:
    QImage Draw(HistoryColumns readings, qint64 from, qint64 to) {
        m_plot->SetReadings(
            {battA}, std::make_shared<const std::vector<HistoryColumns>>(std::vector{std::move(readings)}));
        m_plot->SetRange(from, to);
        m_plot->replot(); // lays out anew, and draws by that
        m_plot->replot();
        return m_plot->grab().toImage();
    }

    std::unique_ptr<HistoryPlot> m_plot;
};

void HistoryPlotTest::init() {
    m_plot = std::make_unique<HistoryPlot>(LimitTable{});
    m_plot->resize(600, 400);
}

void HistoryPlotTest::aSpikeInDenseReadingsIsDrawn() {
    HistoryColumns readings = Steady(dense, 1.0);
    readings.value[12'345] = 100.0;
    for (const qint64 around : {dense / 2, 5000, 1500}) { // minutes: at every zoom
        const QImage image = Draw(readings, (12'345 - around) * minute, (12'345 + around) * minute);
        QVERIFY(IsDrawn(image, *m_plot, XOf(*m_plot, 12'345), YOf(*m_plot, 50.0)));
        QVERIFY(!IsDrawn(image, *m_plot, XOf(*m_plot, 12'345) + 6, YOf(*m_plot, 50.0)));
    }
}

void HistoryPlotTest::denseReadingsAreJoinedFromColumnToColumn() {
    constexpr int steady = 250;
    HistoryColumns readings = Steady(dense, 1.0);
    for (std::size_t i = 0; i < dense; ++i)
        readings.value[i] += i / steady % 2 == 0 ? 0.0 : 8.0;
    const QImage image = Draw(readings, 0, dense * minute);
    for (int step = steady; step < dense; step += steady) { // between two columns, or within one
        QVERIFY(IsDrawn(image, *m_plot, XOf(*m_plot, step), YOf(*m_plot, 5.0)));
        QVERIFY(!IsDrawn(image, *m_plot, XOf(*m_plot, step + steady / 2), YOf(*m_plot, 5.0)));
    }
}

void HistoryPlotTest::noStrokeCrossesAGap() {
    HistoryColumns readings = Steady(dense, 1.0);
    for (std::size_t i = dense / 2; i < dense; ++i) {
        readings.utc[i] += 2000 * minute;
        readings.value[i] = 9.0;
    }
    const QImage image = Draw(readings, 0, (dense + 2000) * minute);
    const double y = YOf(*m_plot, 5.0);
    for (double x = XOf(*m_plot, dense / 2 - 200); x < XOf(*m_plot, dense / 2 + 2200); ++x)
        QVERIFY(!IsDrawn(image, *m_plot, x, y));
}

void HistoryPlotTest::aReadingAloneIsADot() {
    HistoryColumns readings = Steady(dense, 1.0);
    readings.utc.back() += 2000 * minute;
    readings.value.back() = 9.0;
    (void)Draw(readings, 0, minute);
    m_plot->graph(0)->setScatterStyle(QCPScatterStyle::ssNone);
    const QImage image = Draw(readings, 0, (dense + 4000) * minute);
    QVERIFY(IsDrawn(image, *m_plot, XOf(*m_plot, dense - 1 + 2000), YOf(*m_plot, 9.0)));
}

void HistoryPlotTest::symbolsStandWhereTheReadingsAre() {
    const QImage image = Draw(Steady(9, 1.0), -minute, 10 * minute);
    for (int i = 0; i < 9; ++i)
        for (const int dy : {-3, 0, 3}) // a filled circle
            QVERIFY(IsDrawn(image, *m_plot, XOf(*m_plot, i), YOf(*m_plot, 1.0 + 0.1 * (i % 3)) + dy));
    QVERIFY(!IsDrawn(image, *m_plot, XOf(*m_plot, 1.0), YOf(*m_plot, 1.1) + 9));
}

QTEST_MAIN(HistoryPlotTest)
#include "HistoryPlotTest.moc"
