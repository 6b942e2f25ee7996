#include "foundation/text/QIRUtil.h"

#include "foundation/text/Text.h"

#include <algorithm>
#include <cmath>

namespace QIRUtil {
namespace {

constexpr bool IsDigit(QChar c) {
    return c >= u'0' && c <= u'9';
}
constexpr bool IsCapital(QChar c) {
    return c >= u'A' && c <= u'Z';
}

bool IsValidSsid(QStringView ssid) {
    return (ssid.size() == 1 || ssid.size() == 2) && std::ranges::all_of(ssid, IsDigit) &&
           Text::LeadingNumber(ssid) <= 15;
}

// Nothing beyond `limit`.
std::optional<double> ToDegrees(QStringView text, qsizetype degreeDigits, QChar positive, QChar negative,
                                double limit) {
    if (text.isEmpty() || (text.back() != positive && text.back() != negative))
        return 0.0;
    const double degrees = Text::LeadingNumber(text.first(std::min(degreeDigits, text.size())));
    const double minutes =
        text.size() > degreeDigits ? Text::LeadingNumber(text.sliced(degreeDigits).left(5)) : 0.0;
    const double result = degrees + minutes / 60.0;
    if (!(std::abs(result) <= limit))
        return std::nullopt;
    return text.back() == negative ? -result : result;
}

} // namespace

bool IsValidCallsign(QStringView callsign) {
    const qsizetype dash = callsign.indexOf(u'-');
    if (dash >= 0 && !IsValidSsid(callsign.sliced(dash + 1)))
        return false;
    const QStringView base = dash >= 0 ? callsign.first(dash) : callsign;
    return !base.isEmpty() && base.size() <= 6 &&
           std::ranges::all_of(base, [](QChar c) { return IsCapital(c) || IsDigit(c); });
}

bool IsCallsignKey(qint16 code) {
    const QChar key(static_cast<char16_t>(code));
    return code <= 13 || IsDigit(key) || IsCapital(key) || key == u'-';
}

std::optional<QChar> CallsignCharacter(QChar entered) {
    const bool isSmall = entered >= u'a' && entered <= u'z';
    const QChar capital = isSmall ? QChar(entered.unicode() - u'a' + u'A') : entered;
    // Control keys may be pressed in a callsign field, but are no characters of it.
    const bool fits =
        capital >= u' ' && capital.unicode() < 0x80 && IsCallsignKey(static_cast<qint16>(capital.unicode()));
    return fits ? std::optional(capital) : std::nullopt;
}

std::optional<QChar> DigitCharacter(QChar entered) {
    return IsDigit(entered) ? std::optional(entered) : std::nullopt;
}

std::optional<double> LatOnGlobe(QStringView latitude) {
    return ToDegrees(latitude, 2, u'N', u'S', 90.0);
}

std::optional<double> LongOnGlobe(QStringView longitude) {
    return ToDegrees(longitude, 3, u'E', u'W', 180.0);
}

double LatToDegrees(QStringView latitude) {
    return LatOnGlobe(latitude).value_or(0.0);
}

double LongToDegrees(QStringView longitude) {
    return LongOnGlobe(longitude).value_or(0.0);
}

} // namespace QIRUtil
