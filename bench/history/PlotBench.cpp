// What a frame of the history window's curves costs: six channels of 100,000 readings each, moved and zoomed
// across their whole length, in a window of 1200 by 700.
//
//   QT_QPA_PLATFORM=offscreen PlotBench        prints one JSON object

#include "telemetry/plots/HistoryPlot.h"

#include <QApplication>

#include <cmath>
#include <cstdio>
#include <ctime>
#include <functional>
#include <random>

namespace {

constexpr int readings = 100'000;
constexpr int frames = 200;
constexpr qint64 second = 1000;
constexpr qint64 hour = 3600 * second;

// Processor time of this process, which does not depend on what else the machine does.
double Milliseconds() {
    timespec spent{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &spent);
    return static_cast<double>(spent.tv_sec) * 1e3 + static_cast<double>(spent.tv_nsec) * 1e-6;
}

// Some dozen readings a pass, every ten seconds, four passes a day; noise upon a slow wave.
HistoryColumns Channel(unsigned number) {
    std::mt19937 random(number);
    std::normal_distribution<double> noise(0.0, 0.2);
    HistoryColumns channel;
    for (int i = 0; i < readings; ++i) {
        channel.utc.push_back(6 * hour * (i / 34) + 10 * second * (i % 34));
        channel.raw.push_back(i % 256);
        channel.value.push_back(7.0 + number + std::sin(i / 3000.0) + noise(random));
        channel.frame.push_back(static_cast<quint32>(i));
    }
    return channel;
}

// Milliseconds a frame, from the change of the range to the painted window.
double Measure(HistoryPlot& plot, const std::function<void(int)>& change) {
    bool isDrawn = false;
    const auto drawn = QObject::connect(&plot, &QCustomPlot::afterReplot, [&] { isDrawn = true; });
    const double begun = Milliseconds();
    for (int frame = 0; frame < frames; ++frame) {
        isDrawn = false;
        change(frame);
        while (!isDrawn)
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QApplication::sendPostedEvents();
    }
    const double spent = Milliseconds() - begun;
    QObject::disconnect(drawn);
    return spent / frames;
}

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    const std::vector<HistoryChannel> channels{{0, 0, 1}, {1, 0, 1}, {0, 1, 1},
                                               {1, 1, 2}, {0, 2, 1}, {1, 2, 2}};
    std::vector<HistoryColumns> columns;
    for (unsigned i = 0; i < channels.size(); ++i)
        columns.push_back(Channel(i));
    const qint64 end = columns.front().utc.back();
    HistoryPlot plot({});
    plot.resize(1200, 700);
    plot.show();
    plot.SetReadings(channels, std::make_shared<const std::vector<HistoryColumns>>(std::move(columns)));
    const double whole = Measure(plot, [&](int frame) { plot.SetRange(frame * hour, end + frame * hour); });
    const double pan = Measure(plot, [&](int frame) {
        const qint64 from = end / frames * frame / 2;
        plot.SetRange(from, from + end / 2);
    });
    const double zoom = Measure(plot, [&](int frame) {
        const auto range = std::llround(static_cast<double>(end) * std::pow(0.95, frame));
        plot.SetRange(end / 3, end / 3 + range);
    });
    std::printf("{\"whole_ms\": %.2f, \"pan_ms\": %.2f, \"zoom_ms\": %.2f}\n", whole, pan, zoom);
    return 0;
}
