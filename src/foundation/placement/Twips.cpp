#include "foundation/placement/Twips.h"

#include "foundation/text/Text.h"

#include <QPaintDevice>

#include <algorithm>
#include <cmath>

namespace Twips {
namespace {

constexpr double twipsPerInch = 1440.0;
constexpr double farthest = 32767.0;

} // namespace

float FromPixels(int pixels, const QPaintDevice& window) {
    return static_cast<float>(pixels * twipsPerInch / window.logicalDpiX());
}

int ToPixels(double twips, const QPaintDevice& window) {
    const double pixels = std::round(twips * window.logicalDpiX() / twipsPerInch);
    return static_cast<int>(std::clamp(pixels, -farthest, farthest));
}

QString ToText(float twips) {
    return QString::number(twips == 0.0F ? 0.0 : static_cast<double>(twips), 'G', 7);
}

int PixelsOf(const QString& value, const QPaintDevice& window) {
    return ToPixels(Text::LeadingNumber(value), window);
}

QString TextOf(int pixels, const QPaintDevice& window) {
    return ToText(FromPixels(pixels, window));
}

} // namespace Twips
