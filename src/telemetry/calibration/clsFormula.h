#pragma once

#include <QtGlobal>

#include <optional>

/// The calibration of one telemetry channel: a cubic polynomial.
class clsFormula {
public:
    qint16 intGrid = 0; ///< carried along; neither the loader nor the decoder uses it

    /// ((x^3 · dblA + x^2 · dblB) + dblC · x) + dblD; nothing when that overflows or is no number.
    std::optional<double> CalcValue(const double& x) const;

    double dblD = 0.0;
    double dblC = 0.0;
    double dblB = 0.0;
    double dblA = 0.0;
};
