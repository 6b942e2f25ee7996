#pragma once

#include <QString>

/// The completion of commands, options and their choices for bash, made from the table of commands.
QString Completion();
