#pragma once

#include <QString>

#include <functional>

class QWidget;

/// Lets the user choose a file to write.
namespace FileChoice {

/// Answers the path; empty when the user does not want to. `proposal`: a file's name, whose ending a name
/// without one gets.
using Choose = std::function<QString(QWidget* window, const QString& caption, const QString& proposal)>;

/// By the platform's dialog, which asks before a file is replaced.
QString Ask(QWidget* window, const QString& caption, const QString& proposal);

} // namespace FileChoice
