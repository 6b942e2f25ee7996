#pragma once

#include "orbit/geometry/SinCos.h"
#include "orbit/sgp4/Resonance.h"

#include <array>

namespace orbitmath {

/// Mean elements at the epoch, for the deep-space theory. Radians and minutes.
struct EpochElements {
    double epoch1900 = 0; ///< days since 1900-01-00 12:00 (JD 2415020)
    double e = 0;
    double m = 0; ///< mean anomaly
    double n = 0; ///< n0'', radians per minute
    SinCos i;
    double inclination = 0;
    double omega = 0; ///< argument of perigee
    double node = 0;
    double mDot = 0; ///< secular rates of the earth's oblateness
    double omegaDot = 0;
    double nodeDot = 0;
};

/// What sun, moon and resonances with the earth's rotation do to orbits of 225 minutes and more (SDP4).
/// Nothing changes with a query.
class DeepSpace {
public:
    /// Long-period terms of sun and moon at a time, to be added to the mean elements.
    struct Periodics {
        double e = 0;
        double i = 0;
        double l = 0;  ///< mean longitude within the orbit: of the mean anomaly
        double gh = 0; ///< argument of perigee, before the node's share is taken out
        double h = 0;  ///< node, times sin i
    };

    DeepSpace(const EpochElements& epoch, double readyMinutes);

    // Secular rates of sun and moon, per minute.
    double EccentricityDot() const { return m_eDot; }
    double InclinationDot() const { return m_iDot; }
    double MeanAnomalyDot() const { return m_mDot; }
    double PerigeeDot() const { return m_omegaDot; }
    double NodeDot() const { return m_nodeDot; }

    const Resonance& GetResonance() const { return m_resonance; }

    Periodics PeriodicsAt(double minutes) const;

private:
    /// One of the two bodies: its geometry against the orbit, and what follows from it.
    struct Body {
        // Periodic coefficients of e, i, l, gh and h, each with f2, f3 and (l, gh) sin f.
        double e2 = 0, e3 = 0;
        double i2 = 0, i3 = 0;
        double l2 = 0, l3 = 0, l4 = 0;
        double gh2 = 0, gh3 = 0, gh4 = 0;
        double h2 = 0, h3 = 0;
        // Secular rates.
        double eDot = 0, iDot = 0, lDot = 0, ghDot = 0, hDot = 0;
        // Motion of the body: mean anomaly at the epoch and its rate, eccentricity.
        double m0 = 0, rate = 0, eccentricity = 0;
    };
    struct Perturber;

    static Body Perturb(const EpochElements& epoch, const Perturber& perturber);
    void AddSecular(const EpochElements& epoch, const Body& body);
    static void AddPeriodics(const Body& body, double minutes, Periodics& sum);

    Body m_sun;
    Body m_moon;
    double m_eDot = 0;
    double m_iDot = 0;
    double m_mDot = 0;
    double m_omegaDot = 0;
    double m_nodeDot = 0;
    Resonance m_resonance;
};

} // namespace orbitmath
