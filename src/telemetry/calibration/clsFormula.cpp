#include "telemetry/calibration/clsFormula.h"

#include <cmath>

std::optional<double> clsFormula::CalcValue(const double& x) const {
    const double value = ((std::pow(x, 3.0) * dblA + std::pow(x, 2.0) * dblB) + dblC * x) + dblD;
    // An infinity or "no number" on the way stays one to the end, times zero too.
    return std::isfinite(value) ? std::optional(value) : std::nullopt;
}
