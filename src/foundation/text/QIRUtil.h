#pragma once

#include <QString>

#include <optional>

/// Checks and conversions of what users enter about stations.
namespace QIRUtil {

/// A base of 1 to 6 characters "A" to "Z" or "0" to "9", optionally "-" and an SSID 0 to 15 of one or two
/// digits. Lower case is invalid.
bool IsValidCallsign(QStringView callsign);

/// Whether a key press may enter a callsign field: control codes up to 13, "0" to "9", "A" to "Z" and "-".
bool IsCallsignKey(qint16 code);

/// The character that enters a callsign field where the user gives `entered`: "A" to "Z" for "a" to "z", no
/// other letter having a capital that a callsign may hold; nothing where a callsign has no such character.
std::optional<QChar> CallsignCharacter(QChar entered);

/// `entered` where it is one of "0" to "9", nothing otherwise.
std::optional<QChar> DigitCharacter(QChar entered);

/// Degrees, north positive, of a latitude "DDMM.MMH" (H is "N" or "S"); 0 for any other text.
double LatToDegrees(QStringView latitude);

/// Degrees, east positive, of a longitude "DDDMM.MMH" (H is "E" or "W"); 0 for any other text.
double LongToDegrees(QStringView longitude);

} // namespace QIRUtil
