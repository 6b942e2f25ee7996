#include "foundation/placement/WindowTitle.h"

void SetPlainTitle(QWidget& window, QString title) {
    window.setWindowTitle(title.replace(QStringLiteral("[*]"), QStringLiteral("[*][*]")));
}
