#pragma once

#include <QStringView>

#include <optional>

/// The port that a user entered: the value of a number, blanks around it ignored, rounded half to even.
/// Nothing unless all of the text is one number between 1 and `greatest`.
std::optional<int> PortFromText(QStringView text, int greatest);

/// The same of a number that more may stand behind.
std::optional<int> LeadingPort(QStringView text, int greatest);
