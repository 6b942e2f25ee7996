#pragma once

#include <QFont>

/// The system's fixed-pitch font, for columns, callsigns and whatever is compared letter by letter.
QFont FixedFont();
