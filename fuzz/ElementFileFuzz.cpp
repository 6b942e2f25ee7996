// A file of the element folder, and what follows from it: where its objects are and when they pass. Positions
// are numbers within their ranges or are refused, and the same question always has the same answer.

#include "Input.h"
#include "Require.h"
#include "ScratchFolder.h"
#include "orbit/elements/ElementFile.h"
#include "orbit/service/KVRSatLib.h"
#include "orbit/service/PassList.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

namespace {

using orbitmath::ElementRecord;
using orbitmath::Elements;
using orbitmath::Propagation;
using orbitmath::Propagator;
using orbitmath::twoPi;
using orbitmath::Vector3;

void CheckElements(const Elements& elements) {
    const auto isAngle = [](double angle, double most) { return angle >= 0 && angle <= most * 1.0000001; };
    Require(elements.number <= 999'999'999, "a catalogue number is in its range");
    Require(isAngle(elements.inclination, twoPi / 2) && isAngle(elements.node, twoPi) &&
                isAngle(elements.argumentOfPerigee, twoPi) && isAngle(elements.meanAnomaly, twoPi),
            "angles are in their ranges");
    Require(elements.eccentricity >= 0 && elements.eccentricity < 1, "an orbit is closed");
    Require(elements.meanMotion > 0 && std::isfinite(elements.bstar), "an object moves");
    Require(elements.epochUtc > 20000 && elements.epochUtc < 60000, "an epoch is in its range");
}

bool IsFinite(const Vector3& v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

bool SameBits(const Propagation& a, const Propagation& b) {
    return a.error == b.error && std::memcmp(&a.state, &b.state, sizeof a.state) == 0;
}

void CheckPropagation(const Elements& elements) {
    const Propagator propagator(elements);
    const std::array times{0.0, 1440.0, -1440.0, 90.5, 43200.0, -500'000.0, 3e6, 1e300, std::nan("")};
    std::vector<Propagation> first;
    for (const double minutes : times) {
        first.push_back(propagator.At(minutes));
        const Propagation& found = first.back();
        Require(IsFinite(found.state.position) && IsFinite(found.state.velocity) &&
                    std::isfinite(found.state.meanAnomaly),
                "a position is a number");
        Require(found || (found.state.position.x == 0 && found.state.velocity.x == 0), "a refusal is all 0");
    }
    for (std::size_t i = times.size(); i-- > 0;)
        Require(SameBits(propagator.At(times.at(i)), first[i]), "the order of times does not count");
    Require(!first.back() && !first[first.size() - 2], "senseless times are refused");
}

void CheckPosition(const LibraryPosition& place) {
    const double full = twoPi * 1.0000001;
    Require(place.azimuth >= 0 && place.azimuth <= full, "an azimuth is in its range");
    Require(std::abs(place.elevation) <= full / 4 && std::abs(place.latitude) <= full / 4 &&
                std::abs(place.longitude) <= full / 2,
            "elevation and place are in their ranges");
    Require(place.phase >= 0 && place.phase <= 256 && place.range >= 0,
            "phase and range are in their ranges");
    Require(std::isfinite(place.range) && std::isfinite(place.rangeRate) && std::isfinite(place.altitude),
            "distances are numbers");
    Require(place.south == (place.latitude < 0), "the hemisphere is the latitude's");
}

void CheckPasses(KVRSatLib& library, const std::string& object, double from) {
    constexpr int perDay = 12;
    constexpr int days = 2;
    const auto list = library.ListPasses(object, from, perDay, days, 0, 0);
    if (!list)
        return;
    const auto items = PassList::Items(*list);
    Require(items.size() <= perDay * days, "no more passes than asked for");
    double last = from - 1e-9;
    for (const std::string_view item : items) {
        const std::optional<Pass> pass = PassList::Parse(item);
        Require(pass.has_value(), "the table of passes can read the list");
        Require(pass->startUtc >= last && pass->startUtc <= from + days + 0.001,
                "passes stand in their order");
        Require(pass->maxElevation >= 0 && pass->maxElevation <= 90, "a pass is above the horizon");
        last = pass->startUtc;
    }
}

void CheckObject(KVRSatLib& library, const Elements& elements) {
    const std::string object = std::to_string(elements.number);
    const auto source = library.ElementsOf(object);
    Require(source && source->file == "elements.txt", "an object of the file is known");
    Require(source->epochUtc >= elements.epochUtc, "the newest elements count");
    for (const double later : {0.0, 0.7, -400.0}) {
        const double utc = elements.epochUtc + later;
        const auto time = library.ConvertTime(utc);
        if (!time)
            continue;
        if (const auto place = library.Position(object, *time, 5.0))
            CheckPosition(*place);
    }
    CheckPasses(library, object, source->epochUtc + 0.25);
}

std::vector<Elements> SetsIn(const std::string& path) {
    std::vector<Elements> sets;
    orbitmath::ReadElementFile(path, [&](const ElementRecord& record) {
        Require(record.name.size() <= 64 && record.nameLine.size() <= 1024 &&
                    record.name.find('\n') == std::string_view::npos,
                "a name is short");
        Require(record.line > 0, "a record has its place");
        if (const auto* elements = std::get_if<Elements>(&record.content)) {
            CheckElements(*elements);
            sets.push_back(*elements);
        } else {
            const auto& fault = std::get<orbitmath::ElementFault>(record.content);
            Require(!fault.what.empty() && (fault.line == 1 || fault.line == 2), "a fault is told");
        }
        return true;
    });
    return sets;
}

// Element lines in the text get the checksum that their columns have now: without that hardly an input would
// ever come farther than to the checksum.
void MendChecksums(char* text, std::size_t size) {
    constexpr std::size_t length = 69;
    for (std::size_t at = 0; at + length <= size;) {
        char* const line = text + at;
        if ((line[0] == '1' || line[0] == '2') && line[1] == ' ' &&
            std::memchr(line, '\n', length) == nullptr) {
            int sum = 0;
            for (std::size_t i = 0; i + 1 < length; ++i)
                sum += line[i] >= '0' && line[i] <= '9' ? line[i] - '0' : line[i] == '-' ? 1 : 0;
            line[length - 1] = static_cast<char>('0' + sum % 10);
        }
        const void* end = std::memchr(line, '\n', size - at);
        at = end == nullptr ? size : static_cast<std::size_t>(static_cast<const char*>(end) - text) + 1;
    }
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most,
                                               unsigned seed) {
    const std::size_t mutated = LLVMFuzzerMutate(data, size, most);
    if (seed % 16 != 0)
        MendChecksums(reinterpret_cast<char*>(data), mutated);
    return mutated;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const ScratchFolder scratch;
    const std::string_view text = Input(data, size);
    const QString path = scratch.Write(QStringLiteral("elements.txt"), text);
    const std::vector<Elements> sets = SetsIn(path.toStdString());

    KVRSatLib library([](const std::string& line) { Require(line.size() < 400, "a report is short"); });
    Require(library.SetElementFolder(scratch.Path().toStdString()), "the folder is read");
    Require(library.SetObserverLatitude(60.2) && library.SetObserverLongitude(24.9), "the station is known");
    constexpr std::size_t most = 3; // of which every answer is looked at
    for (std::size_t i = 0; i < std::min(sets.size(), most); ++i) {
        CheckPropagation(sets[i]);
        CheckObject(library, sets[i]);
    }
    return 0;
}
