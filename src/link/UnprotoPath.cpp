#include "link/UnprotoPath.h"

#include "foundation/text/Text.h"

UnprotoPath UnprotoPath::FromText(QStringView text) {
    UnprotoPath path;
    const QStringView trimmed = text.trimmed();
    const qsizetype blank = trimmed.indexOf(u' ');
    path.destination = Text::ToBytes(blank < 0 ? trimmed : trimmed.first(blank));
    if (blank < 0)
        return path;
    for (const QString& digipeater :
         trimmed.sliced(blank).toString().replace(u' ', u',').split(u',', Qt::SkipEmptyParts))
        path.digipeaters.append(Text::ToBytes(digipeater));
    return path;
}
