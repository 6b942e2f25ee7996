#pragma once

#include "cli/table/Command.h"

#include <QString>

/// What --help prints, made from the table of commands.
namespace HelpText {

/// The whole command line, or one command where it is not null.
QString Of(const Command* command);

/// "passes [--days N] ...": how a command is called, in one line.
QString Usage(const Command& command);

/// "--days N": an option with what stands behind it.
QString Called(const Option& option);

} // namespace HelpText
