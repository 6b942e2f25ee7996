#include "telemetry/monitor/TrafficPane.h"

#include "foundation/text/QIRUtil.h"

#include <QAction>
#include <QRegularExpression>
#include <QTextBlock>

namespace {

constexpr int mostLines = 16; // of a frame above which its header is looked for

// "12:00:01R XQ9ZZ-1>APRS,WIDE2-2 Port=1 <UI Len=42>:", in short "12:00:01 XQ9ZZ-1>APRS:", or as the engine
// has it, " 1:Fm XQ9ZZ-1 To APRS".
QString SourceIn(const QString& line) {
    static const QRegularExpression header(
        QStringLiteral("^(?:\\d\\d:\\d\\d:\\d\\d(?:[RT])? ([^ >]+)>| *\\d+:Fm ([^ ]+) To )"));
    const QRegularExpressionMatch match = header.match(line);
    return match.captured(1) + match.captured(2);
}

} // namespace

TrafficPane::TrafficPane(QWidget* parent)
    : FollowingPane(parent) {
    auto* bar = new QAction(this);
    bar->setSeparator(true);
    bar->setObjectName(QStringLiteral("mnuPaneBar"));
    addAction(bar);
    mnuPutInTo =
        AddEntry(QStringLiteral("mnuPutInTo"), tr("Put callsign in &To"), [this](const QTextCursor& place) {
            if (const QString callsign = CallsignAt(place); !callsign.isEmpty())
                Q_EMIT PutInToAsked(callsign);
        });
    mnuAddCallsign = AddEntry(QStringLiteral("mnuAddCallsign"), tr("Add to &QIRAN Callsigns"),
                              [this](const QTextCursor& place) {
                                  if (const QString callsign = CallsignAt(place); !callsign.isEmpty())
                                      Q_EMIT AddToCallsignsAsked(callsign);
                              });
    AddEntry(QStringLiteral("mnuOpenLogs"), tr("&Open the log folder"),
             [this](const QTextCursor&) { Q_EMIT LogFolderAsked(); });
}

QString TrafficPane::CallsignAt(const QTextCursor& place) {
    QTextBlock block = place.block();
    for (int line = 0; line < mostLines && block.isValid(); ++line, block = block.previous())
        if (const QString source = SourceIn(block.text()); !source.isEmpty())
            return QIRUtil::IsValidCallsign(source) ? source : QString();
    return {};
}

void TrafficPane::PrepareMenu(const QTextCursor& place) {
    const bool isKnown = !CallsignAt(place).isEmpty();
    mnuPutInTo->setEnabled(isKnown);
    mnuAddCallsign->setEnabled(isKnown);
}
