#pragma once

#include <QString>

#include <optional>

/// A position as text. The stored form is the one of an APRS position, DDMM.hhN and DDDMM.hhE; the displayed
/// form has one more point, after the degrees: DD.MM.hhN and DDD.MM.hhE.
namespace PositionText {

enum class Axis { Latitude, Longitude };

/// The displayed form of a stored text; the empty text stays empty.
QString ToDisplayed(const QString& stored, Axis axis);

/// The stored form of a displayed text; blanks alone are the empty text.
QString ToStored(const QString& displayed, Axis axis);

/// What a user's entry means, in the displayed form; nothing when it means no position. An entry of blanks
/// alone is given back as it is where blank is allowed.
std::optional<QString> ValidateLatLong(const QString& entry, Axis axis, bool blnAllowBlank);

/// What a user's entry is understood as, in degrees and minutes and as decimal degrees; why not, for one that
/// means no position yet; empty for an empty one.
QString Understood(const QString& entry, Axis axis);

/// A position as maps on the web give it, in decimal degrees, north and east positive; either half may be
/// missing where one number alone was given, whose axis nobody knows.
struct DecimalDegrees {
    double first = 0.0;
    std::optional<double> second; ///< the longitude, where both are there
};

/// Reads "51.50000, -0.12000", "51.5\u00B0 N, 0.12\u00B0 W" or "-0.12000"; nothing where the text is none of
/// these, or off the globe.
std::optional<DecimalDegrees> FromDecimal(const QString& text);

/// The displayed form of degrees, north and east positive, to the hundredth of a minute. 0 means that no
/// position is known, so what rounds to it becomes a hundredth of a minute.
QString FromDegrees(double degrees, Axis axis);

/// "latitude" or "longitude".
QString Name(Axis axis);

/// The six-character Maidenhead locator of a position in stored form; nothing when either text is empty or
/// the position lies off the globe. Subsquare letters are upper case, and the pole and the date line count as
/// a nineteenth field, "S".
std::optional<QString> Locator(const QString& storedLatitude, const QString& storedLongitude);

} // namespace PositionText
