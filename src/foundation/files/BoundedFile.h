#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

class QFile;

/// Opens a file to read it, if it is a regular one or a link to one; a folder, a pipe or a device would never
/// end. Answers an empty text, or the reason why not.
QString OpenRegularFile(QFile& file);

/// The bytes of a regular file of at most `limit` bytes; none, and `reason` says why, when it cannot be read.
std::optional<QByteArray> ReadBoundedFile(const QString& path, qint64 limit, QString& reason);
