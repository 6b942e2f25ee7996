#pragma once

#include <QString>

/// A line of standard input, without its end; empty when there is none. At a terminal `prompt` asks for it on
/// standard error, and what is typed is not shown. Bytes beyond 4,096 are not read.
QString ReadSecretLine(const QString& prompt);
