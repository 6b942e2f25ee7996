// What one tick of the ground-track map costs, at 1080 by 540 pixels.

#include "foundation/text/Clock.h"
#include "orbit/map/MapPicture.h"
#include "orbit/service/KVRSatLib.h"

#include <QApplication>
#include <QPainter>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

#include <fstream>

namespace {

const QString polar = QStringLiteral("90417");
const QString iss = QStringLiteral("25544");
constexpr MapGeometry::MapSize size{1080, 540};

// An orbit service over the true library with two element sets of 2026-11-21 00:00; the polar satellite is at
// the equator then, northward.
class Sky {
public:
    Sky() {
        std::ofstream(m_folder.filePath(QStringLiteral("keps.txt")).toStdString())
            << "1 90417U 06001A   26325.00000000  .00000200  00000+0  10000-3 0  9991\n"
               "2 90417  98.1800 215.4000 0011500  92.3000 267.7000 14.57400000  4122\n"
               "1 25544U 98067A   26325.00000000  .00011000  00000+0  20000-3 0  9994\n"
               "2 25544  51.6400 120.5000 0004200  61.0000 299.2000 15.49600000 50001\n";
        if (!m_sats.setStrKeplerPath(m_folder.path()))
            qFatal("the element folder cannot be read");
    }

    GroundTrack TrackAt(const QString& object, int64_t minute) const {
        return GroundTrack::Of(m_sats, object,
                               DateOf(2026, 11, 21) + static_cast<double>(minute) / minutesPerDay);
    }

private:
    const QTemporaryDir m_folder;
    const Clock m_clock;
    clsSats m_sats{std::make_unique<KVRSatLib>(), m_clock};
};

void MakeLines(const GroundTrack& track) {
    benchmark::DoNotOptimize(MapGeometry::TrackPieces(track.points));
    benchmark::DoNotOptimize(MapGeometry::Footprint(track.points.front(), track.altitude, size));
}

// The lines alone, of positions that are known.
void Lines(benchmark::State& state, const QString& object) {
    const GroundTrack track = Sky().TrackAt(object, state.range(0));
    for (auto _ : state)
        MakeLines(track);
}

// The whole of what a tick computes: the positions of an orbit, and the lines.
void Compute(benchmark::State& state, const QString& object) {
    const Sky sky;
    for (auto _ : state)
        MakeLines(sky.TrackAt(object, state.range(0)));
}

void Paint(benchmark::State& state, const QString& object) {
    MapPicture picture(nullptr);
    picture.resize(static_cast<int>(size.width), static_cast<int>(size.height));
    picture.SetTrack(Sky().TrackAt(object, state.range(0)));
    QImage screen(picture.size(), QImage::Format_RGB32);
    for (auto _ : state)
        picture.render(&screen);
}

// At the equator, at middle latitudes and beside the pole.
void Minutes(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgName("minute")->Arg(0)->Arg(10)->Arg(24)->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(Lines, Polar, polar)->Apply(Minutes);
BENCHMARK_CAPTURE(Compute, Polar, polar)->Apply(Minutes);
BENCHMARK_CAPTURE(Compute, SpaceStation, iss)->Apply(Minutes);
BENCHMARK_CAPTURE(Paint, Polar, polar)->Apply(Minutes);

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
