#pragma once

#include "orbit/geometry/SinCos.h"

#include <array>
#include <vector>

namespace orbitmath {

/// An orbit at its epoch, with its secular rates. Radians and minutes.
struct ResonantOrbit {
    double e = 0;
    SinCos i;
    double m = 0;
    double n = 0;
    double omega = 0;
    double omegaDot = 0; ///< by the earth's oblateness alone
    double node = 0;
    double siderealTime = 0; ///< at the epoch
    double mRate = 0;        ///< by all secular causes
    double omegaRate = 0;
    double nodeRate = 0;
};

/// The slow swing of orbits of one revolution a day, and of eccentric ones of two, in step with the
/// unevenness of the earth's equator. It has no closed form and is integrated from the epoch in steps of half
/// a day.
///
/// The steps up to `readyMinutes` are taken once, at the start; a query looks its step up, or goes on from
/// the last one in a copy. So its answer depends on the time alone.
class Resonance {
public:
    /// No resonance.
    Resonance() = default;

    Resonance(const ResonantOrbit& orbit, double readyMinutes);

    explicit operator bool() const { return m_kind != Kind::None; }

    struct Swing {
        double n = 0; ///< mean motion, radians per minute
        double m = 0; ///< mean anomaly
    };

    /// `node` and `omega` are the mean ones of the same time.
    Swing At(double minutes, double node, double omega) const;

private:
    enum class Kind { None, Synchronous, HalfDay };

    /// One harmonic of the earth's field: strength times sin(omegas x omega + lambdas x lambda - phase).
    struct Harmonic {
        double strength = 0;
        double omegas = 0;
        double lambdas = 0;
        double phase = 0;
    };

    /// The state of the integration at a step: longitude lambda and mean motion with their derivatives.
    struct Step {
        double lambda = 0;
        double n = 0;
        double lambdaDot = 0;
        double nDot = 0;
        double nDotDot = 0;
    };

    void InitialiseSynchronous(const ResonantOrbit& orbit);
    void InitialiseHalfDay(const ResonantOrbit& orbit);
    Step WithDerivatives(double lambda, double n, double minutes) const;
    Step Next(const Step& step, double minutes, double length) const;
    Step StepAt(long index) const;

    Kind m_kind = Kind::None;
    std::array<Harmonic, 10> m_harmonics{};
    std::size_t m_harmonicCount = 0;
    double m_lambda0 = 0;
    double m_rate = 0; ///< of lambda beyond n
    double m_n0 = 0;
    double m_omega0 = 0;
    double m_omegaDot = 0;
    double m_siderealTime = 0;
    std::vector<Step> m_after;  ///< at 0, 720, 1440 ... minutes
    std::vector<Step> m_before; ///< at 0, -720, -1440 ... minutes
};

} // namespace orbitmath
