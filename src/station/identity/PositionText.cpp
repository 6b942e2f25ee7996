#include "station/identity/PositionText.h"

#include "foundation/text/QIRUtil.h"
#include "foundation/text/Text.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <cmath>

namespace PositionText {
namespace {

struct AxisRule {
    QChar positive;
    QChar negative;
    qint16 degreeDigits;
    qint16 limit;
};

constexpr AxisRule RuleOf(Axis axis) {
    return axis == Axis::Latitude ? AxisRule{u'N', u'S', 2, 90} : AxisRule{u'E', u'W', 3, 180};
}

QString Digits(qint16 value, int width) {
    return QStringLiteral("%1").arg(value, width, 10, QChar(u'0'));
}

std::optional<qint16> Number(QStringView text) {
    return Text::RoundToInt16(Text::LeadingNumber(text));
}

// `text` with a point put in before its character number `position`, counted from 1.
QString InsertPoint(const QString& text, qsizetype position) {
    return text.left(position - 1) + u'.' + text.mid(position - 1);
}

// A blank before the first point is a slip ("51 30N"); after it, it is harmless.
bool HasMisplacedBlank(QStringView text) {
    const qsizetype blank = text.indexOf(u' ');
    const qsizetype point = text.indexOf(u'.');
    return blank >= 0 && (point < 0 || blank < point);
}

} // namespace

QString ToDisplayed(const QString& stored, Axis axis) {
    return stored.isEmpty() ? stored : InsertPoint(stored, RuleOf(axis).degreeDigits + 1);
}

QString ToStored(const QString& displayed, Axis axis) {
    const qint16 digits = RuleOf(axis).degreeDigits;
    const QString text = displayed.trimmed();
    return text.left(digits) + text.mid(digits + 1);
}

std::optional<QString> ValidateLatLong(const QString& entry, Axis axis, bool blnAllowBlank) {
    const QString trimmed = entry.trimmed();
    if (trimmed.isEmpty())
        return blnAllowBlank ? std::optional(entry) : std::nullopt;
    const AxisRule rule = RuleOf(axis);
    const QChar hemisphere = trimmed.back();
    const QStringView text = QStringView(trimmed).chopped(1);
    if ((hemisphere != rule.positive && hemisphere != rule.negative) || text.isEmpty() ||
        HasMisplacedBlank(text))
        return std::nullopt;

    const qsizetype first = text.indexOf(u'.');
    const qsizetype second = first < 0 ? -1 : text.indexOf(u'.', first + 1);
    const QStringView degreesText = first < 0 ? text : text.first(first);
    const QStringView minutesText = first < 0    ? QStringView()
                                    : second < 0 ? text.sliced(first + 1)
                                                 : text.sliced(first + 1, second - first - 1);
    const QStringView hundredthsText = second < 0 ? QStringView() : text.sliced(second + 1);

    const std::optional<qint16> degrees = Number(degreesText);
    const std::optional<qint16> minutes = Number(minutesText);
    std::optional<qint16> hundredths = Number(hundredthsText);
    if (hundredths && hundredthsText.size() == 1)
        *hundredths = static_cast<qint16>(*hundredths * 10); // ".5" is half a minute
    if (!degrees || *degrees < 0 || *degrees > rule.limit || !minutes || *minutes < 0 || *minutes > 59 ||
        !hundredths || *hundredths < 0 || *hundredths > 99)
        return std::nullopt;
    if (*degrees == rule.limit && (*minutes != 0 || *hundredths != 0))
        return std::nullopt;
    return Digits(*degrees, rule.degreeDigits) + u'.' + Digits(*minutes, 2) + u'.' + Digits(*hundredths, 2) +
           hemisphere;
}

QString Understood(const QString& entry, Axis axis) {
    if (entry.trimmed().isEmpty())
        return {};
    const std::optional<QString> position = ValidateLatLong(entry, axis, false);
    const AxisRule rule = RuleOf(axis);
    if (!position)
        return QStringLiteral("No %1 yet: degrees, minutes and %2 or %3, as in %4")
            .arg(Name(axis), rule.positive, rule.negative,
                 axis == Axis::Latitude ? QStringLiteral("51.30.25N") : QStringLiteral("000.07.50W"));
    const QString stored = ToStored(*position, axis);
    const double degrees =
        axis == Axis::Latitude ? QIRUtil::LatToDegrees(stored) : QIRUtil::LongToDegrees(stored);
    const qint16 digits = rule.degreeDigits;
    return QStringLiteral("%1\u00B0 %2' %3 = %4\u00B0")
        .arg(QString::number(stored.left(digits).toInt()), stored.mid(digits, stored.size() - digits - 1),
             stored.right(1), QString::number(degrees, 'f', 5));
}

std::optional<DecimalDegrees> FromDecimal(const QString& text) {
    const QString number = QStringLiteral("([-+\u2212]?\\d{1,3}(?:\\.\\d+)?)\\s*\u00B0?\\s*");
    static const QRegularExpression form(QRegularExpression::anchoredPattern(
        QStringLiteral("\\s*") + number + QStringLiteral("([NS]?)(?:(?:\\s*[,;]\\s*|\\s+)") + number +
        QStringLiteral("([EW]?))?\\s*")));
    const QRegularExpressionMatch match = form.match(text);
    const auto value = [&match](int digits, int letter, QChar negative) {
        const double degrees = match.captured(digits).replace(QChar(0x2212), u'-').toDouble();
        return match.captured(letter) == negative ? -degrees : degrees;
    };
    const bool isDecimal = match.captured(1).contains(u'.') || match.captured(3).contains(u'.');
    if (!match.hasMatch() || !isDecimal)
        return std::nullopt;
    DecimalDegrees degrees{.first = value(1, 2, u'S'), .second = {}};
    if (!match.captured(3).isEmpty())
        degrees.second = value(3, 4, u'W');
    const double limit = degrees.second ? 90.0 : 180.0;
    if (std::abs(degrees.first) > limit || std::abs(degrees.second.value_or(0.0)) > 180.0)
        return std::nullopt;
    return degrees;
}

QString FromDegrees(double degrees, Axis axis) {
    const AxisRule rule = RuleOf(axis);
    constexpr long long perMinute = 100;
    constexpr long long perDegree = 60 * perMinute;
    const double inside = std::clamp(std::abs(degrees), 0.0, static_cast<double>(rule.limit));
    const long long hundredths = std::max(1LL, std::llround(inside * static_cast<double>(perDegree)));
    return Digits(static_cast<qint16>(hundredths / perDegree), rule.degreeDigits) + u'.' +
           Digits(static_cast<qint16>(hundredths % perDegree / perMinute), 2) + u'.' +
           Digits(static_cast<qint16>(hundredths % perMinute), 2) +
           (degrees < 0.0 ? rule.negative : rule.positive);
}

QString Name(Axis axis) {
    return axis == Axis::Latitude ? QStringLiteral("latitude") : QStringLiteral("longitude");
}

std::optional<QString> Locator(const QString& storedLatitude, const QString& storedLongitude) {
    if (storedLatitude.isEmpty() || storedLongitude.isEmpty())
        return std::nullopt;
    const std::optional<double> latitude = QIRUtil::LatOnGlobe(storedLatitude);
    const std::optional<double> longitude = QIRUtil::LongOnGlobe(storedLongitude);
    if (!latitude || !longitude)
        return std::nullopt;
    // Single precision: it decides into which subsquare a station on an edge falls.
    const auto latitudeMinutes = static_cast<float>(*latitude) * 60.0F;
    const auto longitudeMinutes = static_cast<float>(*longitude) * 60.0F;
    const float x = std::floor(longitudeMinutes) + 10800.0F;       // minutes from 180 W
    const float y = std::floor(latitudeMinutes * 2.0F) + 10800.0F; // half minutes from 90 S
    const auto letter = [](int value) { return QChar(static_cast<char16_t>(u'A' + value)); };
    const auto digit = [](int value) { return QChar(static_cast<char16_t>(u'0' + value)); };
    const int longitudeSteps = static_cast<qint16>(x);
    const int latitudeSteps = static_cast<qint16>(y);
    const std::array characters{
        letter(longitudeSteps / 1200),           letter(latitudeSteps / 1200),
        digit(longitudeSteps % 1200 / 120),      digit(latitudeSteps % 1200 / 120),
        letter(longitudeSteps % 1200 % 120 / 5), letter(latitudeSteps % 1200 % 120 / 5)};
    return QString(characters.data(), characters.size());
}

} // namespace PositionText
