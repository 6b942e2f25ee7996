#pragma once

#include <QString>

/// Where a file that is shipped with the program is: at `path` in the user's program folder where it lies
/// there, for his own copy wins; else the one of the same name beside the executable or in the shared data of
/// the installation. `path` again where there is none at all.
QString ShippedFile(const QString& path);
