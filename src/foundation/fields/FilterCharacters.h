#pragma once

#include <QChar>

#include <functional>
#include <optional>

class QLineEdit;

/// What becomes of a character on its way into a field: itself, another one in its place, or nothing. What it
/// answers passes unchanged.
using CharacterRule = std::function<std::optional<QChar>(QChar)>;

/// Sends every character that the user brings into the field through the rule, whether it is typed (with Alt
/// or Meta as well), composed, pasted or dropped. A line end counts as one blank. What the program sets stays
/// as it is until the user changes the text; then all of the text follows the rule.
///
/// The field can still undo what was typed, pasted by key, composed or dropped; a paste by mouse that had to
/// be put right begins its history anew.
void FilterCharacters(QLineEdit* field, CharacterRule rule);

/// For a field that takes any text: the line ends that the user brings into it become blanks.
void KeepOnOneLine(QLineEdit* field);
