// The pass list of an orbit library: what is read of it is sensible, or it is refused.

#include "Input.h"
#include "Require.h"
#include "orbit/service/PassList.h"

#include <algorithm>
#include <cmath>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view list = Input(data, size);
    const auto items = PassList::Items(list);
    Require(items.size() ==
                (list.empty() ? 0U : 1U + static_cast<std::size_t>(std::ranges::count(list, ','))),
            "each comma separates two items");
    std::string joined;
    QString table;
    for (std::size_t i = 0; i < items.size(); ++i) {
        joined.append(i == 0 ? "" : ",").append(items[i]);
        const std::optional<DateTime> start = PassList::StartOf(items[i]);
        const std::optional<Pass> pass = PassList::Parse(items[i]);
        Require(!pass || (start && *start == pass->startUtc), "both ways of reading agree on the start");
        if (start)
            Require(*start >= DateOf(100, 1, 1) && *start < DateOf(10000, 1, 2), "a start is a date");
        if (!pass)
            continue;
        Require(pass->durationSeconds >= 0 && std::isfinite(pass->durationSeconds), "a pass lasts");
        const QString line = PassList::TableLine(pass->startUtc, *pass, 359, 7);
        Require(line.size() == 56, "a line of the table has its columns");
        table += line + QStringLiteral("\r\n");
    }
    Require(joined == list, "the items are the whole list");

    for (const DateTime now : {0.0, 45000.0, 1e7})
        if (const auto next = PassList::NextStart(list, now)) {
            const bool isStart = std::ranges::any_of(
                items, [&](std::string_view item) { return PassList::StartOf(item) == *next; });
            Require(isStart || (*next == 0 && items.empty()), "the next start is one of the list");
        }

    const QString text = PassList::PrintText(QStringLiteral("Passes"), table);
    Require(!text.back().isSpace(), "a print has no blank end");
    return 0;
}
