#pragma once

#include <QString>

/// `value` with `decimals` (0 to 6) places, as the display formats "0", "0.0" and "0.00" show it: the number
/// of 15 significant digits rounded with halves away from zero.
QString FixedNumber(double value, int decimals);
