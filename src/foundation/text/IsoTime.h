#pragma once

#include <QByteArray>

#include <optional>
#include <string_view>

/// Times in files and records: ISO 8601, UTC, such as "2026-11-21T15:28:43.120Z".
namespace IsoTime {

/// `utc`: milliseconds since 1970-01-01 00:00, within the years 0 to 9999.
QByteArray Milliseconds(qint64 utc);

/// The same to the second at or before it: "2026-11-21T15:28:43Z".
QByteArray Seconds(qint64 utc);

/// The time of such a text, with or without a fraction of a second (1 to 9 digits; what is less than a
/// millisecond is cut off); none for every other text and for what no calendar or clock has.
std::optional<qint64> Read(std::string_view text);

} // namespace IsoTime
