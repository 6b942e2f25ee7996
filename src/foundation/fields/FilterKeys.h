#pragma once

#include <QChar>

#include <functional>
#include <optional>

class QLineEdit;

/// What becomes of a character typed into a field: itself, another one in its place, or nothing.
using KeyRule = std::function<std::optional<QChar>(QChar)>;

/// Sends every character that is typed into the field through the rule. Control keys, shortcuts and pastes
/// pass.
void FilterKeys(QLineEdit* field, KeyRule rule);
