#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <string_view>

/// Rules for text and numbers that hold everywhere in the program, whatever the user's locale.
namespace Text {

/// The bytes of `text` in Windows-1252; "?" stands for what that code page lacks.
QByteArray ToBytes(QStringView text);

/// The text of Windows-1252 `bytes`. Every byte has a character (the five undefined ones keep their number),
/// so FromBytes and ToBytes are each other's inverse on bytes.
QString FromBytes(QByteArrayView bytes);

enum class Exponent { No, Yes };

/// The value of the number at the start of `text`: leading blanks, a sign, digits and "." and, where allowed,
/// an exponent; 0 when there is none. A number too large for a double gives an infinity.
double LeadingNumber(std::string_view text, Exponent exponent = Exponent::No);
double LeadingNumber(QStringView text, Exponent exponent = Exponent::No);

/// `value` rounded half to even; nothing when that lies outside 16 bits.
std::optional<qint16> RoundToInt16(double value);

/// `value` in the general number format: up to 15 significant digits, ".", a capital E before an exponent.
QString GeneralNumber(double value);

/// A stranger's text, fit for one line of a window or a terminal: white space in a row becomes one blank,
/// what cannot be seen "?", and what is beyond `longest` is cut.
QString OneLine(const QString& text, qsizetype longest);

} // namespace Text
