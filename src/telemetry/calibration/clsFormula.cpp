#include "telemetry/calibration/clsFormula.h"

#include <array>
#include <cmath>

namespace {

struct Powers {
    explicit Powers(double x)
        : square(std::pow(x, 2.0))
        , cube(std::pow(x, 3.0)) {}
    Powers() = default;

    double square = 0.0;
    double cube = 0.0;
};

// What a byte of telemetry can hold is raised to its powers once: pow was a fifth of a frame's whole road.
Powers PowersOf(double x) {
    static const auto ofBytes = [] {
        std::array<Powers, 256> powers;
        for (std::size_t byte = 0; byte < powers.size(); ++byte)
            powers[byte] = Powers(static_cast<double>(byte));
        return powers;
    }();
    if (std::signbit(x) || !(x <= 255.0)) // minus zero has a cube of its own
        return Powers(x);
    const auto byte = static_cast<std::size_t>(x);
    return static_cast<double>(byte) == x ? ofBytes[byte] : Powers(x);
}

} // namespace

std::optional<double> clsFormula::CalcValue(const double& x) const {
    const auto [square, cube] = PowersOf(x);
    const double value = ((cube * dblA + square * dblB) + dblC * x) + dblD;
    // An infinity or "no number" on the way stays one to the end, times zero too.
    return std::isfinite(value) ? std::optional(value) : std::nullopt;
}
