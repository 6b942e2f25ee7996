#include "orbit/sgp4/Propagator.h"

#include "orbit/sgp4/SiderealTime.h"
#include "orbit/sgp4/Wgs72.h"

#include <algorithm>

namespace orbitmath {

using wgs72::earthRadius;
using wgs72::j2;
using wgs72::j3OverJ2;
using wgs72::j4;
using wgs72::ke;

namespace {

constexpr double deepSpacePeriod = 225; // minutes

double Squared(double x) {
    return x * x;
}

double Cubed(double x) {
    return x * x * x;
}

/// The semi-major axis that belongs to a mean motion, earth radii: (ke / n)^(2/3).
double SemiMajorAxisOf(double n) {
    return std::pow(ke / n, 2.0 / 3);
}

/// Brouwer's mean motion from Kozai's, which two-line elements carry.
double BrouwerMeanMotion(const Elements& elements) {
    const double beta2 = 1 - Squared(elements.eccentricity);
    const double theta = std::cos(elements.inclination);
    const double a1 = SemiMajorAxisOf(elements.meanMotion);
    const double d1 = 0.75 * j2 * (3 * theta * theta - 1) / (std::sqrt(beta2) * beta2);
    const double delta1 = d1 / (a1 * a1);
    const double a0 = a1 * (1 - delta1 * delta1 - delta1 * (1.0 / 3 + 134 * delta1 * delta1 / 81));
    const double delta0 = d1 / (a0 * a0);
    return elements.meanMotion / (1 + delta0);
}

Propagation Failed(PropagationError error) {
    Propagation failed;
    failed.error = error;
    return failed;
}

bool IsUsable(const Elements& e) {
    const double sum = e.epochUtc + e.inclination + e.node + e.eccentricity + e.argumentOfPerigee +
                       e.meanAnomaly + e.meanMotion + e.bstar;
    return std::isfinite(sum) && e.meanMotion > 0 && e.eccentricity >= 0 && e.eccentricity < 1;
}

/// Kepler's equation in the form u = E' - a_x sin E' + a_y cos E', where E' = E + omega, from the angle u and
/// the eccentricity vector. Newton's steps as the model prescribes them: none longer than 0.95, the tenth not
/// taken. The iteration works on E' - u, and turns sine and cosine along.
SinCos SolveKepler(const SinCos& u, double ax, double ay) {
    constexpr double longest = 0.95;
    constexpr double negligible = 2e-7; // its square is below a double's last digit
    SinCos anomaly = u;
    double beyondU = 0;
    for (int k = 0; k < 9; ++k) {
        const double step = std::clamp((ax * anomaly.sin - ay * anomaly.cos - beyondU) /
                                           (1 - ax * anomaly.cos - ay * anomaly.sin),
                                       -longest, longest);
        beyondU += step;
        anomaly = anomaly.Plus(step);
        if (std::abs(step) < negligible)
            break;
    }
    return anomaly;
}

} // namespace

Propagator::Inclined::Inclined(const SinCos& inclination)
    : angle(inclination) {
    const double theta2 = angle.cos * angle.cos;
    con41 = 3 * theta2 - 1;
    x1mth2 = 1 - theta2;
    x7thm1 = 7 * theta2 - 1;
    ayCoef = -0.5 * j3OverJ2 * angle.sin;
    constexpr double least = 1.5e-12; // at 180 degrees the divisor is 0
    const double divisor = std::abs(1 + angle.cos) > least ? 1 + angle.cos : least;
    xlCoef = -0.25 * j3OverJ2 * angle.sin * (3 + 5 * angle.cos) / divisor;
}

Propagator::Propagator(const Elements& elements, double readyMinutes)
    : m_elements(elements)
    , m_inclined(SinCos::Of(elements.inclination)) {
    if (!IsUsable(elements))
        return;
    m_n0 = BrouwerMeanMotion(elements);
    m_a0 = SemiMajorAxisOf(m_n0);
    const double e = elements.eccentricity;
    const double theta = m_inclined.angle.cos;
    const double theta2 = theta * theta;
    const double theta4 = theta2 * theta2;
    const double beta2 = 1 - e * e;
    const double beta = std::sqrt(beta2);
    const double p = m_a0 * beta2;
    const bool deepSpace = twoPi / m_n0 >= deepSpacePeriod;
    const double perigee = m_a0 * (1 - e) - 1;
    m_simpleDrag = deepSpace || perigee < 220 / earthRadius;

    const double k2 = 1.5 * j2 * m_n0 / (p * p);
    const double k22 = 0.5 * k2 * j2 / (p * p);
    const double k4 = -0.46875 * j4 * m_n0 / Squared(p * p);
    m_meanAnomalyDot =
        m_n0 + 0.5 * k2 * beta * m_inclined.con41 + 0.0625 * k22 * beta * (13 - 78 * theta2 + 137 * theta4);
    m_perigeeDot = -0.5 * k2 * (1 - 5 * theta2) + 0.0625 * k22 * (7 - 114 * theta2 + 395 * theta4) +
                   k4 * (3 - 36 * theta2 + 49 * theta4);
    const double nodeDot1 = -k2 * theta;
    m_nodeDot = nodeDot1 + (0.5 * k22 * (4 - 19 * theta2) + 2 * k4 * (3 - 7 * theta2)) * theta;

    InitialiseDrag(perigee * earthRadius, beta2);
    m_nodeCoef = 3.5 * beta2 * nodeDot1 * m_c1;

    if (deepSpace) {
        EpochElements epoch;
        // By way of the Julian date, whose last digit (40 microseconds) the published model keeps: orbits as
        // long as the moon's tell the difference.
        epoch.epoch1900 = (elements.epochUtc + julianDateOfZero) - (julianDateOfZero + julianToDateTime1900);
        epoch.e = e;
        epoch.m = elements.meanAnomaly;
        epoch.n = m_n0;
        epoch.i = m_inclined.angle;
        epoch.inclination = elements.inclination;
        epoch.omega = elements.argumentOfPerigee;
        epoch.node = elements.node;
        epoch.mDot = m_meanAnomalyDot;
        epoch.omegaDot = m_perigeeDot;
        epoch.nodeDot = m_nodeDot;
        m_deepSpace.emplace(epoch, readyMinutes);
    }
}

void Propagator::InitialiseDrag(double perigeeKm, double beta2) {
    const double e = m_elements.eccentricity;
    const double bstar = m_elements.bstar;

    // The atmosphere's density falls from the height s, which is lowered for low perigees.
    double sKm = 78;
    if (perigeeKm < 98)
        sKm = 20;
    else if (perigeeKm < 156)
        sKm = perigeeKm - 78;
    const double s = sKm / earthRadius + 1;
    const double q0MinusS4 = Squared(Squared((120 - sKm) / earthRadius));

    const double xi = 1 / (m_a0 - s);
    m_eta = m_a0 * e * xi;
    const double eta2 = m_eta * m_eta;
    const double eEta = e * m_eta;
    const double psi2 = std::abs(1 - eta2);
    const double coef = q0MinusS4 * Squared(xi * xi);
    const double coef1 = coef / (Cubed(psi2) * std::sqrt(psi2));
    const double con41 = m_inclined.con41;

    const double c2 = coef1 * m_n0 *
                      (m_a0 * (1 + 1.5 * eta2 + eEta * (4 + eta2)) +
                       0.375 * j2 * xi / psi2 * con41 * (8 + 3 * eta2 * (8 + eta2)));
    m_c1 = bstar * c2;
    m_c4 = 2 * m_n0 * coef1 * m_a0 * beta2 *
           (m_eta * (2 + 0.5 * eta2) + e * (0.5 + 2 * eta2) -
            j2 * xi / (m_a0 * psi2) *
                (-3 * con41 * (1 - 2 * eEta + eta2 * (1.5 - 0.5 * eEta)) +
                 0.75 * m_inclined.x1mth2 * (2 * eta2 - eEta * (1 + eta2)) *
                     std::cos(2 * m_elements.argumentOfPerigee)));
    m_c5 = 2 * coef1 * m_a0 * beta2 * (1 + 2.75 * (eta2 + eEta) + eEta * eta2);
    if (m_simpleDrag)
        return;

    // Nearly circular orbits have no perigee to speak of, and drop what divides by the eccentricity.
    if (e > 1e-4) {
        const double c3 = -2 * coef * xi * j3OverJ2 * m_n0 * m_inclined.angle.sin / e;
        m_perigeeCoef = bstar * c3 * std::cos(m_elements.argumentOfPerigee);
        m_meanAnomalyCoef = -2.0 / 3 * coef * bstar / eEta;
    }
    m_deltaM0 = Cubed(1 + m_eta * std::cos(m_elements.meanAnomaly));
    m_sinM0 = std::sin(m_elements.meanAnomaly);
    const double c1Squared = m_c1 * m_c1;
    m_d2 = 4 * m_a0 * xi * c1Squared;
    const double third = m_d2 * xi * m_c1 / 3;
    m_d3 = (17 * m_a0 + s) * third;
    m_d4 = 0.5 * third * m_a0 * xi * (221 * m_a0 + 31 * s) * m_c1;
    m_t3 = m_d2 + 2 * c1Squared;
    m_t4 = 0.25 * (3 * m_d3 + m_c1 * (12 * m_d2 + 10 * c1Squared));
    m_t5 = 0.2 * (3 * m_d4 + 12 * m_c1 * m_d3 + 6 * m_d2 * m_d2 + 15 * c1Squared * (2 * m_d2 + c1Squared));
}

double Propagator::SemiMajorAxis() const {
    return m_a0 * earthRadius;
}

Propagation Propagator::At(double minutes, double turned) const {
    if (!(std::abs(minutes) <= farthest) || !(m_n0 > 0))
        return Failed(PropagationError::OutOfRange);
    return m_deepSpace ? DeepSpaceAt(minutes, turned, *m_deepSpace) : NearEarth(minutes, turned);
}

Propagation Propagator::NearEarth(double t, double turned) const {
    const double t2 = t * t;
    double aRatio = 1 - m_c1 * t;
    double eLoss = m_elements.bstar * m_c4 * t;
    double lGain = 1.5 * m_c1 * t2;
    const double perigee = m_elements.argumentOfPerigee + m_perigeeDot * t;
    double meanAnomaly = m_elements.meanAnomaly + m_meanAnomalyDot * t;
    Mean mean;
    mean.perigee = SinCos::Of(perigee);
    mean.node = SinCos::Of(m_elements.node + (m_nodeDot + m_nodeCoef * t) * t - turned);
    if (!m_simpleDrag) {
        SinCos m = SinCos::Of(meanAnomaly);
        mean.meanLatitude = m + mean.perigee;
        // From the one to the other, which their sum does not see.
        const double shift = m_perigeeCoef * t + m_meanAnomalyCoef * (Cubed(1 + m_eta * m.cos) - m_deltaM0);
        m = m.Plus(shift);
        meanAnomaly += shift;
        mean.perigee = mean.perigee.Plus(-shift);
        aRatio -= t2 * (m_d2 + t * (m_d3 + t * m_d4));
        eLoss += m_elements.bstar * m_c5 * (m.sin - m_sinM0);
        lGain += t2 * t * (m_t3 + t * (m_t4 + t * m_t5));
    }
    const double e = m_elements.eccentricity - eLoss;
    if (!(e < 1 && e >= -0.001))
        return Failed(PropagationError::MeanEccentricity);

    mean.a = m_a0 * aRatio * aRatio;
    mean.e = std::max(e, 1e-6);
    mean.meanAnomaly = meanAnomaly + m_n0 * lGain;
    if (m_simpleDrag)
        mean.meanLatitude = SinCos::Of(mean.meanAnomaly + perigee);
    else
        mean.latitudeGain = m_n0 * lGain;
    return WithPeriodics(mean, m_inclined);
}

Propagation Propagator::DeepSpaceAt(double t, double turned, const DeepSpace& deepSpace) const {
    double perigee = m_elements.argumentOfPerigee + (m_perigeeDot + deepSpace.PerigeeDot()) * t;
    double node = m_elements.node + (m_nodeDot + deepSpace.NodeDot() + m_nodeCoef * t) * t;
    double meanAnomaly = m_elements.meanAnomaly + (m_meanAnomalyDot + deepSpace.MeanAnomalyDot()) * t;
    const double aRatio = 1 - m_c1 * t;
    double a = m_a0 * aRatio * aRatio;
    if (const Resonance& resonance = deepSpace.GetResonance()) {
        const Resonance::Swing swing = resonance.At(t, node, perigee);
        if (!(swing.n > 0))
            return Failed(PropagationError::MeanMotion);
        meanAnomaly = swing.m;
        a = SemiMajorAxisOf(swing.n) * aRatio * aRatio;
    }
    double e = m_elements.eccentricity + deepSpace.EccentricityDot() * t - m_elements.bstar * m_c4 * t;
    if (!(e < 1 && e >= -0.001))
        return Failed(PropagationError::MeanEccentricity);
    e = std::max(e, 1e-6);
    meanAnomaly += m_n0 * 1.5 * m_c1 * t * t;

    // Lunar and solar periodics.
    const DeepSpace::Periodics periodics = deepSpace.PeriodicsAt(t);
    const double inclination = m_elements.inclination + deepSpace.InclinationDot() * t + periodics.i;
    SinCos i = SinCos::Of(inclination); // not turned: 1 + cos i below needs all its digits near 180 degrees
    e += periodics.e;
    meanAnomaly += periodics.l;
    constexpr double lyddaneLimit = 0.2; // radians; below it the node is ill defined
    if (inclination >= lyddaneLimit) {
        const double h = periodics.h / i.sin;
        perigee += periodics.gh - i.cos * h;
        node += h;
    } else {
        // Lyddane's variables sin i sin Omega and sin i cos Omega. The node counts with its sign here, less
        // whole turns.
        node = std::fmod(node, twoPi);
        const SinCos nodeAngle = SinCos::Of(node);
        const double alpha =
            i.sin * nodeAngle.sin + periodics.h * nodeAngle.cos + periodics.i * i.cos * nodeAngle.sin;
        const double beta =
            i.sin * nodeAngle.cos - periodics.h * nodeAngle.sin + periodics.i * i.cos * nodeAngle.cos;
        double newNode = std::atan2(alpha, beta);
        if (newNode < node - pi)
            newNode += twoPi;
        else if (newNode > node + pi)
            newNode -= twoPi;
        perigee += periodics.gh - periodics.i * node * i.sin + i.cos * (node - newNode);
        node = newNode;
    }
    if (inclination < 0) {
        i.sin = -i.sin;
        node += pi;
        perigee -= pi;
    }
    if (!(e >= 0 && e <= 1))
        return Failed(PropagationError::PerturbedEccentricity);

    Mean mean;
    mean.a = a;
    mean.e = e;
    mean.perigee = SinCos::Of(perigee);
    mean.node = SinCos::Of(node - turned);
    mean.meanAnomaly = meanAnomaly;
    mean.meanLatitude = SinCos::Of(meanAnomaly + perigee);
    return WithPeriodics(mean, Inclined(i));
}

Propagation Propagator::WithPeriodics(const Mean& mean, const Inclined& inclined) {
    // Long-period terms.
    const double perP = 1 / (mean.a * (1 - mean.e * mean.e));
    const double ax = mean.e * mean.perigee.cos;
    const double ay = mean.e * mean.perigee.sin + perP * inclined.ayCoef;
    const double e2 = ax * ax + ay * ay;
    const double p = mean.a * (1 - e2); // semi-latus rectum
    if (!(p >= 0))
        return Failed(std::isnan(p) ? PropagationError::OutOfRange : PropagationError::SemiLatusRectum);

    const SinCos anomaly =
        SolveKepler(mean.meanLatitude.Plus(mean.latitudeGain + perP * inclined.xlCoef * ax), ax, ay);
    const double eCosE = ax * anomaly.cos + ay * anomaly.sin;
    const double eSinE = ax * anomaly.sin - ay * anomaly.cos;
    const double r = mean.a * (1 - eCosE);
    const double beta = std::sqrt(1 - e2);
    const double sqrtA = std::sqrt(mean.a);
    const double perR = 1 / r;
    const double rDot = sqrtA * eSinE * perR;
    const double rfDot = sqrtA * beta * perR;
    const double correction = eSinE / (1 + beta);
    const double aPerR = mean.a * perR;
    const SinCos u(aPerR * (anomaly.sin - ay - ax * correction),
                   aPerR * (anomaly.cos - ax + ay * correction));

    // Short-period terms.
    const double sin2u = 2 * u.sin * u.cos;
    const double cos2u = 1 - 2 * u.sin * u.sin;
    const double perPl = 1 / p;
    const double k1 = 0.5 * j2 * perPl;
    const double k2 = k1 * perPl;
    const double n = 1 / (mean.a * sqrtA); // in units of ke
    const SinCos& i = inclined.angle;
    const double rk = r * (1 - 1.5 * k2 * beta * inclined.con41) + 0.5 * k1 * inclined.x1mth2 * cos2u;
    const SinCos uk = u.Plus(-0.25 * k2 * inclined.x7thm1 * sin2u);
    const SinCos nodeK = mean.node.Plus(1.5 * k2 * i.cos * sin2u);
    const SinCos iK = i.Plus(1.5 * k2 * i.cos * i.sin * cos2u);
    const double rDotK = rDot - n * k1 * inclined.x1mth2 * sin2u;
    const double rfDotK = rfDot + n * k1 * (inclined.x1mth2 * cos2u + 1.5 * inclined.con41);

    // Unit vectors along the radius and across it.
    const double mx = -nodeK.sin * iK.cos;
    const double my = nodeK.cos * iK.cos;
    const Vector3 along{mx * uk.sin + nodeK.cos * uk.cos, my * uk.sin + nodeK.sin * uk.cos, iK.sin * uk.sin};
    const Vector3 across{mx * uk.cos - nodeK.cos * uk.sin, my * uk.cos - nodeK.sin * uk.sin, iK.sin * uk.cos};

    constexpr double kmPerSecond = earthRadius * ke / 60;
    Propagation result;
    result.state.position = rk * earthRadius * along;
    result.state.velocity = kmPerSecond * (rDotK * along + rfDotK * across);
    result.state.meanAnomaly = mean.meanAnomaly;
    if (!std::isfinite(Dot(result.state.position, result.state.velocity)))
        return Failed(PropagationError::OutOfRange);
    if (!(rk >= 1))
        return Failed(PropagationError::Decayed);
    return result;
}

} // namespace orbitmath
