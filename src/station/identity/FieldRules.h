#pragma once

#include <QString>

#include <optional>

/// What may stand in the fields that the user fills in: character by character on the way in, and as a whole
/// on leaving.
namespace FieldRules {

// Each answers the character that one becomes on its way in (a-z turn to A-Z), or nothing when it is refused.
std::optional<QChar> PositionCharacter(QChar entered); ///< digits, letters, blank and "."
std::optional<QChar> ViaCharacter(QChar entered);      ///< those of callsigns, blank and ","

/// Whether `text` is empty or a valid callsign.
bool IsCallsignOrEmpty(QStringView text);

/// A digipeater path as the user typed it, brought into form or refused.
struct ViaPath {
    QString path;  ///< the digipeaters joined by ","; empty when refused
    QString wrong; ///< the first piece that is no valid address; empty when all are
};

/// Blanks and commas, in any number, separate the digipeaters; the path may be empty and of any length.
ViaPath NormaliseVia(const QString& text);

/// The highest port that may be entered: the number of ports that the packet engine reported, 2 when it has
/// reported none.
int HighestPort(int portCount);

bool IsPortAvailable(QStringView text, int portCount);

/// The port on which to send: the field's number, half to even, and 1 for 0. Nothing beyond 16 bits.
std::optional<qint16> PortOf(QStringView text);

QString PortMessage(int portCount);

} // namespace FieldRules
