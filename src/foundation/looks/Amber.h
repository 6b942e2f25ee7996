#pragma once

#include "foundation/looks/Contrast.h"

/// Amber text, as light or dark as its ground asks for: what deserves a look.
inline QColor AmberOn(const QColor& ground) {
    return Contrast::Legible(ground.lightness() < 128 ? QColor(255, 191, 0) : QColor(140, 80, 0), ground);
}
