#pragma once

#include <QColor>

/// Whether text can be read on its ground, by the ratio of their luminances as accessibility guidelines
/// (WCAG 2) compute it.
namespace Contrast {

constexpr double least = 4.5; ///< for text of any size

/// 1 (the same) to 21 (black on white).
double Between(const QColor& text, const QColor& ground);

/// `wanted` where it can be read on `ground`, else the nearest shade towards black or white that can.
QColor Legible(const QColor& wanted, const QColor& ground);

/// As far from `text` towards `ground` as can still be read: a text that stands back.
QColor Dimmed(const QColor& text, const QColor& ground);

} // namespace Contrast
