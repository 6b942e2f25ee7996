#include "orbit/sgp4/DeepSpace.h"

#include "orbit/sgp4/SiderealTime.h"

namespace orbitmath {

/// Sun or moon as seen from the orbit's node.
struct DeepSpace::Perturber {
    SinCos g; ///< argument of perigee of its path
    SinCos i; ///< inclination of its path
    SinCos h; ///< the satellite's node less the body's
    double c = 0;
    double rate = 0; ///< mean motion, radians per minute
    double eccentricity = 0;
    double m0 = 0; ///< mean anomaly at the epoch
};

namespace {

constexpr double sunRate = 1.19459e-5;
constexpr double sunEccentricity = 0.01675;
constexpr double sunC = 2.9864797e-6;
constexpr double moonRate = 1.5835218e-4;
constexpr double moonEccentricity = 0.05490;
constexpr double moonC = 4.7968065e-7;
constexpr double sinObliquity = 0.39785416;
constexpr double cosObliquity = 0.91744867;

/// Nearer than 3 degrees to the equator the node has no meaning and gets no rate.
bool NodeIsDefined(double inclination) {
    constexpr double threeDegrees = 5.2359877e-2;
    return inclination >= threeDegrees && inclination <= pi - threeDegrees;
}

double Squared(double x) {
    return x * x;
}

} // namespace

DeepSpace::Body DeepSpace::Perturb(const EpochElements& epoch, const Perturber& p) {
    const SinCos omega = SinCos::Of(epoch.omega);
    const SinCos& i = epoch.i;
    const double e2 = epoch.e * epoch.e;
    const double beta2 = 1 - e2;
    const double beta = std::sqrt(beta2);

    // Direction cosines of the body's path against the orbit.
    const double a1 = p.g.cos * p.h.cos + p.g.sin * p.i.cos * p.h.sin;
    const double a3 = -p.g.sin * p.h.cos + p.g.cos * p.i.cos * p.h.sin;
    const double a7 = -p.g.cos * p.h.sin + p.g.sin * p.i.cos * p.h.cos;
    const double a8 = p.g.sin * p.i.sin;
    const double a9 = p.g.sin * p.h.sin + p.g.cos * p.i.cos * p.h.cos;
    const double a10 = p.g.cos * p.i.sin;
    const double a2 = i.cos * a7 + i.sin * a8;
    const double a4 = i.cos * a9 + i.sin * a10;
    const double a5 = -i.sin * a7 + i.cos * a8;
    const double a6 = -i.sin * a9 + i.cos * a10;

    const double x1 = a1 * omega.cos + a2 * omega.sin;
    const double x2 = a3 * omega.cos + a4 * omega.sin;
    const double x3 = -a1 * omega.sin + a2 * omega.cos;
    const double x4 = -a3 * omega.sin + a4 * omega.cos;
    const double x5 = a5 * omega.sin;
    const double x6 = a6 * omega.sin;
    const double x7 = a5 * omega.cos;
    const double x8 = a6 * omega.cos;

    const double z31 = 12 * x1 * x1 - 3 * x3 * x3;
    const double z32 = 24 * x1 * x2 - 6 * x3 * x4;
    const double z33 = 12 * x2 * x2 - 3 * x4 * x4;
    const double z1 = 6 * (a1 * a1 + a2 * a2) + (1 + e2) * z31;
    const double z2 = 12 * (a1 * a3 + a2 * a4) + (1 + e2) * z32;
    const double z3 = 6 * (a3 * a3 + a4 * a4) + (1 + e2) * z33;
    const double z11 = -6 * a1 * a5 + e2 * (-24 * x1 * x7 - 6 * x3 * x5);
    const double z12 = -6 * (a1 * a6 + a3 * a5) + e2 * (-24 * (x2 * x7 + x1 * x8) - 6 * (x3 * x6 + x4 * x5));
    const double z13 = -6 * a3 * a6 + e2 * (-24 * x2 * x8 - 6 * x4 * x6);
    const double z21 = 6 * a2 * a5 + e2 * (24 * x1 * x5 - 6 * x3 * x7);
    const double z22 = 6 * (a4 * a5 + a2 * a6) + e2 * (24 * (x2 * x5 + x1 * x6) - 6 * (x4 * x7 + x3 * x8));
    const double z23 = 6 * a4 * a6 + e2 * (24 * x2 * x6 - 6 * x4 * x8);

    const double s3 = p.c / epoch.n;
    const double s2 = -0.5 * s3 / beta;
    const double s4 = s3 * beta;
    const double s1 = -15 * epoch.e * s4;
    const double s5 = x1 * x3 + x2 * x4;
    const double s6 = x2 * x3 + x1 * x4;
    const double s7 = x2 * x4 - x1 * x3;

    Body body;
    body.e2 = 2 * s1 * s6;
    body.e3 = 2 * s1 * s7;
    body.i2 = 2 * s2 * z12;
    body.i3 = 2 * s2 * (z13 - z11);
    body.l2 = -2 * s3 * z2;
    body.l3 = -2 * s3 * (z3 - z1);
    body.l4 = -2 * s3 * (-21 - 9 * e2) * p.eccentricity;
    body.gh2 = 2 * s4 * z32;
    body.gh3 = 2 * s4 * (z33 - z31);
    body.gh4 = -18 * s4 * p.eccentricity;
    body.h2 = -2 * s2 * z22;
    body.h3 = -2 * s2 * (z23 - z21);

    body.eDot = s1 * p.rate * s5;
    body.iDot = s2 * p.rate * (z11 + z13);
    body.lDot = -p.rate * s3 * (z1 + z3 - 14 - 6 * e2);
    body.ghDot = s4 * p.rate * (z31 + z33 - 6);
    body.hDot = NodeIsDefined(epoch.inclination) ? -p.rate * s2 * (z21 + z23) : 0;

    body.m0 = p.m0;
    body.rate = p.rate;
    body.eccentricity = p.eccentricity;
    return body;
}

void DeepSpace::AddSecular(const EpochElements& epoch, const Body& body) {
    const double nodeDot = epoch.i.sin != 0 ? body.hDot / epoch.i.sin : 0;
    m_eDot += body.eDot;
    m_iDot += body.iDot;
    m_mDot += body.lDot;
    m_omegaDot += body.ghDot - epoch.i.cos * nodeDot;
    m_nodeDot += nodeDot;
}

DeepSpace::DeepSpace(const EpochElements& epoch, double readyMinutes) {
    const double day = epoch.epoch1900;
    const SinCos node = SinCos::Of(epoch.node);

    Perturber sun;
    sun.g = {-0.98088458, 0.1945905};
    sun.i = {sinObliquity, cosObliquity};
    sun.h = node;
    sun.c = sunC;
    sun.rate = sunRate;
    sun.eccentricity = sunEccentricity;
    sun.m0 = Turned(6.2565837 + 0.017201977 * day);
    m_sun = Perturb(epoch, sun);

    // The moon's path, whose node on the ecliptic goes round in 18.6 years.
    const double moonNode = Turned(4.5236020 - 9.2422029e-4 * day);
    const SinCos eclipticNode = SinCos::Of(moonNode);
    const double gamma = 5.8351514 + 0.0019443680 * day;
    Perturber moon;
    moon.i.cos = 0.91375164 - 0.03568096 * eclipticNode.cos;
    moon.i.sin = std::sqrt(1 - Squared(moon.i.cos));
    SinCos moonH;
    moonH.sin = 0.089683511 * eclipticNode.sin / moon.i.sin;
    moonH.cos = std::sqrt(1 - Squared(moonH.sin));
    const double zx = sinObliquity * eclipticNode.sin / moon.i.sin;
    const double zy = moonH.cos * eclipticNode.cos + cosObliquity * moonH.sin * eclipticNode.sin;
    moon.g = SinCos::Of(gamma + std::atan2(zx, zy) - moonNode);
    moon.h = node + SinCos(-moonH.sin, moonH.cos);
    moon.c = moonC;
    moon.rate = moonRate;
    moon.eccentricity = moonEccentricity;
    moon.m0 = Turned(4.7199672 + 0.22997150 * day - gamma);
    m_moon = Perturb(epoch, moon);

    AddSecular(epoch, m_sun);
    AddSecular(epoch, m_moon);

    ResonantOrbit orbit;
    orbit.e = epoch.e;
    orbit.i = epoch.i;
    orbit.m = epoch.m;
    orbit.n = epoch.n;
    orbit.omega = epoch.omega;
    orbit.omegaDot = epoch.omegaDot;
    orbit.node = epoch.node;
    orbit.siderealTime = SiderealTime(epoch.epoch1900 + julianToDateTime1900);
    orbit.mRate = epoch.mDot + m_mDot;
    orbit.omegaRate = epoch.omegaDot + m_omegaDot;
    orbit.nodeRate = epoch.nodeDot + m_nodeDot;
    m_resonance = Resonance(orbit, readyMinutes);
}

void DeepSpace::AddPeriodics(const Body& body, double minutes, Periodics& sum) {
    const SinCos m = SinCos::Of(body.m0 + body.rate * minutes);
    const SinCos f = m.Plus(2 * body.eccentricity * m.sin); // true anomaly, to first order
    const double f2 = 0.5 * f.sin * f.sin - 0.25;
    const double f3 = -0.5 * f.sin * f.cos;
    sum.e += body.e2 * f2 + body.e3 * f3;
    sum.i += body.i2 * f2 + body.i3 * f3;
    sum.l += body.l2 * f2 + body.l3 * f3 + body.l4 * f.sin;
    sum.gh += body.gh2 * f2 + body.gh3 * f3 + body.gh4 * f.sin;
    sum.h += body.h2 * f2 + body.h3 * f3;
}

DeepSpace::Periodics DeepSpace::PeriodicsAt(double minutes) const {
    Periodics sum;
    AddPeriodics(m_sun, minutes, sum);
    AddPeriodics(m_moon, minutes, sum);
    return sum;
}

} // namespace orbitmath
