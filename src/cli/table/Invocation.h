#pragma once

#include "cli/table/Call.h"
#include "cli/table/Command.h"

/// What the user asked for on the command line.
struct Invocation {
    enum class Action { Run, Help, Version, Wrong };

    Action action = Action::Wrong;
    const Command* command = nullptr; ///< for Run; for Help the one asked about, or none
    Call call;
    QString folder; ///< the program folder; empty: the folder of the executable
    QString wrong;  ///< for Wrong: what is wrong with the call, and where help is

    /// Reads the words after the program's name.
    static Invocation Read(const QStringList& words);
};
