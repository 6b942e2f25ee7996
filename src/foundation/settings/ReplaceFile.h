#pragma once

#include <QByteArray>
#include <QString>

/// Writes `bytes` as the whole content of a file, all or nothing: whatever goes wrong, and when the program
/// is killed, the old file stays as it was. A symbolic link stays a link, also one whose target does not
/// exist yet; a new file is readable by its owner alone. Answers an empty text, or the system's reason.
QString ReplaceFile(const QString& path, const QByteArray& bytes);
