#pragma once

#include <QColor>

/// Amber text that reads on light and on dark ground alike: what deserves a look.
inline QColor AmberOn(const QColor& ground) {
    return ground.lightness() < 128 ? QColor(255, 191, 0) : QColor(140, 80, 0);
}
