#include "orbit/sgp4/Resonance.h"

#include "orbit/sgp4/Wgs72.h"

#include <algorithm>

namespace orbitmath {

namespace {

constexpr double stepMinutes = 720;

/// The earth's rotation against the equinox, radians per minute.
constexpr double earthRate = 4.37526908801129966e-3;

/// a + b e + c e^2 + d e^3.
double Cubic(double e, double a, double b, double c, double d) {
    return a + e * (b + e * (c + e * d));
}

/// The eccentricity functions G of the half-day harmonics, fitted piece by piece.
struct EccentricityFunctions {
    double g201, g211, g310, g322, g410, g422, g520, g521, g532, g533;

    explicit EccentricityFunctions(double e)
        : g201(-0.306 - (e - 0.64) * 0.440) {
        if (e <= 0.65) {
            g211 = Cubic(e, 3.616, -13.2470, 16.2900, 0);
            g310 = Cubic(e, -19.302, 117.3900, -228.4190, 156.5910);
            g322 = Cubic(e, -18.9068, 109.7927, -214.6334, 146.5816);
            g410 = Cubic(e, -41.122, 242.6940, -471.0940, 313.9530);
            g422 = Cubic(e, -146.407, 841.8800, -1629.014, 1083.4350);
            g520 = Cubic(e, -532.114, 3017.977, -5740.032, 3708.2760);
        } else {
            g211 = Cubic(e, -72.099, 331.819, -508.738, 266.724);
            g310 = Cubic(e, -346.844, 1582.851, -2415.925, 1246.113);
            g322 = Cubic(e, -342.585, 1554.908, -2366.899, 1215.972);
            g410 = Cubic(e, -1052.797, 4758.686, -7193.992, 3651.957);
            g422 = Cubic(e, -3581.690, 16178.110, -24462.770, 12422.520);
            g520 = e > 0.715 ? Cubic(e, -5149.66, 29936.92, -54087.36, 31324.56)
                             : Cubic(e, 1464.74, -4664.75, 3763.64, 0);
        }
        if (e < 0.7) {
            g533 = Cubic(e, -919.22770, 4988.6100, -9064.7700, 5542.21);
            g521 = Cubic(e, -822.71072, 4568.6173, -8491.4146, 5337.524);
            g532 = Cubic(e, -853.66600, 4690.2500, -8624.7700, 5341.4);
        } else {
            g533 = Cubic(e, -37995.780, 161616.52, -229838.20, 109377.94);
            g521 = Cubic(e, -51752.104, 218913.95, -309468.16, 146349.42);
            g532 = Cubic(e, -40023.880, 170470.89, -242699.48, 115605.82);
        }
    }
};

/// The inclination functions F of the half-day harmonics.
struct InclinationFunctions {
    double f220, f221, f321, f322, f441, f442, f522, f523, f542, f543;

