#pragma once

#include "orbit/elements/Elements.h"
#include "orbit/geometry/SinCos.h"
#include "orbit/geometry/Vector3.h"
#include "orbit/sgp4/DeepSpace.h"

#include <optional>

namespace orbitmath {

/// Why elements give no position at a time. The numbers are those in common use.
enum class PropagationError {
    None = 0,
    MeanEccentricity = 1,      ///< drag has driven the mean eccentricity out of -0.001 to 1
    MeanMotion = 2,            ///< the mean motion is not above 0
    PerturbedEccentricity = 3, ///< sun and moon have driven the eccentricity out of 0 to 1
    SemiLatusRectum = 4,       ///< the semi-latus rectum is below 0
    Decayed = 6,               ///< the object is less than one earth radius from the centre
    OutOfRange = 7,            ///< the time or an element is no number, or the time is too far away
};

/// Where an object is, in the frame of two-line elements: true equator, mean equinox (TEME).
struct StateVector {
    Vector3 position;       ///< km
    Vector3 velocity;       ///< km/s
    double meanAnomaly = 0; ///< radians, counted on from the epoch: 2 pi more with each turn
};

/// A state, or the reason why there is none; then the state is all 0.
struct Propagation {
    PropagationError error = PropagationError::None;
    StateVector state;

    explicit operator bool() const { return error == PropagationError::None; }
};

/// SGP4 and its deep-space part SDP4: the model that two-line elements are made for. WGS-72, improved mode.
///
///     const Propagator propagator(elements);
///     if (const Propagation found = propagator.At(90))    // 90 minutes after the epoch
///         Use(found.state.position);
///
/// A propagator is a value: nothing in it changes with a query, so the same time gives the same bits in any
/// order of times and from any number of threads.
///
/// Source of the equations: Hoots and Roehrich, "Spacetrack Report No. 3" (1980), as corrected by Vallado,
/// Crawford, Hujsak and Kelso, "Revisiting Spacetrack Report #3", AIAA 2006-6753. Their symbols stand beside
/// the names.
class Propagator {
public:
    /// The farthest time from the epoch that is answered, in minutes: 190 years.
    static constexpr double farthest = 1e8;

    /// `readyMinutes`: queries up to this far from the epoch are equally fast for resonant orbits too;
    /// farther ones take longer in proportion.
    explicit Propagator(const Elements& elements, double readyMinutes = 60 * minutesPerDay);

    /// The state `minutes` after the epoch, in a frame that is turned by so many radians from TEME about its
    /// z; the velocity is that against TEME nevertheless. Turning here costs less than turning the state.
    Propagation At(double minutes, double turned = 0) const;

    const Elements& GetElements() const { return m_elements; }

    /// Brouwer's mean motion n0'' in radians per minute, and the mean semi-major axis a0'' in km.
    double MeanMotion() const { return m_n0; }
    double SemiMajorAxis() const;

    /// Whether the period is 225 minutes or more: sun, moon and resonances count.
    bool IsDeepSpace() const { return m_deepSpace.has_value(); }

private:
    /// What the inclination gives to the periodic terms.
    struct Inclined {
        SinCos angle;      ///< i
        double con41 = 0;  ///< 3 theta^2 - 1
        double x1mth2 = 0; ///< 1 - theta^2
        double x7thm1 = 0; ///< 7 theta^2 - 1
        double ayCoef = 0; ///< of the long-period term of a_y
        double xlCoef = 0; ///< of the long-period term of the mean longitude
        explicit Inclined(const SinCos& inclination);
    };
    /// Mean elements at a time.
    struct Mean {
        double a = 0; ///< earth radii
        double e = 0;
        SinCos perigee;          ///< omega
        SinCos node;             ///< Omega
        SinCos meanLatitude;     ///< M + omega, less what follows
        double latitudeGain = 0; ///< radians that M + omega has more
        double meanAnomaly = 0;  ///< M, radians
    };

    void InitialiseDrag(double perigeeKm, double beta2);
    Propagation NearEarth(double t, double turned) const;
    Propagation DeepSpaceAt(double t, double turned, const DeepSpace& deepSpace) const;
    static Propagation WithPeriodics(const Mean& mean, const Inclined& inclined);

    Elements m_elements;
    Inclined m_inclined;
    double m_n0 = 0;          ///< n0'', radians per minute
    double m_a0 = 0;          ///< a0'', earth radii
    bool m_simpleDrag = true; ///< perigee below 220 km, or deep space: the drag terms end with t^2

    // Secular rates of the earth's oblateness, radians per minute.
    double m_meanAnomalyDot = 0; ///< M dot
    double m_perigeeDot = 0;     ///< omega dot
    double m_nodeDot = 0;        ///< Omega dot

    // Drag. The time is in minutes; C1, C4 and C5 are per minute, D2 to D4 and t3 to t5 per power of it.
    double m_c1 = 0;              ///< C1, with B* in it
    double m_c4 = 0;              ///< C4, without B*
    double m_c5 = 0;              ///< C5, without B*
    double m_d2 = 0;              ///< D2
    double m_d3 = 0;              ///< D3
    double m_d4 = 0;              ///< D4
    double m_t3 = 0;              ///< of t^3 in IL: D2 + 2 C1^2
    double m_t4 = 0;              ///< of t^4
    double m_t5 = 0;              ///< of t^5
    double m_eta = 0;             ///< eta
    double m_nodeCoef = 0;        ///< of t^2 in Omega, radians per minute^2
    double m_perigeeCoef = 0;     ///< delta omega / t, radians per minute
    double m_meanAnomalyCoef = 0; ///< of (1 + eta cos M)^3 in delta M, radians
    double m_deltaM0 = 0;         ///< (1 + eta cos M0)^3
    double m_sinM0 = 0;           ///< sin M0

    std::optional<DeepSpace> m_deepSpace;
};

} // namespace orbitmath
