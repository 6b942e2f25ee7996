#pragma once

#include "cli/table/Option.h"

#include <vector>

struct Session;

/// What a command takes besides its options.
struct Argument {
    const char16_t* name;
    bool isOptional = false;
    bool isRepeated = false; ///< any number of them; the last one
};

/// A command of the command line.
struct Command {
    const char16_t* name;        ///< one word, or a group and a word: "keps list"
    const char16_t* summary;     ///< what it does, in a line
    const char16_t* description; ///< what else is to be known
    std::vector<Argument> arguments;
    std::vector<const Option*> options;
    int (*run)(const Session& session); ///< answers the program's exit code
    bool isHidden = false;              ///< for the build of the program, in no help
};
