#include "station/terminal/TerminalFont.h"

#include <array>
#include <cmath>

namespace TerminalFont {

float SnapSize(float points, float twipsPerPixel) {
    constexpr std::array cellHeights{10.0F, 12.0F, 14.0F, 16.0F, 22.0F, 27.0F}; // pixels
    const float pixelsPerInch = 1440.0F / twipsPerPixel;
    float best = 0.0F;
    float bestDifference = 100.0F;
    for (const float pixels : cellHeights) {
        const float size = pixels * 72.0F / pixelsPerInch;
        if (const float difference = std::abs(size - points); difference < bestDifference) {
            best = size;
            bestDifference = difference;
        }
    }
    return best;
}

} // namespace TerminalFont
