#pragma once

#include <QString>

#include <array>

class GroundStation;

/// What a station needs before it can show anything, and how far it has got.
namespace StartGuide {

enum class Step { Formulae, Engine, Position, Elements };
constexpr std::size_t steps = 4;

enum class State { Missing, Pending, There };

struct Line {
    State state = State::Missing;
    QString name; ///< "Elements"
    QString text; ///< how it stands, for people
    QString mend; ///< the place that mends it, as its button names it
};

/// A line for each Step, in their order.
std::array<Line, steps> Of(const GroundStation& station);

} // namespace StartGuide
