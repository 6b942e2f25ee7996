#include "station/identity/FieldRules.h"

#include "foundation/text/QIRUtil.h"
#include "foundation/text/Text.h"

#include <QStringList>

namespace FieldRules {
std::optional<QChar> PositionCharacter(QChar entered) {
    if (entered == u' ' || entered == u'.')
        return entered;
    return entered == u'-' ? std::nullopt : QIRUtil::CallsignCharacter(entered);
}

std::optional<QChar> ViaCharacter(QChar entered) {
    return entered == u' ' || entered == u',' ? std::optional(entered) : QIRUtil::CallsignCharacter(entered);
}

bool IsCallsignOrEmpty(QStringView text) {
    return text.isEmpty() || QIRUtil::IsValidCallsign(text);
}

ViaPath NormaliseVia(const QString& text) {
    QString commas = text;
    commas.replace(u' ', u',');
    const QStringList pieces = commas.split(u',', Qt::SkipEmptyParts);
    for (const QString& piece : pieces)
        if (!QIRUtil::IsValidCallsign(piece))
            return {.path = {}, .wrong = piece};
    return {.path = pieces.join(u','), .wrong = {}};
}

int HighestPort(int portCount) {
    return portCount == 0 ? 2 : portCount;
}

bool IsPortAvailable(QStringView text, int portCount) {
    return Text::LeadingNumber(text) <= HighestPort(portCount);
}

std::optional<qint16> PortOf(QStringView text) {
    const std::optional<qint16> port = Text::RoundToInt16(Text::LeadingNumber(text));
    return port == qint16{0} ? qint16{1} : port;
}

QString PortMessage(int portCount) {
    return QStringLiteral("The highest available port is ") + QString::number(HighestPort(portCount)) + u'.';
}

} // namespace FieldRules
