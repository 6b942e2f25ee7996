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

/// Degrees, north positive, of a latitude "DDMM.MMH" (H is "N" or "S"); 0 for any other text, and for what
/// lies beyond a pole.
double LatToDegrees(QStringView latitude);

/// Degrees, east positive, of a longitude "DDDMM.MMH" (H is "E" or "W"); 0 for any other text, and for what
/// lies beyond 180 degrees.
double LongToDegrees(QStringView longitude);

/// The same, with nothing in the place of the 0 for what lies beyond.
std::optional<double> LatOnGlobe(QStringView latitude);
std::optional<double> LongOnGlobe(QStringView longitude);

/// Whether these degrees are a station's place. 0 stands for a latitude or longitude that is not known, so a
/// station exactly on the equator or on the prime meridian counts as unknown.
constexpr bool IsPositionKnown(double latitude, double longitude) {
    return latitude != 0.0 && longitude != 0.0;
}

} // namespace QIRUtil
