#pragma once

namespace orbitmath {

constexpr double speedOfLight = 299792.458; ///< c, km/s

/// By how much a station hears a satellite's signal shifted, in the unit of `frequency`. `rangeRate` in km/s,
/// positive: going away, which lowers it. To first order: what is left out is 0.3 Hz at 437 MHz at most. To
/// be heard on a frequency by the satellite, send as much on the other side of it.
constexpr double DopplerShift(double rangeRate, double frequency) {
    return -frequency * rangeRate / speedOfLight;
}

} // namespace orbitmath
