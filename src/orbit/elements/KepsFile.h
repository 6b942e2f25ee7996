#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

/// The three lines of an element set in a two-line element file, as far as they name an object.
struct KepsGroup {
    QString name;       ///< the line above the elements, trimmed; never empty
    QByteArray number1; ///< the second field of line 1: the catalogue number and a classification letter
    QByteArray number2; ///< the second field of line 2: the catalogue number
};

namespace KepsFile {

/// Reads no more than this of a file, and no more than 1,024 bytes of a line.
constexpr qint64 maxBytes = 64LL * 1024 * 1024;

/// Calls `take` with each group of a file in turn, until it answers false. A file that cannot be read has
/// none.
void ForEachGroup(const QString& path, const std::function<bool(const KepsGroup&)>& take);

} // namespace KepsFile
