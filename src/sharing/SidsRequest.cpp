#include "sharing/SidsRequest.h"

#include "foundation/text/IsoTime.h"
#include "foundation/text/QIRUtil.h"

#include <QCryptographicHash>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cmath>

namespace SidsRequest {
namespace {

constexpr std::array<QByteArrayView, 8> names{"noradID", "source",    "timestamp", "frame",
                                              "locator", "longitude", "latitude",  "version"};
constexpr qint64 endOfTime = 253402300800000; // the year 10000
constexpr qsizetype longestNumber = 9;

bool IsNumber(const QString& text) {
    const auto isDigit = [](QChar c) { return c >= u'0' && c <= u'9'; };
    return text.size() <= longestNumber && std::ranges::all_of(text, isDigit) && text.toUInt() > 0;
}

QByteArray Degrees(const SidsStation& station, double degrees, char positive, char negative) {
    if (!station.isPositionKnown)
        return {};
    const double hundredths = std::round(degrees * 100.0);
    return QByteArray::number(std::fabs(hundredths) / 100.0, 'f', 2) +
           (hundredths < 0.0 ? negative : positive);
}

QByteArray Encoded(const QByteArray& value) {
    return value.toPercentEncoding({}, "~");
}

bool IsValue(QByteArrayView value) {
    constexpr std::string_view others = "-._%";
    return !value.isEmpty() && std::ranges::all_of(value, [&](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
               others.find(c) != others.npos;
    });
}

} // namespace

QStringList Missing(const SidsStation& station) {
    QStringList missing;
    if (!QIRUtil::IsValidCallsign(station.callsign))
        missing += QStringLiteral("callsign");
    if (!station.isPositionKnown)
        missing += QStringLiteral("position");
    if (!IsNumber(station.number))
        missing += QStringLiteral("catalogue number");
    return missing;
}

QList<std::pair<QByteArray, QByteArray>> Fields(const SidsStation& station, qint64 utc, QByteArrayView raw) {
    const std::array<QByteArray, names.size()> values{station.number.toLatin1(),
                                                      station.callsign.toLatin1(),
                                                      IsoTime::Milliseconds(utc),
                                                      raw.toByteArray().toHex().toUpper(),
                                                      "longLat",
                                                      Degrees(station, station.longitude, 'E', 'W'),
                                                      Degrees(station, station.latitude, 'N', 'S'),
                                                      station.version.toUtf8()};
    QList<std::pair<QByteArray, QByteArray>> fields;
    for (std::size_t i = 0; i < names.size(); ++i)
        fields.append({names[i].toByteArray(), values[i]});
    return fields;
}

std::optional<QByteArray> Body(const SidsStation& station, qint64 utc, QByteArrayView raw) {
    if (!Missing(station).isEmpty() || raw.isEmpty() || raw.size() > largestFrame || utc <= 0 ||
        utc >= endOfTime)
        return std::nullopt;
    QByteArray body;
    for (const auto& [name, value] : Fields(station, utc, raw))
        body += (body.isEmpty() ? "" : "&") + name + '=' + Encoded(value);
    return body;
}

bool IsBody(QByteArrayView bytes) {
    for (std::size_t i = 0; i < names.size(); ++i) {
        const bool isLast = i + 1 == names.size();
        const qsizetype end = isLast ? bytes.size() : bytes.indexOf('&');
        if (end < 0)
            return false;
        const QByteArrayView field = bytes.first(end);
        if (!field.startsWith(names[i]) || !field.sliced(names[i].size()).startsWith('=') ||
            !IsValue(field.sliced(names[i].size() + 1)))
            return false;
        bytes = bytes.sliced(isLast ? end : end + 1);
    }
    return true;
}

QString TimeIn(const QByteArray& body) {
    constexpr QByteArrayView before = "&timestamp=";
    const qsizetype begin = body.indexOf(before) + before.size();
    return QString::fromLatin1(
        QByteArray::fromPercentEncoding(body.sliced(begin, body.indexOf('&', begin) - begin)));
}

quint64 FrameKey(QByteArrayView body) {
    const qsizetype begin = std::max<qsizetype>(body.indexOf("&timestamp="), 0);
    const qsizetype end = body.indexOf("&locator=", begin);
    const QByteArrayView frame = body.sliced(begin, (end < 0 ? body.size() : end) - begin);
    return qFromBigEndian<quint64>(
        QCryptographicHash::hash(frame.toByteArray(), QCryptographicHash::Sha256).constData());
}

} // namespace SidsRequest
