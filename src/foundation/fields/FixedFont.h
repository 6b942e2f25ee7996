#pragma once

#include <QFont>

/// The system's fixed-pitch font, for columns, callsigns and whatever is compared letter by letter. Where the
/// desktop names one whose letters differ in width, another one. Never smaller than the desktop's text.
QFont FixedFont();

/// `wanted` where all its letters are of one width, else the nearest font of which that holds.
QFont FixedFontLike(const QFont& wanted);
