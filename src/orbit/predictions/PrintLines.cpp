#include "orbit/predictions/PrintLines.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPrinter>

#include <algorithm>
#include <cmath>

void PrintLines(QPrinter& printer, const QString& text, const QFont& font) {
    QPainter painter;
    if (!painter.begin(&printer))
        return;
    painter.setFont(font);
    const QFontMetricsF metrics(font, &printer);
    const double height = metrics.lineSpacing();
    const QRectF page = painter.viewport();
    const int linesOnPage = std::max(static_cast<int>(std::floor(page.height() / height)), 1);
    int line = 0;
    for (const QString& content : text.split(QStringLiteral("\r\n"))) {
        if (line == linesOnPage) {
            printer.newPage();
            line = 0;
        }
        painter.drawText(QPointF(page.left(), page.top() + line * height + metrics.ascent()), content);
        ++line;
    }
}
