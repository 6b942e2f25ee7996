#pragma once

#include "Require.h"
#include "orbit/skyview/TableFile.h"

#include <algorithm>
#include <string_view>

/// What holds for the faults of any file of entries, `entries` of which counted.
inline void CheckFaults(std::string_view text, const std::vector<LineFault>& faults, std::size_t entries) {
    const auto lines = static_cast<std::size_t>(std::ranges::count(text, '\n')) + 1;
    Require(faults.size() + entries <= lines, "a line is one thing at most");
    std::size_t last = 0;
    for (const LineFault& fault : faults) {
        Require(fault.line > last && fault.line <= lines, "faults are told in their order");
        last = fault.line;
        Require(!fault.reason.isEmpty() && fault.reason.size() < 150 &&
                    std::ranges::all_of(fault.reason, [](QChar c) { return c.isPrint(); }),
                "a reason is one short line");
    }
}
