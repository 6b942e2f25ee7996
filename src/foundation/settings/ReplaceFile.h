#pragma once

#include <QByteArray>
#include <QString>

/// Writes `bytes` as the whole content of a text file, all or nothing: whatever goes wrong, and when the
/// program is killed, the old file stays as it was. A symbolic link stays a link, also one whose target does
/// not exist yet; a new file is readable by its owner alone. Answers an empty text, or the system's reason.
///
/// Where the file may be written but its folder lets no other take its place, the file is written over. A
/// full disk leaves it as it was there too; a power cut in that moment may not.
QString ReplaceFile(const QString& path, const QByteArray& bytes);
