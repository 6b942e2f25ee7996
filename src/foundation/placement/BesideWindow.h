#pragma once

#include <QRect>

/// Where a window of this size stands beside another without covering it, inside the screen's area: to the
/// right, to the left, below or above, wherever it covers least.
QRect BesideWindow(const QSize& size, const QRect& other, const QRect& area);
