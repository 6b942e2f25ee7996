#include "foundation/FixedFont.h"

#include <QFontDatabase>

QFont FixedFont() {
    return QFontDatabase::systemFont(QFontDatabase::FixedFont);
}
