#pragma once

#include <QFont>
#include <QString>

class QPrinter;

/// Prints text, one line after the other, on as many pages as it needs; lines end in CR LF.
void PrintLines(QPrinter& printer, const QString& text, const QFont& font);
