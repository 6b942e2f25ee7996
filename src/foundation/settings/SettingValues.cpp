// What values settings take: see SettingType.

#include "foundation/settings/Settings.h"
#include "foundation/text/QIRUtil.h"
#include "foundation/text/Text.h"

#include <QRegularExpression>
#include <QUrl>

#include <algorithm>

namespace Settings {
namespace {

using Accepted = std::optional<QString>;

bool Matches(const QString& text, const QString& pattern) {
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern)).match(text).hasMatch();
}

Accepted AcceptIf(bool isGood, const QString& value) {
    return isGood ? Accepted(value) : std::nullopt;
}

// Of one line, in the file's code page.
bool CanBeStored(const QString& text) {
    return text.size() <= clsIni::longestValue && Text::FromBytes(Text::ToBytes(text)) == text &&
           std::ranges::none_of(text, [](QChar c) { return c < u' ' || c == u'\x7f'; });
}

Accepted AcceptBoolean(const QString& given) {
    QString upper = given.trimmed();
    if (clsIni::IsItTrue(upper))
        return clsIni::TrueOrFalse(true);
    const bool isFalse = upper == u"FALSE" || upper == u"NO" || upper == u"0" || upper == u"OFF";
    return AcceptIf(isFalse, clsIni::TrueOrFalse(false));
}

Accepted AcceptNumber(const Setting& setting, const QString& given) {
    bool isNumber = false;
    const int number = given.toInt(&isNumber);
    return AcceptIf(isNumber && number >= setting.least && number <= setting.greatest,
                    QString::number(number));
}

Accepted AcceptCallsigns(const QString& given) {
    QStringList callsigns = given.toUpper().split(u',', Qt::SkipEmptyParts);
    for (QString& callsign : callsigns)
        callsign = callsign.trimmed();
    return AcceptIf(std::ranges::all_of(callsigns, QIRUtil::IsValidCallsign), callsigns.join(u','));
}

// A whole text is asked for: what the program cannot read would count as no position.
Accepted AcceptPosition(const QString& given, const QString& pattern, double greatestDegrees) {
    if (given.isEmpty())
        return given;
    if (!Matches(given, pattern))
        return std::nullopt;
    const qsizetype endOfDegrees = given.indexOf(u'.') - 2;
    const double degrees = Text::LeadingNumber(QStringView(given).first(endOfDegrees));
    const double minutes = Text::LeadingNumber(QStringView(given).sliced(endOfDegrees));
    return AcceptIf(minutes < 60.0 && degrees + minutes / 60.0 <= greatestDegrees, given);
}

Accepted AcceptWebAddress(const QString& given) {
    const QUrl url(given, QUrl::StrictMode);
    const bool isWeb = url.scheme() == u"https" || url.scheme() == u"http";
    return AcceptIf(url.isValid() && isWeb && !url.host().isEmpty(), given);
}

} // namespace

std::optional<QString> Accept(const Setting& setting, const QString& given) {
    if (!CanBeStored(given))
        return std::nullopt;
    const QString trimmed = given.trimmed();
    const QString upper = trimmed.toUpper();
    switch (setting.type) {
    case SettingType::Boolean:
        return AcceptBoolean(trimmed);
    case SettingType::Number:
        return AcceptNumber(setting, trimmed);
    case SettingType::CatalogueNumber:
        return AcceptIf(Matches(trimmed, QStringLiteral("[0-9]{1,9}")), trimmed);
    case SettingType::Callsign:
        return AcceptIf(upper.isEmpty() || QIRUtil::IsValidCallsign(upper), upper);
    case SettingType::Callsigns:
        return AcceptCallsigns(trimmed);
    case SettingType::Latitude:
        return AcceptPosition(upper, QStringLiteral("[0-9]{4}\\.[0-9]{2}[NS]"), 90.0);
    case SettingType::Longitude:
        return AcceptPosition(upper, QStringLiteral("[0-9]{5}\\.[0-9]{2}[EW]"), 180.0);
    case SettingType::Locator:
        return AcceptIf(upper.isEmpty() || Matches(upper, QStringLiteral("[A-R]{2}[0-9]{2}[A-X]{2}")), upper);
    case SettingType::Host:
        return AcceptIf(Matches(trimmed, QStringLiteral("\\S+")), trimmed);
    case SettingType::WebAddress:
        return AcceptWebAddress(trimmed);
    case SettingType::Text:
    case SettingType::Secret:
        break;
    }
    return given;
}

QString Allowed(const Setting& setting) {
    switch (setting.type) {
    case SettingType::Boolean:
        return QStringLiteral("TRUE or FALSE");
    case SettingType::Number:
        return QStringLiteral("a whole number from %1 to %2").arg(setting.least).arg(setting.greatest);
    case SettingType::CatalogueNumber:
        return QStringLiteral("a catalogue number of one to nine digits");
    case SettingType::Callsign:
        return QStringLiteral("a callsign such as QIRAN-1, or nothing");
    case SettingType::Callsigns:
        return QStringLiteral("callsigns such as QIRAN-1,WIDE2-2, or nothing");
    case SettingType::Latitude:
        return QStringLiteral("a latitude such as 6010.20N (DDMM.hhN), or nothing");
    case SettingType::Longitude:
        return QStringLiteral("a longitude such as 02456.30E (DDDMM.hhE), or nothing");
    case SettingType::Locator:
        return QStringLiteral("a locator of six characters such as KP20LE, or nothing");
    case SettingType::Host:
        return QStringLiteral("the name or the address of a host");
    case SettingType::WebAddress:
        return QStringLiteral("an address that begins with http:// or https://");
    case SettingType::Text:
    case SettingType::Secret:
        break;
    }
    return QStringLiteral("a line of at most %1 characters of the Windows-1252 code page")
        .arg(clsIni::longestValue);
}

} // namespace Settings
