#pragma once

/// The terminal's font is a bitmap font that exists in a few sizes only.
namespace TerminalFont {

constexpr float wantedPoints = 10.0F;

/// The size, in points, nearest to the wanted one among the cell heights of 10, 12, 14, 16, 22 and 27 pixels;
/// the smaller one of two equally near.
float SnapSize(float points, float twipsPerPixel);

} // namespace TerminalFont
