#pragma once

#include <QStringList>

struct ImportCount;

/// What an import would bring, in words: a line each. Lines that begin with two blanks belong to the one
/// above.
QStringList ImportLines(const ImportCount& count);
