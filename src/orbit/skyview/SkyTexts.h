#pragma once

#include "orbit/sky/Shadow.h"

#include <QString>

/// The texts of the sky window, numbers with "." whatever the locale.
namespace SkyTexts {

/// A length of time without its sign: "00:05:12", from a day on "2 d 03:04:05".
QString Duration(double seconds);

/// "12.3°", with one decimal.
QString Degrees(double degrees);

/// "57° (NE)": an azimuth with the nearest of the eight winds.
QString Azimuth(double degrees);

/// "sunlit", "in half shadow" or "in the earth's shadow".
QString OfLight(orbitmath::Light light);

/// "-5.213 km/s".
QString Speed(double kmPerSecond);

/// "437.80912 MHz", to 10 Hz.
QString Megahertz(double megahertz);

/// "+9120 Hz" of a shift in Hz.
QString Shift(double hertz);

} // namespace SkyTexts
