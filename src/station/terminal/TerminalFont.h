#pragma once

/// The terminal's font is a bitmap font that exists in a few sizes only.
namespace TerminalFont {

/// The size, in points, nearest to the wanted one among the cell heights of 10, 12, 14, 16, 22 and 27 pixels;
/// the smaller one of two equally near.
float SnapSize(float points, float twipsPerPixel);

/// The points of a cell height in pixels.
float PointsOf(int pixels, float twipsPerPixel);

/// The cell height, in pixels, `steps` sizes above (or below) that of this size in points; the last one where
/// there are no more.
int StepFrom(float points, float twipsPerPixel, int steps);

} // namespace TerminalFont
