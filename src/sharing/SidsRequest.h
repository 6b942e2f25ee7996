#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>
#include <utility>

/// What a request tells of the station that heard the frame.
struct SidsStation {
    QString callsign;
    bool isPositionKnown = false;
    double latitude = 0.0;  ///< degrees, north positive
    double longitude = 0.0; ///< degrees, east positive
    QString number;         ///< the satellite's catalogue number
    QString version;        ///< the program that sends, "QiranDecode-2.4.2"
};

/// A frame as the Simple Downlink Share Convention (SiDS) hands it to a server: the form of an HTTP POST.
/// Nothing else of the user's is in it.
namespace SidsRequest {

constexpr qsizetype largestFrame = 4096; ///< bytes; larger ones are none of a satellite's

/// What the station lacks for a request: "callsign", "position", "catalogue number". A text that cannot be
/// one counts as missing.
QStringList Missing(const SidsStation& station);

/// Names and values in their order. `utc`: milliseconds since 1970-01-01 00:00; the position is rounded to
/// 0.01 degrees. Means nothing while the station lacks something.
QList<std::pair<QByteArray, QByteArray>> Fields(const SidsStation& station, qint64 utc, QByteArrayView raw);

/// The fields as application/x-www-form-urlencoded. Nothing where the station lacks something, for a frame
/// without bytes or beyond `largestFrame`, and for a time that is not after 1970 and before the year 10000.
std::optional<QByteArray> Body(const SidsStation& station, qint64 utc, QByteArrayView raw);

/// Whether the bytes are such a body.
bool IsBody(QByteArrayView bytes);

/// When the frame in a body was heard, as the body tells it: "2026-11-21T15:28:43.120Z".
QString TimeIn(const QByteArray& body);

/// Stands for the frame and its time in a body, whoever heard it.
quint64 FrameKey(QByteArrayView body);

} // namespace SidsRequest
