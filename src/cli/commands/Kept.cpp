#include "cli/commands/Kept.h"

#include "cli/commands/Answers.h"
#include "foundation/text/Text.h"
#include "telemetry/calibration/GridLayout.h"

#include <algorithm>
#include <limits>

namespace {

/// A channel as the user names it.
struct Wanted {
    int grid = 0;
    int row = 0;
};

std::optional<Wanted> ChannelOf(const QString& name) {
    const QByteArrayList parts = Text::ToBytes(name.toUpper()).split('/');
    if (parts.size() != 2)
        return std::nullopt;
    const int grid = GridLayout::FindGrid(parts[0]);
    const int row = grid < 0 ? 0 : GridLayout::FindRow(grid, parts[1]);
    return row == 0 ? std::nullopt : std::optional(Wanted{grid, row});
}

} // namespace

bool Kept::Has(const LimitCell& cell, qint64 utc) const {
    return utc >= from && utc <= to && std::ranges::find(cells, cell) != cells.end();
}

std::optional<Kept> Kept::Read(const Session& session) {
    const std::optional<QString> name = session.call.Get<QString>(Options::channel);
    const std::optional<Wanted> wanted = name ? ChannelOf(*name) : std::nullopt;
    if (name && !wanted) {
        Answers::Wrong(session, QStringLiteral("there is no channel '%1'; one is called POWER/Batt A, for "
                                               "example")
                                    .arg(*name));
        return std::nullopt;
    }
    const std::optional<QString> side = session.call.Get<QString>(Options::side);
    Kept kept{.from = session.call.Get<qint64>(Options::since).value_or(std::numeric_limits<qint64>::min()),
              .to = session.call.Get<qint64>(Options::until).value_or(std::numeric_limits<qint64>::max()),
              .cells = {}};
    for (int number = 0; number < 2; ++number)
        for (int grid = 0; grid < GridLayout::grids; ++grid)
            for (int row = 1; row <= static_cast<int>(GridLayout::RowNames(grid).size()); ++row)
                if ((!side || *side == (number == 0 ? u"A" : u"B")) &&
                    (!wanted || (wanted->grid == grid && wanted->row == row)))
                    kept.cells.push_back({number, grid, row});
    return kept;
}
