#pragma once

#include "cli/table/Call.h"

class Clock;
class Console;
class ProgramFolder;

/// What a command works with.
struct Session {
    const ProgramFolder& folder;
    const Call& call;
    Console& console;
    const Clock& clock;
};

/// What the program ends with.
namespace ExitCode {
constexpr int Done = 0;
constexpr int Failed = 1;    ///< it did not work
constexpr int WrongCall = 2; ///< it cannot be asked for like this
} // namespace ExitCode
