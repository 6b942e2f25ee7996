// channels.txt: each line counts, is a note, or is told with its reason; and whatever the limits, the levels
// that values get by them are those that they would keep.

#include "Input.h"
#include "Require.h"
#include "telemetry/limits/ChannelsFile.h"

#include <algorithm>

namespace {

void CheckLimits(const ChannelLimits& limits) {
    Require(limits.persistence >= 1 && limits.persistence <= ChannelLimits::mostPersistence,
            "persistence has its bounds");
    Require(limits.unit.size() <= 16, "a unit is short");
    std::vector<double> values{0.0, -1e300, 1e300};
    for (const auto& limit : {limits.lowAlarm, limits.lowWarning, limits.highWarning, limits.highAlarm})
        if (limit)
            values.insert(values.end(), {*limit, *limit * 1.01, *limit * 0.99});
    for (const double value : values) {
        const Level outside = limits.Outside(value);
        Require(limits.Judge(value, Level::Normal) == outside, "from normal, the limits alone decide");
        for (int before = -2; before <= 2; ++before) {
            const Level level = limits.Judge(value, static_cast<Level>(before));
            const Level low = std::min(outside, static_cast<Level>(before));
            const Level high = std::max(outside, static_cast<Level>(before));
            Require(level == outside || (level >= low && level <= high),
                    "what holds a level back is its own limit");
            Require(limits.Judge(value, level) == level, "the same value again changes nothing");
        }
    }
    Require(limits.Outside(-1e300) <= Level::Normal && limits.Outside(1e300) >= Level::Normal, "limits rise");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = Input(data, size);
    const ChannelsFile file = ChannelsFile::Parse(Bytes(text));
    const auto lines = static_cast<std::size_t>(std::ranges::count(text, '\n')) + 1;
    Require(file.Faults().size() <= lines && file.Limits().size() <= 2 * lines,
            "a line is one thing at most");
    std::size_t last = 0;
    for (const ChannelsFile::Fault& fault : file.Faults()) {
        Require(fault.line > last && fault.line <= lines, "faults are told in their order");
        last = fault.line;
        Require(!fault.reason.isEmpty() && fault.reason.size() < 150 &&
                    std::ranges::all_of(fault.reason, [](QChar c) { return c.isPrint(); }),
                "a reason is one short line");
    }
    for (const auto& [cell, limits] : file.Limits()) {
        Require(cell.side >= 0 && cell.side <= 1 && cell.grid >= 0 && cell.grid <= 2 && cell.row >= 1 &&
                    cell.row <= 9,
                "limits have a cell");
        CheckLimits(limits);
    }
    return 0;
}
