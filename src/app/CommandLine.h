#pragma once

#include <QString>
#include <QStringList>

/// What the user asked for on the command line.
struct CommandLine {
    enum class Action { Run, Print, Fail };

    Action action = Action::Run;
    QString text;           ///< what to print, for Print (standard output) and Fail (standard error)
    QString folder;         ///< the program folder; empty: the folder of the executable
    QString reportFolder;   ///< show every window, save its picture there and end; empty: an ordinary run
    int reportSeconds = 20; ///< how long to listen before that report

    /// Reads the arguments, the program's name first.
    static CommandLine Read(const QStringList& arguments);
};
