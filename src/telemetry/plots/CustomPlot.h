#pragma once

// QCustomPlot's header, which is written with Qt's keywords; this program is built without them.

#include <QtGlobal>

#define signals Q_SIGNALS
#define slots Q_SLOTS
#define foreach Q_FOREACH
#include <qcustomplot.h>
#undef signals
#undef slots
#undef foreach