    explicit InclinationFunctions(const SinCos& i) {
        const double c = i.cos;
        const double c2 = c * c;
        const double s = i.sin;
        const double s2 = s * s;
        f220 = 0.75 * (1 + 2 * c + c2);
        f221 = 1.5 * s2;
        f321 = 1.875 * s * (1 - 2 * c - 3 * c2);
        f322 = -1.875 * s * (1 + 2 * c - 3 * c2);
        f441 = 35 * s2 * f220;
        f442 = 39.3750 * s2 * s2;
        f522 = 9.84375 * s * (s2 * (1 - 2 * c - 5 * c2) + 0.33333333 * (-2 + 4 * c + 6 * c2));
        f523 = s * (4.92187512 * s2 * (-2 - 4 * c + 10 * c2) + 6.56250012 * (1 + 2 * c - 3 * c2));
        f542 = 29.53125 * s * (2 - 8 * c + c2 * (-12 + 8 * c + 10 * c2));
        f543 = 29.53125 * s * (-2 - 8 * c + c2 * (12 + 8 * c - 10 * c2));
    }
};

} // namespace

Resonance::Resonance(const ResonantOrbit& orbit, double readyMinutes)
    : m_n0(orbit.n)
    , m_omega0(orbit.omega)
    , m_omegaDot(orbit.omegaDot)
    , m_siderealTime(orbit.siderealTime) {
    if (orbit.n > 0.0034906585 && orbit.n < 0.0052359877)
        InitialiseSynchronous(orbit);
    else if (orbit.n >= 8.26e-3 && orbit.n <= 9.24e-3 && orbit.e >= 0.5)
        InitialiseHalfDay(orbit);
    else
        return;

    const auto steps = static_cast<std::size_t>(std::clamp(readyMinutes, 0.0, 1e8) / stepMinutes) + 1;
    m_after.reserve(steps);
    m_before.reserve(steps);
    m_after.push_back(WithDerivatives(m_lambda0, m_n0, 0));
    m_before.push_back(m_after.front());
    while (m_after.size() < steps) {
        const double minutes = static_cast<double>(m_after.size()) * stepMinutes;
        m_after.push_back(Next(m_after.back(), minutes, stepMinutes));
        m_before.push_back(Next(m_before.back(), -minutes, -stepMinutes));
    }
}

void Resonance::InitialiseSynchronous(const ResonantOrbit& orbit) {
    constexpr double q22 = 1.7891679e-6;
    constexpr double q31 = 2.1460748e-6;
    constexpr double q33 = 2.2123015e-7;
    const double e2 = orbit.e * orbit.e;
    const double c = orbit.i.cos;
    const double onePlusC = 1 + c;
    const double inverseA = std::cbrt(orbit.n / wgs72::ke) * std::cbrt(orbit.n / wgs72::ke);

    const double g200 = 1 + e2 * (-2.5 + 0.8125 * e2);
    const double g310 = 1 + 2 * e2;
    const double g300 = 1 + e2 * (-6 + 6.60937 * e2);
    const double f220 = 0.75 * onePlusC * onePlusC;
    const double f311 = 0.9375 * orbit.i.sin * orbit.i.sin * (1 + 3 * c) - 0.75 * onePlusC;
    const double f330 = 1.875 * onePlusC * onePlusC * onePlusC;
    const double delta = 3 * orbit.n * orbit.n * inverseA * inverseA;

    m_kind = Kind::Synchronous;
    m_harmonics[0] = {delta * f311 * g310 * q31 * inverseA, 0, 1, 0.13130908};
    m_harmonics[1] = {2 * delta * f220 * g200 * q22, 0, 2, 2 * 2.8843198};
    m_harmonics[2] = {3 * delta * f330 * g300 * q33 * inverseA, 0, 3, 3 * 0.37448087};
    m_harmonicCount = 3;
    m_lambda0 = Turned(orbit.m + orbit.node + orbit.omega - orbit.siderealTime);
    m_rate = orbit.mRate + orbit.omegaRate + orbit.nodeRate - earthRate - orbit.n;
}

void Resonance::InitialiseHalfDay(const ResonantOrbit& orbit) {
    constexpr double root22 = 1.7891679e-6;
    constexpr double root32 = 3.7393792e-7;
    constexpr double root44 = 7.3636953e-9;
    constexpr double root52 = 1.1428639e-7;
    constexpr double root54 = 2.1765803e-9;
    constexpr double g22 = 5.7686396;
    constexpr double g32 = 0.95240898;
    constexpr double g44 = 1.8014998;
    constexpr double g52 = 1.0508330;
    constexpr double g54 = 4.4108898;
    const EccentricityFunctions g(orbit.e);
    const InclinationFunctions f(orbit.i);
    const double inverseA = std::cbrt(orbit.n / wgs72::ke) * std::cbrt(orbit.n / wgs72::ke);
    const double degree2 = 3 * orbit.n * orbit.n * inverseA * inverseA;
    const double degree3 = degree2 * inverseA;
    const double degree4 = degree3 * inverseA;
    const double degree5 = degree4 * inverseA;

    m_kind = Kind::HalfDay;
    m_harmonics = {{
        {degree2 * root22 * f.f220 * g.g201, 2, 1, g22},
        {degree2 * root22 * f.f221 * g.g211, 0, 1, g22},
        {degree3 * root32 * f.f321 * g.g310, 1, 1, g32},
        {degree3 * root32 * f.f322 * g.g322, -1, 1, g32},
        {2 * degree4 * root44 * f.f441 * g.g410, 2, 2, g44},
        {2 * degree4 * root44 * f.f442 * g.g422, 0, 2, g44},
        {degree5 * root52 * f.f522 * g.g520, 1, 1, g52},
        {degree5 * root52 * f.f523 * g.g532, -1, 1, g52},
        {2 * degree5 * root54 * f.f542 * g.g521, 1, 2, g54},
        {2 * degree5 * root54 * f.f543 * g.g533, -1, 2, g54},
    }};
    m_harmonicCount = 10;
    m_lambda0 = Turned(orbit.m + 2 * orbit.node - 2 * orbit.siderealTime);
    m_rate = orbit.mRate + 2 * (orbit.nodeRate - earthRate) - orbit.n;
}

Resonance::Step Resonance::WithDerivatives(double lambda, double n, double minutes) const {
    Step step;
    step.lambda = lambda;
    step.n = n;
    step.lambdaDot = n + m_rate;
    const double omega = m_omega0 + m_omegaDot * minutes;
    for (std::size_t k = 0; k < m_harmonicCount; ++k) {
        const Harmonic& h = m_harmonics[k];
        const SinCos angle = SinCos::Of(h.omegas * omega + h.lambdas * lambda - h.phase);
        step.nDot += h.strength * angle.sin;
        step.nDotDot += h.lambdas * h.strength * angle.cos;
    }
    step.nDotDot *= step.lambdaDot;
    return step;
}

Resonance::Step Resonance::Next(const Step& step, double minutes, double length) const {
    const double halfSquare = 0.5 * length * length;
    return WithDerivatives(step.lambda + step.lambdaDot * length + step.nDot * halfSquare,
                           step.n + step.nDot * length + step.nDotDot * halfSquare, minutes);
}

Resonance::Step Resonance::StepAt(long index) const {
    const std::vector<Step>& ready = index < 0 ? m_before : m_after;
    const auto distance = static_cast<std::size_t>(std::abs(index));
    if (distance < ready.size())
        return ready[distance];
    const double length = index < 0 ? -stepMinutes : stepMinutes;
    Step step = ready.back();
    for (std::size_t k = ready.size(); k <= distance; ++k)
        step = Next(step, static_cast<double>(k) * length, length);
    return step;
}

Resonance::Swing Resonance::At(double minutes, double node, double omega) const {
    const auto index = static_cast<long>(minutes / stepMinutes);
    const Step step = StepAt(index);
    const double rest = minutes - static_cast<double>(index) * stepMinutes;
    const double halfSquare = 0.5 * rest * rest;
    const double lambda = step.lambda + step.lambdaDot * rest + step.nDot * halfSquare;
    const double theta = m_siderealTime + earthRate * minutes;

    Swing swing;
    swing.n = step.n + step.nDot * rest + step.nDotDot * halfSquare;
    swing.m = m_kind == Kind::Synchronous ? lambda - node - omega + theta : lambda - 2 * node + 2 * theta;
    return swing;
}

} // namespace orbitmath
