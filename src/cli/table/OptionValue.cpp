#include "cli/table/OptionValue.h"

#include "foundation/text/UtcTime.h"

#include <QFileInfo>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

using Read = std::variant<OptionValue, QString>;

Read Wrong(const QString& expected, const QString& text) {
    return Read(std::in_place_index<1>, QStringLiteral("takes %1, not '%2'").arg(expected, text));
}

Read Good(const OptionValue& value) {
    return Read(std::in_place_index<0>, value);
}

// With "." whatever the locale, and nothing around it.
std::optional<double> NumberIn(const QString& text, double least, double greatest) {
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    return isNumber && std::isfinite(number) && number >= least && number <= greatest ? std::optional(number)
                                                                                      : std::nullopt;
}

Read ReadWhole(const Option& option, const QString& text) {
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    if (isNumber && number >= option.least && number <= option.greatest)
        return Good(number);
    return Wrong(QStringLiteral("a whole number from %1 to %2").arg(option.least).arg(option.greatest), text);
}

Read ReadDecimal(const Option& option, const QString& text) {
    if (const std::optional<double> number = NumberIn(text, option.least, option.greatest))
        return Good(*number);
    return Wrong(QStringLiteral("a number from %1 to %2").arg(option.least).arg(option.greatest), text);
}

Read ReadPosition(const QString& text) {
    const QStringList parts = text.split(u',');
    if (parts.size() == 2) {
        const std::optional<double> latitude = NumberIn(parts[0].trimmed(), -90, 90);
        const std::optional<double> longitude = NumberIn(parts[1].trimmed(), -180, 180);
        if (latitude && longitude)
            return Good(PlaceOnEarth{*latitude, *longitude});
    }
    return Wrong(QStringLiteral("LAT,LON in degrees such as 60.17,24.94"), text);
}

Read ReadSatellite(const QString& text) {
    for (const char16_t* name : {u"QIRAN", u"ISS", u"all"})
        if (text.compare(QStringView(name), Qt::CaseInsensitive) == 0)
            return Good(QString::fromUtf16(name));
    const auto isDigit = [](QChar c) { return c >= u'0' && c <= u'9'; };
    constexpr qsizetype mostDigits = 9;
    if (!text.isEmpty() && text.size() <= mostDigits && std::ranges::all_of(text, isDigit))
        return Good(text);
    return Wrong(QStringLiteral("QIRAN, ISS, a catalogue number or all"), text);
}

Read ReadUtc(const QString& text) {
    if (const std::optional<qint64> utc = UtcTime::Parse(text))
        return Good(*utc);
    return Wrong(QStringLiteral("a time such as 2026-11-21T15:00Z"), text);
}

Read ReadFolder(const QString& text) {
    const QFileInfo wanted(text);
    if (wanted.isDir())
        return Good(wanted.canonicalFilePath());
    return Read(std::in_place_index<1>, QStringLiteral("names '%1', and there is no such folder").arg(text));
}

// An IPv6 address stands in brackets.
Read ReadHostAndPort(const QString& text) {
    constexpr int highestPort = 65535;
    const qsizetype colon = text.lastIndexOf(u':');
    QString host = text.left(std::max<qsizetype>(colon, 0));
    if (host.startsWith(u'[') && host.endsWith(u']'))
        host = host.sliced(1, host.size() - 2);
    else if (host.contains(u':'))
        host.clear();
    bool isNumber = false;
    const int port = text.sliced(colon + 1).toInt(&isNumber);
    if (!host.trimmed().isEmpty() && isNumber && port >= 1 && port <= highestPort)
        return Good(HostAndPort{host, port});
    return Wrong(QStringLiteral("HOST:PORT such as localhost:8001"), text);
}

Read ReadChoice(const Option& option, const QString& text) {
    const QStringList choices = QString::fromUtf16(option.value).split(u'|');
    if (choices.contains(text))
        return Good(text);
    return Wrong(choices.join(QStringLiteral(", ")), text);
}

} // namespace

std::variant<OptionValue, QString> ReadOptionValue(const Option& option, const QString& text) {
    switch (option.takes) {
    case Takes::Choice:
        return ReadChoice(option, text);
    case Takes::Whole:
        return ReadWhole(option, text);
    case Takes::Decimal:
        return ReadDecimal(option, text);
    case Takes::Utc:
        return ReadUtc(text);
    case Takes::Position:
        return ReadPosition(text);
    case Takes::Satellite:
        return ReadSatellite(text);
    case Takes::Folder:
        return ReadFolder(text);
    case Takes::HostAndPort:
        return ReadHostAndPort(text);
    case Takes::Nothing:
    case Takes::Text:
    case Takes::File:
        break;
    }
    return Good(text);
}
