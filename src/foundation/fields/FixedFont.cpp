#include "foundation/fields/FixedFont.h"

#include <QFontDatabase>

QFont FixedFont() {
    return QFontDatabase::systemFont(QFontDatabase::FixedFont);
}
