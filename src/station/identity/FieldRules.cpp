#include "station/identity/FieldRules.h"

#include "foundation/text/QIRUtil.h"
#include "foundation/text/Text.h"

#include <QStringList>

namespace FieldRules {
namespace {

// a-z only: no other letter has a capital that a callsign may hold.
constexpr QChar ToCapital(QChar key) {
    return key >= u'a' && key <= u'z' ? QChar(static_cast<char16_t>(key.unicode() - u'a' + u'A')) : key;
}

constexpr bool IsControl(QChar key) {
    return key.unicode() <= 13;
}

constexpr bool IsDigit(QChar key) {
    return key >= u'0' && key <= u'9';
}

bool IsCallsignCharacter(QChar key) {
    return key.unicode() < 0x80 && QIRUtil::IsCallsignKey(static_cast<qint16>(key.unicode()));
}

std::optional<QChar> KeepIf(bool keep, QChar key) {
    return keep ? std::optional(key) : std::nullopt;
}

} // namespace

std::optional<QChar> CallsignKey(QChar key) {
    const QChar capital = ToCapital(key);
    return KeepIf(IsCallsignCharacter(capital), capital);
}

std::optional<QChar> PositionKey(QChar key) {
    const QChar capital = ToCapital(key);
    const bool isLetter = capital >= u'A' && capital <= u'Z';
    return KeepIf(IsControl(capital) || IsDigit(capital) || isLetter || capital == u' ' || capital == u'.',
                  capital);
}

std::optional<QChar> ViaKey(QChar key) {
    const QChar capital = ToCapital(key);
    return KeepIf(capital == u',' || capital == u' ' || IsCallsignCharacter(capital), capital);
}

std::optional<QChar> PortKey(QChar key) {
    return KeepIf(IsControl(key) || IsDigit(key), key);
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
