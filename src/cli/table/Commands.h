#pragma once

#include "cli/table/Command.h"

#include <span>

/// The commands of the command line.
namespace Commands {

/// All of them, in the order of the help.
std::span<const Command> All();

/// The options that may stand before any command.
std::span<const Option* const> GlobalOptions();

} // namespace Commands
