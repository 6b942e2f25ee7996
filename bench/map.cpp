// What one tick of the ground-track map costs, at 1080 by 540 pixels.

#include "orbit/Circling.h"
#include "orbit/MapPicture.h"

#include <QApplication>
#include <QPainter>
#include <benchmark/benchmark.h>

namespace {

const QString polar = QStringLiteral("90417");
constexpr MapGeometry::MapSize size{1080, 540};

clsSats Sats(const Clock& clock) {
    auto library = std::make_unique<FakeLibrary>();
    LetCircle(*library);
    return {std::move(library), clock};
}

// Positions of an orbit, track and footprint; the propagation itself has a benchmark of its own.
void Compute(benchmark::State& state) {
    const Clock clock;
    const clsSats sats = Sats(clock);
    const DateTime start = DateOf(2026, 11, 21) + static_cast<double>(state.range(0)) / minutesPerDay;
    for (auto _ : state) {
        const GroundTrack track = GroundTrack::Of(sats, polar, start);
        benchmark::DoNotOptimize(MapGeometry::TrackPieces(track.points));
        benchmark::DoNotOptimize(MapGeometry::Footprint(track.points.front(), track.altitude, size));
    }
}
BENCHMARK(Compute)->ArgName("minute")->Arg(0)->Arg(10)->Arg(23)->Unit(benchmark::kMillisecond);

void Paint(benchmark::State& state) {
    const Clock clock;
    const clsSats sats = Sats(clock);
    MapPicture picture(nullptr);
    picture.resize(static_cast<int>(size.width), static_cast<int>(size.height));
    picture.SetTrack(GroundTrack::Of(
        sats, polar, DateOf(2026, 11, 21) + static_cast<double>(state.range(0)) / minutesPerDay));
    QImage screen(picture.size(), QImage::Format_RGB32);
    for (auto _ : state)
        picture.render(&screen);
}
BENCHMARK(Paint)->ArgName("minute")->Arg(0)->Arg(10)->Arg(23)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
