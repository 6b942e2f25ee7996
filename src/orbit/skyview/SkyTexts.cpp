#include "orbit/skyview/SkyTexts.h"

#include <cmath>

namespace SkyTexts {

QString Duration(double seconds) {
    constexpr qint64 day = 86400;
    const qint64 whole = std::llround(std::abs(seconds));
    const QString time = QStringLiteral("%1:%2:%3")
                             .arg(whole % day / 3600, 2, 10, QChar(u'0'))
                             .arg(whole / 60 % 60, 2, 10, QChar(u'0'))
                             .arg(whole % 60, 2, 10, QChar(u'0'));
    return whole < day ? time : QStringLiteral("%1 d %2").arg(whole / day).arg(time);
}

QString Degrees(double degrees) {
    return QString::number(degrees, 'f', 1) + u'°';
}

QString Azimuth(double degrees) {
    static constexpr const char16_t* winds[] = {u"N", u"NE", u"E", u"SE", u"S", u"SW", u"W", u"NW"};
    const auto wind = static_cast<std::size_t>(std::lround(degrees / 45)) % std::size(winds);
    return QStringLiteral("%1° (%2)").arg(std::lround(degrees) % 360).arg(QStringView(winds[wind]));
}

QString OfLight(orbitmath::Light light) {
    switch (light) {
    case orbitmath::Light::Sunlit:
        return QStringLiteral("sunlit");
    case orbitmath::Light::Penumbra:
        return QStringLiteral("in half shadow");
    case orbitmath::Light::Umbra:
        break;
    }
    return QStringLiteral("in the earth's shadow");
}

QString Speed(double kmPerSecond) {
    const double rounded = std::round(kmPerSecond * 1000) / 1000 + 0.0; // no "-0.000"
    return QString::number(rounded, 'f', 3) + QStringLiteral(" km/s");
}

QString Megahertz(double megahertz) {
    return QString::number(megahertz, 'f', 5) + QStringLiteral(" MHz");
}

QString Shift(double hertz) {
    const qint64 whole = std::llround(hertz);
    return (whole < 0 ? QString() : QStringLiteral("+")) + QString::number(whole) + QStringLiteral(" Hz");
}

} // namespace SkyTexts
