#include "orbit/service/LatLongText.h"

#include <cmath>
#include <limits>

namespace LatLongText {
namespace {

QString Digits(int value, int width) {
    return QStringLiteral("%1").arg(value, width, 10, QChar(u'0'));
}

std::optional<QString> Text(double degrees, int degreeDigits, Separator separator, QChar hemisphere) {
    const double total = std::abs(degrees) * 60.0;
    if (!(total < std::numeric_limits<qint16>::max() + 1.0))
        return std::nullopt;
    const int wholeDegrees = static_cast<int>(total) / 60;
    const int hundredths = static_cast<int>(std::round((total - wholeDegrees * 60.0) * 100.0));
    QString text = Digits(wholeDegrees, degreeDigits);
    if (separator == Separator::On)
        text += u'.';
    text += Digits(hundredths / 100, 2) + u'.' + Digits(hundredths % 100, 2) + hemisphere;
    text[degreeDigits + 3] = u'.';
    return text;
}

} // namespace

std::optional<QString> Latitude(double degrees, Separator separator) {
    return Text(degrees, 2, separator, degrees >= 0 ? u'N' : u'S');
}

std::optional<QString> Longitude(double degrees, Separator separator) {
    return Text(degrees, 3, separator, degrees >= 0 ? u'E' : u'W');
}

} // namespace LatLongText
