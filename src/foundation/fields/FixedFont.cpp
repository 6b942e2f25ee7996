#include "foundation/fields/FixedFont.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QStringList>

namespace {

bool IsFixed(const QFont& font) {
    const QFontMetricsF metrics(font);
    const qreal width = metrics.horizontalAdvance(u'i');
    return qFuzzyCompare(width, metrics.horizontalAdvance(u'W')) &&
           qFuzzyCompare(width, metrics.horizontalAdvance(u' '));
}

} // namespace

QFont FixedFont() {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    // Not every desktop that is set to large text says so of its fixed font as well.
    const qreal usual = QFontInfo(QGuiApplication::font()).pointSizeF();
    if (QFontInfo(font).pointSizeF() < usual)
        font.setPointSizeF(usual);
    return FixedFontLike(font);
}

QFont FixedFontLike(const QFont& wanted) {
    if (IsFixed(wanted))
        return wanted;
    QFont font = wanted;
    font.setStyleHint(QFont::TypeWriter);
    QStringList families{QStringLiteral("DejaVu Sans Mono"), QStringLiteral("Liberation Mono"),
                         QStringLiteral("Noto Sans Mono")};
    for (const QString& family : QFontDatabase::families())
        if (QFontDatabase::isFixedPitch(family))
            families.append(family);
    for (const QString& family : families) {
        font.setFamilies({family});
        if (QFontDatabase::hasFamily(family) && IsFixed(font))
            return font;
    }
    return wanted;
}
