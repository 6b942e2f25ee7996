#include "orbit/passes/PassSearch.h"
#include "orbit/service/KVRSatLib.h"
#include "orbit/sgp4/SiderealTime.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

// Every figure is to be read as a ratio to "SinCos", one glibc sincos of a changing argument, in the same
// run: bench/orbit/ratios.py prints them.

using namespace orbitmath;
namespace fs = std::filesystem;

namespace {

constexpr double epoch = 46342; // 2026-11-16

Elements Orbit(double inclination, double eccentricity, double revolutions) {
    Elements elements;
    elements.number = 90417;
    elements.epochUtc = epoch;
    elements.inclination = inclination * radiansPerDegree;
    elements.node = 1;
    elements.eccentricity = eccentricity;
    elements.argumentOfPerigee = 4.7;
    elements.meanAnomaly = 0.3;
    elements.meanMotion = revolutions * twoPi / 1440;
    elements.bstar = 1e-4;
    return elements;
}

const Elements polar = Orbit(97.7, 0.0012, 14.92);
const Elements equatorial = Orbit(0.5, 0.001, 15.1);
const Elements eccentric = Orbit(28, 0.5, 5.2);
const Elements halfDay = Orbit(63.4, 0.72, 2.006);

void SinCosOnce(benchmark::State& state) {
    double angle = 0.1;
    for (auto _ : state) {
        double sine = 0;
        double cosine = 0;
        sincos(angle, &sine, &cosine);
        benchmark::DoNotOptimize(sine);
        benchmark::DoNotOptimize(cosine);
        angle += 0.731;
        angle = angle > 1000 ? 0.1 : angle;
    }
}

void Propagate(benchmark::State& state, const Elements& elements) {
    const Propagator propagator(elements);
    double minutes = -10000;
    for (auto _ : state) {
        benchmark::DoNotOptimize(propagator.At(minutes));
        minutes = minutes > 10000 ? -10000 : minutes + 7.31;
    }
}

/// A position query through the library, by number, look angles and sub-satellite point included.
void PositionQuery(benchmark::State& state) {
    const fs::path folder = fs::temp_directory_path() / ("OrbitBench." + std::to_string(getpid()));
    fs::create_directory(folder);
    std::ofstream(folder / "keps.txt")
        << "1 25544U 98067A   26320.51782528  .00016717  00000-0  30777-3 0  9990\n"
           "2 25544  51.6400 208.9163 0006703  69.9862  25.2906 15.49560532542413\n";
    KVRSatLib library([&](const std::string& line) { state.SkipWithError(line.c_str()); });
    library.SetElementFolder(folder.string());
    fs::remove_all(folder);
    library.SetObserverLatitude(52);
    library.SetObserverLongitude(13);
    const std::string object = "25544";
    double time = library.ConvertTime(epoch).value();
    for (auto _ : state) {
        const auto position = library.Position(object, time, 0);
        if (!position)
            state.SkipWithError("no position");
        benchmark::DoNotOptimize(position);
        time += 1e-4;
    }
}

/// The passes of three days over ten stations from the equator to 80 degrees north.
void PassList3Days(benchmark::State& state, const Elements& elements) {
    const Propagator propagator(elements);
    int propagations = 0;
    std::size_t passes = 0;
    for (auto _ : state) {
        propagations = 0;
        passes = 0;
        for (int station = 0; station < 10; ++station) {
            const Observer observer(station * 80.0 / 9, 10);
            const PassList found = FindPasses(propagator, observer, epoch + 0.5, 3, 1000);
            propagations += found.propagations;
            passes += found.passes.size();
        }
        benchmark::DoNotOptimize(passes);
    }
    state.counters["passes"] = static_cast<double>(passes);
    state.counters["propagations"] = propagations;
}

std::string WithChecksum(const std::string& line) {
    int sum = 0;
    for (const char c : line)
        sum += c == '-' ? 1 : c >= '0' && c <= '9' ? c - '0' : 0;
    return line + std::to_string(sum % 10) + "\n";
}

std::string TwoLines(int number) {
    const std::string digits = std::to_string(number);
    return "OBJECT " + digits + "\n" +
           WithChecksum("1 " + digits + "U 98067A   26320.51782528  .00016717  00000-0  30777-3 0  999") +
           WithChecksum("2 " + digits + "  51.6400 208.9163 0006703  69.9862  25.2906 15.4956053254241");
}

// As public servers write the same set.
std::string OmmLine(int number) {
    const std::string digits = std::to_string(number);
    return "OBJECT " + digits +
           ",1998-067A,2026-11-16T12:25:40.104192,15.49560532,.0006703,51.6400,208.9163," +
           "69.9862,25.2906,0,U," + digits + ",999,54241,.30777E-3,.16717E-3,0\n";
}

constexpr int firstObject = 10000;
constexpr int objects = 30000;

/// A folder of 30,000 objects in one file: a header, and the text of each.
void ReadFolder(benchmark::State& state, const std::string& header, std::string (*textOf)(int)) {
    const fs::path folder = fs::temp_directory_path() / ("OrbitBenchFolder." + std::to_string(getpid()));
    fs::create_directory(folder);
    {
        std::ofstream file(folder / "all.txt");
        file << header;
        for (int k = firstObject; k < firstObject + objects; ++k)
            file << textOf(k);
    }
    for (auto _ : state) {
        const auto read = ElementFolder::Read(folder.string(), {});
        if (!read || read->Count() != objects)
            state.SkipWithError("objects are missing");
    }
    fs::remove_all(folder);
}

const std::string ommHeader =
    "OBJECT_NAME,OBJECT_ID,EPOCH,MEAN_MOTION,ECCENTRICITY,INCLINATION,RA_OF_ASC_NODE,ARG_OF_PERICENTER,"
    "MEAN_ANOMALY,EPHEMERIS_TYPE,CLASSIFICATION_TYPE,NORAD_CAT_ID,ELEMENT_SET_NO,REV_AT_EPOCH,BSTAR,"
    "MEAN_MOTION_DOT,MEAN_MOTION_DDOT\n";

} // namespace

BENCHMARK(SinCosOnce)->Name("SinCos");
BENCHMARK_CAPTURE(Propagate, NearEarth, polar);
BENCHMARK_CAPTURE(Propagate, DeepSpaceResonant, halfDay);
BENCHMARK(PositionQuery);
BENCHMARK_CAPTURE(PassList3Days, Polar, polar);
BENCHMARK_CAPTURE(PassList3Days, Equatorial, equatorial);
BENCHMARK_CAPTURE(PassList3Days, Eccentric, eccentric);
BENCHMARK_CAPTURE(PassList3Days, HalfDay, halfDay);
BENCHMARK_CAPTURE(ReadFolder, TwoLines, "", TwoLines)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ReadFolder, OmmCsv, ommHeader, OmmLine)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
