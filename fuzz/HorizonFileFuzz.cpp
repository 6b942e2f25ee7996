// horizon.txt: each line counts, is a note, or is told with its reason; and the horizon that comes of it lies
// between its points, all around.

#include "Input.h"
#include "Require.h"
#include "TableFaults.h"
#include "orbit/skyview/HorizonFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = Input(data, size);
    const HorizonFile file = HorizonFile::Parse(Bytes(text));
    const auto& points = file.Around().Points();
    CheckFaults(text, file.Faults(), points.size());
    double lowest = points.empty() ? 0 : HorizonFile::highest;
    double highest = points.empty() ? 0 : HorizonFile::lowest;
    double before = -1;
    for (const auto& point : points) {
        Require(point.azimuth > before && point.azimuth < 360, "each azimuth stands once, in order");
        Require(file.Around().ElevationAt(point.azimuth) == point.elevation,
                "the horizon goes through its points");
        before = point.azimuth;
        lowest = std::min(lowest, point.elevation);
        highest = std::max(highest, point.elevation);
    }
    Require(lowest >= HorizonFile::lowest && highest <= HorizonFile::highest, "elevations have their bounds");
    for (double azimuth = -720; azimuth <= 720; azimuth += 7.3) {
        const double elevation = file.Around().ElevationAt(azimuth);
        Require(elevation >= lowest - 1e-9 && elevation <= highest + 1e-9,
                "between points it lies between them");
    }
    return 0;
}
