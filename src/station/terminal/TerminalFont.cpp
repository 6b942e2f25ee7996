#include "station/terminal/TerminalFont.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace TerminalFont {
namespace {

constexpr std::array cellHeights{10, 12, 14, 16, 22, 27}; // pixels

} // namespace

float SnapSize(float points, float twipsPerPixel) {
    float best = 0.0F;
    float bestDifference = 100.0F;
    for (const int pixels : cellHeights) {
        const float size = PointsOf(pixels, twipsPerPixel);
        if (const float difference = std::abs(size - points); difference < bestDifference) {
            best = size;
            bestDifference = difference;
        }
    }
    return best;
}

float PointsOf(int pixels, float twipsPerPixel) {
    const float pixelsPerInch = 1440.0F / twipsPerPixel;
    return static_cast<float>(pixels) * 72.0F / pixelsPerInch;
}

int StepFrom(float points, float twipsPerPixel, int steps) {
    const float now = SnapSize(points, twipsPerPixel);
    int index = 0;
    while (index + 1 < static_cast<int>(cellHeights.size()) &&
           PointsOf(cellHeights.at(static_cast<std::size_t>(index)), twipsPerPixel) < now)
        ++index;
    index = std::clamp(index + steps, 0, static_cast<int>(cellHeights.size()) - 1);
    return cellHeights.at(static_cast<std::size_t>(index));
}

} // namespace TerminalFont
