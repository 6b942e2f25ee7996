#pragma once

#include <QString>

/// The manual page in the man macros, made from the tables of commands, options, records and settings.
QString ManualPage(const QString& version);
