#include "telemetry/replay/FrameLines.h"

#include "foundation/text/QIRUtil.h"
#include "foundation/text/Text.h"
#include "foundation/text/UtcTime.h"

#include <QRegularExpression>

namespace {

// SOURCE>DESTINATION,DIGIPEATERS
const QString addresses =
    QStringLiteral("(?<source>[^\\s>,:*]+)>(?<destination>[^\\s>,:*]+)(?:,(?<path>[^\\s>:]*))?");

const QRegularExpression logHeader(
    QRegularExpression::anchoredPattern(QStringLiteral("\\d\\d:\\d\\d:\\d\\d(?<mark>[RT]?) ") + addresses +
                                        QStringLiteral("(?: Port=(?<port>\\d+) <(?<control>[^>]*)>)?:")));

const QRegularExpression
    monitorLine(QRegularExpression::anchoredPattern(
                    QStringLiteral("(?<before>(?:\\[[^\\]]*\\]\\s*|(?:UTC|GMT|[0-9][0-9TZ:.,/+-]*)\\s+)*)") +
                    addresses + QStringLiteral(":(?<information>.*)")),
                QRegularExpression::DotMatchesEverythingOption);

const QRegularExpression timeWithZone(QStringLiteral(
    "(\\d{4}-\\d\\d-\\d\\d)[T ](\\d\\d:\\d\\d(?::\\d\\d(?:\\.\\d+)?)?) ?(Z|UTC|[+-]\\d\\d:\\d\\d)"));

const QRegularExpression writtenByte(QStringLiteral("<0x([0-9A-Fa-f]{2})>"));

// 0 where nothing tells it.
qint64 TimeIn(const QString& text) {
    const QRegularExpressionMatch time = timeWithZone.match(text);
    if (!time.hasMatch())
        return 0;
    const QString zone = time.captured(3) == u"UTC" ? QStringLiteral("Z") : time.captured(3);
    return UtcTime::Parse(time.captured(1) + u'T' + time.captured(2) + zone).value_or(0);
}

QByteArray InformationOf(QString text) {
    for (QRegularExpressionMatch found = writtenByte.match(text); found.hasMatch();
         found = writtenByte.match(text, found.capturedStart() + 1))
        text.replace(found.capturedStart(), found.capturedLength(),
                     Text::FromBytes(QByteArray::fromHex(found.captured(1).toLatin1())));
    return Text::ToBytes(text);
}

HeardFrame::Kind KindOf(const QRegularExpressionMatch& header) {
    const QString control = header.captured(QStringLiteral("control"));
    if (header.captured(QStringLiteral("mark")) == u"T")
        return HeardFrame::Kind::T;
    if (control.isEmpty() || control.startsWith(u"UI"))
        return HeardFrame::Kind::U;
    return control.startsWith(u'I') ? HeardFrame::Kind::I : HeardFrame::Kind::S;
}

} // namespace

void FrameLines::Take(QByteArrayView line) {
    const QString text = Text::FromBytes(line);
    if (text.trimmed().isEmpty()) {
        m_inside = Inside::Nothing;
    } else if (TakeHeader(text)) {
        m_inside = Inside::Header;
    } else if (m_inside == Inside::Header) {
        m_inside = Inside::Frame;
        Hand(line.toByteArray());
    } else if (m_inside == Inside::Nothing && !TakeMonitorLine(text) && !TakeTelemetry(line)) {
        ++m_unknown;
    }
}

bool FrameLines::TakeHeader(const QString& line) {
    const QRegularExpressionMatch header = logHeader.match(line);
    if (!header.hasMatch())
        return false;
    m_source = Text::ToBytes(header.captured(QStringLiteral("source")));
    m_destination = Text::ToBytes(header.captured(QStringLiteral("destination")));
    m_path = Text::ToBytes(header.captured(QStringLiteral("path")));
    m_frame = {};
    m_frame.kind = KindOf(header);
    if (const qint16 port = header.captured(QStringLiteral("port")).toShort(); port > 0)
        m_frame.port = port;
    return true;
}

bool FrameLines::TakeMonitorLine(const QString& line) {
    const QRegularExpressionMatch found = monitorLine.match(line);
    if (!found.hasMatch() || !QIRUtil::IsValidCallsign(found.captured(QStringLiteral("source"))))
        return false;
    m_source = Text::ToBytes(found.captured(QStringLiteral("source")));
    m_destination = Text::ToBytes(found.captured(QStringLiteral("destination")));
    m_path = Text::ToBytes(found.captured(QStringLiteral("path")));
    m_frame = {};
    m_frame.utc = TimeIn(found.captured(QStringLiteral("before")));
    Hand(InformationOf(found.captured(QStringLiteral("information"))));
    return true;
}

bool FrameLines::TakeTelemetry(QByteArrayView line) {
    constexpr qsizetype commas = 9; // a callsign and nine fields
    const qsizetype comma = line.indexOf(',');
    if (line.count(',') != commas || !QIRUtil::IsValidCallsign(Text::FromBytes(line.first(comma))))
        return false;
    m_source = line.first(comma).toByteArray();
    m_destination.clear();
    m_path.clear();
    m_frame = {};
    Hand(line.sliced(comma + 1).toByteArray());
    return true;
}

void FrameLines::Hand(const QByteArray& information) {
    m_frame.origin = HeardFrame::Origin::Replayed;
    m_frame.source = m_source;
    m_frame.destination = m_destination;
    m_frame.path = m_path;
    m_frame.information = information;
    m_found(m_frame);
}
