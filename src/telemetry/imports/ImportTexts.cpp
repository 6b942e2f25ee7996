#include "telemetry/imports/ImportTexts.h"

#include "foundation/text/IsoTime.h"
#include "foundation/text/Text.h"
#include "telemetry/imports/HistoryImport.h"

QStringList ImportLines(const ImportCount& count) {
    QStringList lines;
    const auto add = [&lines](const QString& what, qint64 number) {
        lines += QStringLiteral("%1: %2").arg(what).arg(number);
    };
    add(QStringLiteral("frames that come in"), count.frames);
    if (count.span)
        lines += QStringLiteral("  from %1 to %2")
                     .arg(QLatin1StringView(IsoTime::Milliseconds(count.span->first)),
                          QLatin1StringView(IsoTime::Milliseconds(count.span->second)));
    add(QStringLiteral("frames that are known already"), count.known);
    add(QStringLiteral("frames of others"), count.others);
    add(QStringLiteral("lines and frames that were not understood"), count.notUnderstood);
    for (const QByteArray& example : count.examples)
        lines += QStringLiteral("  ") + Text::FromBytes(example);
    return lines;
}
