#pragma once

#include <QString>

class QPaintDevice;

/// The unit of positions in the settings file: 1440 to the logical inch. `window` tells which screen's inch.
namespace Twips {

float FromPixels(int pixels, const QPaintDevice& window);

/// To the nearest pixel, within what a window system can address (16 bits).
int ToPixels(double twips, const QPaintDevice& window);

/// A length as the settings file keeps it: decimal, up to 7 significant digits.
QString ToText(float twips);

/// The number at the start of a settings value, in pixels.
int PixelsOf(const QString& value, const QPaintDevice& window);

/// A length in pixels as the settings file keeps it.
QString TextOf(int pixels, const QPaintDevice& window);

} // namespace Twips
