#pragma once

#include <QStringList>

class Clock;
class Console;

/// Carries out what the words after the program's name ask for, and answers the program's exit code.
/// `executableFolder`: the program folder, where the words name no other.
int RunProgram(const QStringList& words, const QString& executableFolder, Console& console,
               const Clock& clock);
