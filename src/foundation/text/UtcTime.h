#pragma once

#include "foundation/text/DateTime.h"

#include <QString>

#include <optional>

/// Moments in milliseconds since 1970-01-01 00:00 UTC: where they come from, and how users write and read
/// them.
namespace UtcTime {

constexpr DateTime dayOf1970 = 25569.0;

/// A UTC date-time to the nearest millisecond.
qint64 FromDateTime(DateTime utc);
DateTime ToDateTime(qint64 utc);

qint64 ToNearestSecond(qint64 utc);

enum class Digits { Seconds, Milliseconds };

/// The moment in local time by the operating system's rules, for people: "2026-11-21 16:28:43", whole seconds
/// being the nearest ones, or "2026-11-21 16:28:43.120".
QString ToLocalText(qint64 utc, Digits digits);

/// The moment that a user names by an ISO 8601 text: a date, a date and a time ("T" or a blank between them),
/// with "Z", with an offset or, as UTC, without either. Years are 1900 to 2199. Nothing for any other text.
std::optional<qint64> Parse(const QString& text);

} // namespace UtcTime
