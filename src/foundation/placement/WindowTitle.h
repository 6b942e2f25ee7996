#pragma once

#include <QWidget>

/// Sets a window's title to a text as it stands. Qt takes "[*]" in a title for the place of its mark of
/// changes, and two of them for one that is meant.
void SetPlainTitle(QWidget& window, QString title);
